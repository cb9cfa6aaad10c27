#include "scene/nodedeletion.h"

#include "scene/massremoval.h"
#include "scene/scenetab.h"
#include "support/testsupport.h"

#include <QUndoCommand>

using namespace Qt::StringLiterals;

namespace {

/// A chain of three events and one aside, with 0 to 3 as their indices, and a deletion that is not the
/// scene's own.
struct Yard
{
    NodegraphScene scene;
    MassRemoval removal{scene};
    bool isRun = true;
    std::vector<std::unique_ptr<QUndoCommand>> commands;
    NodeDeletion deletion{scene, removal, [this](std::unique_ptr<QUndoCommand> command) {
                              if (!isRun)
                                  return;
                              command->redo();
                              commands.push_back(std::move(command));
                          }};
    Nodes nodes;

    Yard()
    {
        for (int i = 0; i < 4; ++i) {
            nodes.push_back(scene.restoreNode(QPointF(400 * i, 100), i, 0, nullptr, u"Title %1"_s.arg(i)));
            if (i == 1 || i == 2)
                scene.connectNodes(nodes[std::size_t(i)], nodes[std::size_t(i) - 1]);
        }
    }

    QList<int> left() const { return indicesOf(scene.nodes()); }

    void select(const QRectF &band)
    {
        SceneMouse mouse{scene};
        mouse.press(band.topLeft());
        mouse.move(band.bottomRight());
        mouse.release(QPointF(5, 5));
    }
};

constexpr QRectF aroundTheFirstTwo(-20, 20, 480, 100);

} // namespace

class tst_NodeDeletion : public TestCase
{
    Q_OBJECT

private slots:
    void deletesTheOneThatIsNamed();
    void deletesTheCurrentOneElse();
    void withoutAnyNothingHappens();
    void theSelectionGoesInstead();
    void eachCanComeBack();
    void deletesAllOneByOne();
    void deletesAllWithTheSelectionFirst();
    void deletesAllEvenIfNobodyRunsTheCommands();
};

void tst_NodeDeletion::deletesTheOneThatIsNamed()
{
    Yard yard;
    yard.scene.sl_selectCurrentNode(yard.nodes[0]);
    yard.deletion.deleteSelected(yard.nodes[3]);
    QCOMPARE(yard.left(), (QList<int>{0, 1, 2}));
    QCOMPARE(yard.scene.currentNode(), yard.nodes[0]);
}

void tst_NodeDeletion::deletesTheCurrentOneElse()
{
    Yard yard;
    yard.scene.sl_selectCurrentNode(yard.nodes[1]);
    const LogCapture log;
    yard.deletion.deleteSelected(nullptr);
    QCOMPARE(yard.left(), (QList<int>{0, 2, 3}));
    QCOMPARE(yard.scene.currentNode(), nullptr);
    QCOMPARE(log.lines().first(), u"Del"_s);
    QCOMPARE(log.count(u"Del"_s), 1);
}

void tst_NodeDeletion::withoutAnyNothingHappens()
{
    Yard yard;
    const LogCapture log;
    yard.deletion.deleteSelected(nullptr);
    QCOMPARE(yard.left(), (QList<int>{0, 1, 2, 3}));
    QVERIFY(log.lines().isEmpty());
}

void tst_NodeDeletion::theSelectionGoesInstead()
{
    Yard yard;
    yard.select(aroundTheFirstTwo);
    QCOMPARE(indicesOf(yard.scene.selectedNodes()), (QList<int>{1, 0}));
    yard.scene.sl_selectCurrentNode(yard.nodes[3]);
    const LogCapture log;
    yard.deletion.deleteSelected(nullptr);
    QCOMPARE(yard.left(), (QList<int>{2, 3}));
    QCOMPARE(yard.scene.currentNode(), nullptr);
    QCOMPARE(log.count(u"Del"_s), 2);
    QVERIFY(yard.scene.selectedNodes().empty());

    yard.select(QRectF(780, 20, 40, 100));
    yard.deletion.deleteSelected(yard.nodes[3]);
    QCOMPARE(yard.left(), QList<int>{3});
}

void tst_NodeDeletion::eachCanComeBack()
{
    Yard yard;
    yard.select(aroundTheFirstTwo);
    yard.deletion.deleteSelected(nullptr);
    QCOMPARE(int(yard.commands.size()), 2);
    yard.commands.back()->undo();
    QCOMPARE(yard.left(), (QList<int>{2, 3, 0}));
    QCOMPARE(yard.scene.nodes().back()->title(), u"Title 0"_s);
    QCOMPARE(yard.scene.nodes().back()->scenePos(), QPointF(0, 100));
}

void tst_NodeDeletion::deletesAllOneByOne()
{
    Yard yard;
    const LogCapture log;
    yard.deletion.deleteAll();
    QCOMPARE(yard.left(), QList<int>());
    QCOMPARE(log.count(u"clearing scene"_s), 4);
    QCOMPARE(log.lines().first(2), (QStringList{u"clearing scene"_s, u"Del"_s}));
    QCOMPARE(int(yard.commands.size()), 4);
}

void tst_NodeDeletion::deletesAllWithTheSelectionFirst()
{
    Yard yard;
    yard.select(aroundTheFirstTwo);
    const LogCapture log;
    yard.deletion.deleteAll();
    QCOMPARE(yard.left(), QList<int>());
    QCOMPARE(log.count(u"clearing scene"_s), 3); // the first one took both
    QCOMPARE(log.count(u"Del"_s), 4);
}

void tst_NodeDeletion::deletesAllEvenIfNobodyRunsTheCommands()
{
    Yard yard;
    yard.isRun = false;
    const LogCapture log;
    yard.deletion.deleteAll();
    QCOMPARE(yard.left(), QList<int>());
    QCOMPARE(log.count(u"clearing scene"_s), 4);
    const QString last = u"Deleted node  0"_s;
    QCOMPARE(log.lines().filter(u"Deleted node"_s).last(), last);
}

QTEST_MAIN(tst_NodeDeletion)
#include "tst_nodedeletion.moc"
