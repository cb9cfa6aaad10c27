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
#include <QUndoStack>
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
        values.push_back(timed(work, step));
    }
    rows << Row{work, events, Measure::median(values)};
}

double Works::timed(const QString &work, const Step &step) const
{
    return Measure::milliseconds(
        [this, &work, &step] { Measure::count(QStringLiteral("%1|%2").arg(work).arg(events), step); });
}

void Works::addPair(const QString &there, const Step &go, const QString &back, const Step &comeBack,
                    int times)
{
    std::vector<double> first;
    std::vector<double> second;
    const auto shown = [this](const QString &work, const Step &step) {
        return timed(work, [this, &step] {
            step();
            story->show();
        });
    };
    for (int i = 0; i < (times > 0 ? times : rounds); ++i) {
        first.push_back(shown(there, go));
        second.push_back(shown(back, comeBack));
    }
    rows << Row{there, events, Measure::median(first)} << Row{back, events, Measure::median(second)};
}

const std::vector<Works::Part> &Works::parts()
{
    static const std::vector<Part> all{
        {"memory", &Works::memory},     {"documents", &Works::documents},     {"edits", &Works::edits},
        {"marks", &Works::editsBack},   {"connections", &Works::connections}, {"typing", &Works::typing},
        {"looking", &Works::looking},   {"everything", &Works::everything},   {"pasting", &Works::pasting},
        {"emptying", &Works::emptying}, {"command", &Works::command},         {"ending", &Works::ending}};
    return all;
}

QStringList Works::partNames()
{
    QStringList names;
    for (const Part &part : parts())
        names << QString::fromLatin1(part.name);
    return names;
}

QVector<Row> Works::measured(const QStringList &partsWanted, std::vector<double> &units)
{
    for (const Part &part : parts()) {
        if (!partsWanted.isEmpty() && !partsWanted.contains(QLatin1String(part.name)))
            continue;
        if (!story && part.measure != &Works::memory)
            openStory();
        units.push_back(Measure::unit());
        (this->*part.measure)();
    }
    return rows;
}

void Works::openStory()
{
    story = std::make_unique<StoryWindow>();
    story->window().loadFrom(path);
    story->show();
}

/// First of all, while the process has not yet held anything larger.
void Works::memory()
{
    story = std::make_unique<StoryWindow>();
    Measure::giveMemoryBack();
    const double before = Measure::residentKiB();
    story->window().loadFrom(path);
    story->show();
    const double opened = Measure::residentKiB();
    rows << Row{QStringLiteral("memory an event"), events, (opened - before) / events, Row::Kind::memory};
    for (const char *work : {"memory more after New", "memory more after a second New"}) {
        story->window().clearTabs();
        settle(*story);
        rows << Row{QString::fromLatin1(work), events, Measure::residentKiB() - before, Row::Kind::memory};
        story->window().loadFrom(path);
        story->show();
    }
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
    const QString pairs = folder.filePath(QStringLiteral("pairs.scene"));
    writeStory(pairs, events, StoryShape::pairsBehindAChain);
    add(
        QStringLiteral("open pairs behind a chain"), empty,
        [this, pairs] {
            story->window().loadFrom(pairs);
            story->show();
        },
        few);
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
    rows << Row{QStringLiteral("rubber band, worst move"), events, Measure::median(worst)};
    add(
        QStringLiteral("select all"), [scene] { scene->deselectAll(); },
        [this] {
            story->window().sl_selectAll();
            story->show();
        });
}

/// Selects so many events, whole rows of them or the first ones of a row, from the middle of the story.
void Works::select(int count)
{
    NodegraphScene *scene = story->scene();
    scene->deselectAll();
    scene->sl_deselectCurrentNode();
    const int inARow = 100;
    const int rowsTaken = (count + inARow - 1) / inARow;
    const int firstRow = (events / inARow - rowsTaken) / 2;
    const QPointF from(-50, 500.0 * firstRow - 50);
    const QPointF to(600.0 * (qMin(count, inARow) - 1) + 50, 500.0 * (firstRow + rowsTaken - 1) + 50);
    const auto send = [scene](QEvent::Type type, QPointF place, Qt::MouseButton button) {
        QGraphicsSceneMouseEvent event(type);
        event.setScenePos(place);
        event.setButton(button);
        event.setButtons(type == QEvent::GraphicsSceneMouseRelease ? Qt::NoButton : Qt::LeftButton);
        QCoreApplication::sendEvent(scene, &event);
    };
    send(QEvent::GraphicsSceneMousePress, from, Qt::LeftButton);
    send(QEvent::GraphicsSceneMouseMove, to, Qt::NoButton);
    send(QEvent::GraphicsSceneMouseRelease, to, Qt::LeftButton);
    if (int(scene->selectedNodes().size()) != count)
        qFatal("%d events selected instead of %d", int(scene->selectedNodes().size()), count);
}

/// The steps of a paste are undone without a frame in between.
void Works::pasting()
{
    const int few = qMax(1, rounds / 3);
    for (const int count : {20, 100, 1000}) {
        if (count > events)
            break;
        int before = 0;
        const auto open = [this, count] {
            story->window().loadFrom(path);
            settle(*story);
            story->lookAt(story->node(0.5));
            select(count);
        };
        const auto paste = [this, &before] {
            before = story->view()->undoStack()->count();
            story->window().sl_cut();
            story->scene()->sl_lastMousePos(QPointF(1000, 60000));
            story->window().sl_paste();
            story->show();
        };
        add(QStringLiteral("cut and paste of %1").arg(count), open, paste, few);
        addPair(
            QStringLiteral("undo of paste of %1").arg(count),
            [&] { story->view()->undoStack()->setIndex(before); },
            QStringLiteral("redo of paste of %1").arg(count),
            [&] { story->view()->undoStack()->setIndex(story->view()->undoStack()->count()); }, 1);
    }
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
    // Each step tells the story anew, as when the key is held down.
    constexpr int notTooMany = 2000;
    if (events <= notTooMany) {
        QUndoStack *stack = story->view()->undoStack();
        addPair(
            QStringLiteral("undo of delete of all"), [&] { stack->setIndex(stack->count() - events); },
            QStringLiteral("redo of delete of all"), [&] { stack->setIndex(stack->count()); }, 1);
    }
    add(
        QStringLiteral("closing of the window"), open, [this] { story.reset(); }, 1);
}
