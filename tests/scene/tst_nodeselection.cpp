#include "scene/nodeselection.h"

#include "items/node.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QGraphicsScene>

#include <array>

namespace {

using Nodes = std::vector<Node *>;

/// Three events side by side.
struct Canvas
{
    Canvas()
    {
        QEvent activation(QEvent::WindowActivate);
        QCoreApplication::sendEvent(&scene, &activation);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            nodes[i] = new Node(0);
            nodes[i]->setPos(1000.0 * double(i), 0);
            scene.addItem(nodes[i]);
        }
    }
    Nodes all() const { return {nodes.begin(), nodes.end()}; }
    QRectF around(std::size_t from, std::size_t to) const
    {
        return (nodes[from]->sceneBoundingRect() | nodes[to]->sceneBoundingRect()).adjusted(-50, -50, 50, 50);
    }
    Nodes selected() const
    {
        Nodes found;
        for (Node *node : nodes) {
            if (node->isSelected())
                found.push_back(node);
        }
        return found;
    }

    QGraphicsScene scene;
    std::array<Node *, 3> nodes{};
    NodeSelection selection{scene};
};

} // namespace

class tst_NodeSelection : public TestCase
{
    Q_OBJECT

private slots:
    void nothingIsCurrentAtFirst();
    void currentNodeTakesTheKeyboardFromOthers();
    void currentNodeMovesOn();
    void selectAllCollectsAndSelects();
    void whoeverGoesIsForgotten();
    void boundsAreOfWhatIsMeant();
};

void tst_NodeSelection::nothingIsCurrentAtFirst()
{
    const Canvas canvas;
    QCOMPARE(canvas.selection.current(), nullptr);
    QCOMPARE(canvas.selection.collected(), Nodes());
}

void tst_NodeSelection::currentNodeTakesTheKeyboardFromOthers()
{
    Canvas canvas;
    QGraphicsItem *title = canvas.nodes[0]->nameItem();
    title->setFocus();
    canvas.selection.setCurrent(canvas.nodes[0]);
    QCOMPARE(canvas.scene.focusItem(), title);
    canvas.selection.setCurrent(nullptr);
    QCOMPARE(canvas.scene.focusItem(), title);
    canvas.selection.setCurrent(canvas.nodes[1]);
    QCOMPARE(canvas.selection.current(), canvas.nodes[1]);
    QCOMPARE(canvas.scene.focusItem(), nullptr);
    QCOMPARE(canvas.selected(), Nodes());
}

void tst_NodeSelection::currentNodeMovesOn()
{
    Canvas canvas;
    canvas.selection.moveCurrentTo(canvas.nodes[0]);
    QCOMPARE(canvas.selected(), Nodes{canvas.nodes[0]});
    canvas.selection.moveCurrentTo(canvas.nodes[2]);
    QCOMPARE(canvas.selection.current(), canvas.nodes[2]);
    QCOMPARE(canvas.selected(), Nodes{canvas.nodes[2]});
    QCOMPARE(canvas.selection.collected(), Nodes());
}

void tst_NodeSelection::selectAllCollectsAndSelects()
{
    Canvas canvas;
    canvas.selection.collect({canvas.nodes[1]});
    QCOMPARE(canvas.selection.collected(), Nodes{canvas.nodes[1]});
    QCOMPARE(canvas.selected(), Nodes());
    canvas.selection.selectAll(canvas.all());
    QCOMPARE(canvas.selection.collected(), canvas.all());
    QCOMPARE(canvas.selected(), canvas.all());
    canvas.selection.clear();
    QCOMPARE(canvas.selection.collected(), Nodes());
    QCOMPARE(canvas.selected(), canvas.all());
    canvas.selection.collect(canvas.all());
    canvas.selection.deselectAll(canvas.all());
    QCOMPARE(canvas.selection.collected(), Nodes());
    QCOMPARE(canvas.selected(), Nodes());
}

void tst_NodeSelection::whoeverGoesIsForgotten()
{
    Canvas canvas;
    canvas.selection.collect(canvas.all());
    canvas.selection.setCurrent(canvas.nodes[1]);
    canvas.selection.forget(canvas.nodes[0]);
    QCOMPARE(canvas.selection.current(), canvas.nodes[1]);
    canvas.selection.forget(canvas.nodes[1]);
    QCOMPARE(canvas.selection.current(), nullptr);
    QCOMPARE(canvas.selection.collected(), Nodes{canvas.nodes[2]});
}

void tst_NodeSelection::boundsAreOfWhatIsMeant()
{
    Canvas canvas;
    QCOMPARE(canvas.selection.bounds({}), QRectF());
    QCOMPARE(canvas.selection.bounds(canvas.all()), canvas.around(0, 2));
    canvas.selection.collect({canvas.nodes[0], canvas.nodes[1]});
    QCOMPARE(canvas.selection.bounds(canvas.all()), canvas.around(0, 1));
    canvas.selection.setCurrent(canvas.nodes[2]);
    QCOMPARE(canvas.selection.bounds(canvas.all()), canvas.around(2, 2));
}

QTEST_MAIN(tst_NodeSelection)
#include "tst_nodeselection.moc"
