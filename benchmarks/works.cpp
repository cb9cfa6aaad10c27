#include "works.h"

#include "app/mainwindow.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/ovnode.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QApplication>
#include <QDir>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTabWidget>
#include <QWheelEvent>

namespace {

void mouse(QWidget *widget, QEvent::Type type, QPointF pos, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, pos, widget->mapToGlobal(pos), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &event);
}

void key(QWidget *widget, char letter)
{
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QString(QLatin1Char(letter)));
    QCoreApplication::sendEvent(widget, &press);
}

/// Emptying a graph is no good start for the next round unless all that was to die is dead.
void settle(StoryWindow &story)
{
    story.show();
    story.show();
}

} // namespace

Works::Works(int eventCount, int roundCount)
    : events(eventCount), rounds(roundCount), path(folder.filePath(QStringLiteral("story.scene")))
{
    writeStory(path, events);
}

void Works::add(const QString &work, const Step &before, const Step &step, int times)
{
    std::vector<double> values;
    for (int i = 0; i < (times > 0 ? times : rounds); ++i) {
        if (before)
            before();
        values.push_back(Measure::milliseconds(step));
    }
    rows << Row{work, events, Measure::median(values), 0};
}

void Works::addPair(const QString &there, const Step &go, const QString &back, const Step &comeBack)
{
    std::vector<double> first;
    std::vector<double> second;
    const auto shown = [this](const Step &step) {
        return Measure::milliseconds([this, &step] {
            step();
            story->show();
        });
    };
    for (int i = 0; i < rounds; ++i) {
        first.push_back(shown(go));
        second.push_back(shown(comeBack));
    }
    rows << Row{there, events, Measure::median(first), 0} << Row{back, events, Measure::median(second), 0};
}

QVector<Row> Works::measured(std::vector<double> &units)
{
    for (const auto part :
         {&Works::memory, &Works::documents, &Works::edits, &Works::editsBack, &Works::connections,
          &Works::typing, &Works::looking, &Works::everything, &Works::emptying}) {
        units.push_back(Measure::unit());
        (this->*part)();
    }
    return rows;
}

/// First of all, while the process has not yet held anything larger.
void Works::memory()
{
    story = std::make_unique<StoryWindow>();
    const double before = Measure::residentKiB();
    story->window().loadFrom(path);
    story->show();
    rows << Row{QStringLiteral("memory an event"), events, (Measure::residentKiB() - before) / events, 0};
}

void Works::documents()
{
    const auto open = [this] {
        story->window().loadFrom(path);
        story->show();
    };
    const auto empty = [this] {
        story->window().clearTabs();
        settle(*story);
    };
    const int few = qMax(3, rounds / 2);
    add(QStringLiteral("open"), empty, open, few);
    add(QStringLiteral("save"), {},
        [this] { story->window().saveTo(folder.filePath(QStringLiteral("saved"))); });
    add(QStringLiteral("autosave"), {}, [this] { story->window().autosave(); });
    QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
         QStringLiteral("/Fablegrid/Autosavedir"))
        .removeRecursively();
    add(QStringLiteral("New"), open, empty, few);
    open();
}

void Works::edits()
{
    NodegraphScene *scene = story->scene();
    MainWindow &window = story->window();
    Node *last = story->node(1);
    story->lookAt(last);
    const auto selectLast = [scene] {
        scene->deselectAll();
        scene->sl_selectCurrentNode(scene->nodes().back());
    };
    selectLast();
    addPair(
        QStringLiteral("add"), [&] { window.addEventNode(); }, QStringLiteral("undo of add"),
        [&] {
            window.sl_undo();
            selectLast();
        });
    Node *middle = story->node(0.5);
    const int middleIndex = middle->getIndex();
    story->lookAt(middle);
    const auto selectMiddle = [scene, middleIndex] {
        scene->deselectAll();
        scene->sl_selectCurrentNode(scene->findNodeByIndex(middleIndex));
    };
    selectMiddle();
    addPair(
        QStringLiteral("delete"), [&] { window.sl_delete(); }, QStringLiteral("undo of delete"),
        [&] {
            window.sl_undo();
            selectMiddle();
        });
    addPair(
        QStringLiteral("redo of delete"), [&] { window.sl_redo(); }, QStringLiteral("undo once more"),
        [&] { window.sl_undo(); });
}

void Works::editsBack()
{
    NodegraphScene *scene = story->scene();
    MainWindow &window = story->window();
    OverViewerScene *panel = story->panel();
    scene->deselectAll();
    Node *middle = story->node(0.5);
    scene->sl_selectCurrentNode(middle);
    addPair(
        QStringLiteral("importance on"), [&] { window.sl_setAsImportant(); },
        QStringLiteral("importance off"), [&] { window.sl_setAsImportant(); });
    Node *tip = scene->endOfStoryNode();
    Node *beforeTip = tip->prevNode();
    addPair(
        QStringLiteral("end of story"),
        [&] {
            scene->sl_selectCurrentNode(beforeTip);
            window.sl_setEndOfStory();
        },
        QStringLiteral("end of story back"),
        [&] {
            scene->sl_selectCurrentNode(tip);
            window.sl_setEndOfStory();
        });
    addPair(
        QStringLiteral("filter on"), [&] { panel->sl_setFilter_important(true); },
        QStringLiteral("filter off"), [&] { panel->sl_setFilter_important(false); });
    window.addNodeGraphTab();
    auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("Nodegraph"));
    addPair(
        QStringLiteral("tab switch to an empty one"), [&] { tabs->setCurrentIndex(1); },
        QStringLiteral("tab switch back"), [&] { tabs->setCurrentIndex(0); });
}

void Works::connections()
{
    NodegraphScene *scene = story->scene();
    Node *tip = scene->endOfStoryNode();
    Node *upstream = tip->prevNode();
    addPair(
        QStringLiteral("disconnect"), [&] { scene->disconnectNode(tip); }, QStringLiteral("connect"),
        [&] { scene->connectNodes(tip, upstream); });
}

void Works::typing()
{
    Node *middle = story->node(0.5);
    story->lookAt(middle);
    NodegraphView *view = story->view();
    QApplication::setActiveWindow(&story->window());
    view->setFocus();
    middle->payload()->eventContent()->descriptionItem()->setFocus();
    add(
        QStringLiteral("key in a node"), {},
        [this, view] {
            key(view->viewport(), 'a');
            story->show();
        },
        3 * rounds);
    OvNode *entry = story->panel()->ovNodes().at(story->panel()->ovNodes().size() / 2);
    QGraphicsView *panelView = story->panelView();
    panelView->centerOn(entry);
    panelView->setFocus();
    dynamic_cast<EventData *>(entry->eventData())->descriptionItem()->setFocus();
    story->show();
    add(
        QStringLiteral("key in the panel"), {},
        [this, panelView] {
            key(panelView->viewport(), 'a');
            story->show();
        },
        3 * rounds);
}

void Works::looking()
{
    Node *middle = story->node(0.5);
    story->scene()->deselectAll();
    story->lookAt(middle);
    QWidget *canvas = story->view()->viewport();
    const QPointF grip = story->view()->mapFromScene(middle->scenePos() + QPointF(12, 45));
    mouse(canvas, QEvent::MouseButtonPress, grip, Qt::LeftButton, Qt::LeftButton);
    int moved = 0;
    add(
        QStringLiteral("drag of a node, a move"), {},
        [&] {
            mouse(canvas, QEvent::MouseMove, grip + QPointF(++moved % 40, 0), Qt::NoButton, Qt::LeftButton);
            story->show();
        },
        3 * rounds);
    mouse(canvas, QEvent::MouseButtonRelease, grip, Qt::LeftButton, Qt::NoButton);
    const QPointF place(300, 300);
    mouse(canvas, QEvent::MouseButtonPress, place, Qt::RightButton, Qt::RightButton);
    add(
        QStringLiteral("pan, a move"), {},
        [&] {
            mouse(canvas, QEvent::MouseMove, place + QPointF(7.0 * (++moved % 40), 0), Qt::NoButton,
                  Qt::RightButton);
            story->show();
        },
        3 * rounds);
    mouse(canvas, QEvent::MouseButtonRelease, place, Qt::RightButton, Qt::NoButton);
    add(
        QStringLiteral("wheel zoom, a step"), {},
        [&] {
            QWheelEvent wheel(place, canvas->mapToGlobal(place), QPoint(), QPoint(0, ++moved % 2 ? 60 : -60),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(canvas, &wheel);
            story->show();
        },
        3 * rounds);
}

void Works::everything()
{
    NodegraphScene *scene = story->scene();
    scene->deselectAll();
    scene->sl_deselectCurrentNode();
    story->window().sl_frame();
    story->show();
    QWidget *canvas = story->view()->viewport();
    add(QStringLiteral("frame with everything in view"), {}, [canvas] { canvas->repaint(); });

    const QPointF corner = story->view()->mapFromScene(QPointF(-60, -60));
    const QPointF other(canvas->width() - 2.0, canvas->height() - 2.0);
    std::vector<double> worst;
    for (int round = 0; round < qMax(3, rounds / 2); ++round) {
        scene->deselectAll();
        mouse(canvas, QEvent::MouseButtonPress, corner, Qt::LeftButton, Qt::LeftButton);
        double slowest = 0;
        for (int i = 1; i <= 20; ++i) {
            slowest = qMax(slowest, Measure::milliseconds([&] {
                               mouse(canvas, QEvent::MouseMove, corner + (other - corner) * i / 20,
                                     Qt::NoButton, Qt::LeftButton);
                               story->show();
                           }));
        }
        worst.push_back(slowest);
        mouse(canvas, QEvent::MouseButtonRelease, other, Qt::LeftButton, Qt::NoButton);
    }
    rows << Row{QStringLiteral("rubber band, worst move"), events, Measure::median(worst), 0};
    add(
        QStringLiteral("select all"), [scene] { scene->deselectAll(); },
        [this] {
            story->window().sl_selectAll();
            story->show();
        });
}

/// What is done to all of them.
void Works::emptying()
{
    const auto open = [this] {
        story->window().loadFrom(path);
        settle(*story);
    };
    const int few = qMax(3, rounds / 2);
    add(
        QStringLiteral("delete of all"),
        [&] {
            open();
            story->window().sl_selectAll();
        },
        [this] {
            story->window().sl_delete();
            story->show();
        },
        few);
    add(
        QStringLiteral("closing of the window"), open, [this] { story.reset(); }, 1);
}
