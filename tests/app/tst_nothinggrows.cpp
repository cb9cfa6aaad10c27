#include "app/longruns.h"
#include "app/windowsupport.h"
#include "items/stnodename.h"
#include "scene/shownscene.h"

#include <QDir>
#include <QLoggingCategory>
#include <QMenu>
#include <QPixmapCache>

// After a thousand rounds of anything the program holds no more memory, widgets, objects or items than after
// the first fifty. Rounds that push edits empty the history before they are measured: it is allowed to grow.

namespace {

constexpr int warmUpRounds = 50;
constexpr int rounds = 1000;
/// Bytes by which the memory may differ: 70 a round, less than any object of the program takes.
constexpr qint64 tolerance = 64 * 1024;

struct Holding
{
    qint64 bytes = 0;
    qsizetype widgets = 0;
    qsizetype windows = 0;
    qsizetype objects = 0;
    qsizetype items = 0;
};

} // namespace

class tst_NothingGrows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("*.info=false"));
        QPixmapCache::setCacheLimit(0); // it forgets what it no longer needs only after half a minute
    }
    void init();
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }

    void byOpenAndNew();
    void byOpeningDamagedFiles();
    void byConnectingAndDisconnecting();
    void byDraggingConnectionsAndUndoing();
    void byAddingAndUndoing();
    void byAddingAndDeleting();
    void byDeletingAndUndoing();
    void byUndoingAndRedoingAll();
    void byCopyingPastingAndUndoing();
    void byCuttingPastingAndUndoing();
    void bySwitchingTabs();
    void byAddingAndClosingTabs();
    void bySwitchingTheFilter();
    void byRebuildingThePanel();
    void byMarking();
    void byTypingAndUndoing_data();
    void byTypingAndUndoing();
    void byDraggingEvents();
    void byRubberBandsAndZoom();
    void bySavingAndAutosaving();
    void byMenusOfATextThatCloseAgain();

private:
    NodegraphView *view() const { return window->views().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    Node *node(std::size_t place) const { return scene()->nodes().at(place); }
    void trigger(const char *action) const { actionOf(*window, action)->trigger(); }
    Holding holdingNow() const;
    void compareAfter(const std::function<void()> &round, int times = rounds) const;

    void mouse(QEvent::Type type, QPointF pos, Qt::MouseButtons held) const;
    void drag(QPointF from, QPointF to) const;

    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<MainWindow> window;
    QString file;
    int done = 0; // rounds that did what they are about
};

// A window with one tab, in which three events are a story. The middle one is important.
void tst_NothingGrows::init()
{
    failOnWarningsButOfMenus();
    done = 0;
    home = std::make_unique<PrivateHome>();
    window = std::make_unique<MainWindow>();
    window->resize(1200, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    file = home->filePath(QStringLiteral("story.scene"));
    Record dawn{QStringLiteral("Dawn"), QPointF(20, 30), 0};
    Record noon{QStringLiteral("Noon"), QPointF(500, 30), 1, 0, false, true};
    Record dusk{QStringLiteral("Dusk"), QPointF(20, 400), 2, 1, true};
    dawn.description = noon.description = dusk.description = QStringLiteral("It happens.");
    QVERIFY(writeFile(file, documentBytes({{dawn, noon, dusk}})));
    window->loadFrom(file);
    QApplication::processEvents();
    view()->undoStack()->clear(); // of the connections that were read
    view()->resetTransform();
    view()->horizontalScrollBar()->setValue(0);
    view()->verticalScrollBar()->setValue(0);
}

Holding tst_NothingGrows::holdingNow() const
{
    for (const NodegraphView *each : window->views())
        each->undoStack()->clear();
    // Twice: what is deleted may post something in its turn.
    for (int i = 0; i < 2; ++i) {
        QApplication::processEvents();
        flushDeferredDeletes();
    }
    Holding holding;
    holding.widgets = QApplication::allWidgets().size();
    holding.windows = QGuiApplication::allWindows().size();
    holding.objects = window->findChildren<QObject *>().size();
    holding.items = window->overviewerScene()->items().size();
    for (int i = 0; i < tabsOf(*window)->count(); ++i)
        holding.items += sceneOf(*window, i)->items().size();
    holding.bytes = allocatedBytes();
    return holding;
}

void tst_NothingGrows::compareAfter(const std::function<void()> &round, int times) const
{
    Holding early;
    for (int i = 0; i < times; ++i) {
        if (i == warmUpRounds)
            early = holdingNow();
        round();
        flushDeferredDeletes();
        if (i % 50 == 0)
            QApplication::processEvents(); // paints, among others
    }
    const Holding late = holdingNow();
    qDebug() << "bytes" << early.bytes << "->" << late.bytes << "widgets" << late.widgets << "objects"
             << late.objects << "items" << late.items;
    QCOMPARE(late.widgets, early.widgets);
    QCOMPARE(late.windows, early.windows);
    QCOMPARE(late.objects, early.objects);
    QCOMPARE(late.items, early.items);
    QVERIFY2(late.bytes - early.bytes <= tolerance,
             qPrintable(QStringLiteral("%1 bytes more").arg(late.bytes - early.bytes)));
}

/// Straight to the canvas: a mouse that moves through the window would paint each time.
void tst_NothingGrows::mouse(QEvent::Type type, QPointF pos, Qt::MouseButtons held) const
{
    const QPointF place = view()->mapFromScene(pos);
    QMouseEvent event(type, place, view()->viewport()->mapToGlobal(place),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, {});
    QApplication::sendEvent(view()->viewport(), &event);
}

void tst_NothingGrows::drag(QPointF from, QPointF to) const
{
    mouse(QEvent::MouseMove, from, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, from, Qt::LeftButton);
    mouse(QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
    mouse(QEvent::MouseMove, to, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, to, Qt::NoButton);
}

void tst_NothingGrows::byOpenAndNew()
{
    compareAfter([this] {
        trigger("actionNew");
        window->loadFrom(file);
    });
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::byOpeningDamagedFiles()
{
    const QByteArray whole = readFile(file);
    const QString damaged = home->filePath(QStringLiteral("damaged.scene"));
    QVERIFY(writeFile(damaged, whole.chopped(10)));
    compareAfter([this, &damaged] { window->loadFrom(damaged); });
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::byConnectingAndDisconnecting()
{
    scene()->disconnectNode(node(1));
    scene()->disconnectNode(node(2));
    compareAfter([this] {
        drag(outputOf(node(0)), inputOf(node(1)));
        drag(inputOf(node(1)), emptySpace);
    });
    QVERIFY(!node(1)->hasInput());
    drag(outputOf(node(0)), inputOf(node(1)));
    QVERIFY(node(1)->hasInput());
    QCOMPARE(view()->undoStack()->count(), 1);
}

void tst_NothingGrows::byDraggingConnectionsAndUndoing()
{
    compareAfter([this] {
        const QPointF grip = nearEnd(node(1)->inLine(), SocketType::output);
        drag(grip, emptySpace); // off
        done += node(1)->hasInput() ? 0 : 1;
        trigger("actionUndo");
    });
    QCOMPARE(done, rounds);
    QCOMPARE(node(1)->prevNode(), node(0));
    QVERIFY(linesAreExact(*scene()));
}

void tst_NothingGrows::byAddingAndUndoing()
{
    compareAfter([this] {
        trigger("actionAdd_Event");
        done += scene()->nodes().size() == 4 ? 1 : 0;
        trigger("actionUndo");
    });
    QCOMPARE(done, rounds);
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::byAddingAndDeleting()
{
    compareAfter([this] {
        trigger("actionAdd_Event");
        done += scene()->nodes().size() == 4 ? 1 : 0;
        scene()->sl_selectCurrentNode(scene()->nodes().back());
        trigger("actionDelete");
    });
    QCOMPARE(done, rounds);
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::byDeletingAndUndoing()
{
    compareAfter([this] {
        scene()->sl_selectCurrentNode(node(1));
        trigger("actionDelete");
        done += scene()->nodes().size() == 2 ? 1 : 0;
        trigger("actionUndo");
    });
    QCOMPARE(done, rounds);
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
    QCOMPARE(linesOf(*scene()).size(), std::size_t(2));
}

void tst_NothingGrows::byUndoingAndRedoingAll()
{
    const auto edit = [this] {
        scene()->sl_selectCurrentNode(node(1));
        trigger("actionDelete");
        trigger("actionAdd_Event");
    };
    compareAfter([this, edit] {
        if (view()->undoStack()->count() == 0) // measuring has emptied it
            edit();
        while (view()->undoStack()->canUndo())
            trigger("actionUndo");
        while (view()->undoStack()->canRedo())
            trigger("actionRedo");
        while (view()->undoStack()->canUndo())
            trigger("actionUndo");
    });
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::byCopyingPastingAndUndoing()
{
    compareAfter([this] {
        scene()->sl_selectCurrentNode(node(1));
        trigger("actionCopy");
        trigger("actionPaste");
        done += view()->undoStack()->count() == 2 ? 1 : 0; // one added, one deleted
        while (view()->undoStack()->canUndo())
            trigger("actionUndo");
    });
    QCOMPARE(done, rounds);
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::byCuttingPastingAndUndoing()
{
    compareAfter([this] {
        scene()->sl_deselectCurrentNode();
        trigger("actionSelect_All");
        trigger("actionCut");
        trigger("actionPaste");
        done += view()->undoStack()->count() == 6 ? 1 : 0;
        while (view()->undoStack()->canUndo())
            trigger("actionUndo");
        trigger("actionDeselect_All");
    });
    QCOMPARE(done, rounds);
    QCOMPARE(scene()->nodes().size(), std::size_t(3));
}

void tst_NothingGrows::bySwitchingTabs()
{
    window->addNodeGraphTab();
    addEvent(sceneOf(*window, 1), QStringLiteral("Night"), QStringLiteral("It is dark."));
    compareAfter([this] {
        tabsOf(*window)->setCurrentIndex(1);
        done += panelTexts(*window).size() == 1 ? 1 : 0;
        tabsOf(*window)->setCurrentIndex(0);
    });
    QCOMPARE(done, rounds);
    QCOMPARE(panelTexts(*window).size(), 3);
}

void tst_NothingGrows::byAddingAndClosingTabs()
{
    const auto addAndClose = [this] {
        window->addNodeGraphTab();
        addEvent(sceneOf(*window, 1), QStringLiteral("Night"));
        QTimer::singleShot(0, window.get(), [] {
            auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (question)
                question->button(QMessageBox::No)->click();
        });
        window->closeTab(1);
    };
    compareAfter(addAndClose, rounds / 4); // a question takes its time
    QCOMPARE(tabsOf(*window)->count(), 1);
}

void tst_NothingGrows::bySwitchingTheFilter()
{
    compareAfter([this] { buttonOf(*window, "F1_button")->click(); });
    QCOMPARE(panelTexts(*window).size(), 3);
    buttonOf(*window, "F1_button")->click();
    QCOMPARE(panelTexts(*window).size(), 1);
}

void tst_NothingGrows::byRebuildingThePanel()
{
    compareAfter([this] { scene()->updateStory(); });
    QCOMPARE(panelTexts(*window).size(), 3);
}

void tst_NothingGrows::byMarking()
{
    compareAfter([this] {
        for (const std::size_t place : {0, 2}) {
            scene()->sl_selectCurrentNode(node(place));
            trigger("actionSet_as_Important");
            trigger("actionSet_End_of_Story");
        }
    });
    QCOMPARE(scene()->endOfStoryNode(), node(2));
}

void tst_NothingGrows::byTypingAndUndoing_data()
{
    QTest::addColumn<int>("place");
    QTest::newRow("title") << 0;
    QTest::newRow("description") << 1;
    QTest::newRow("panel entry") << 2;
}

void tst_NothingGrows::byTypingAndUndoing()
{
    QFETCH(int, place);
    QGraphicsTextItem *text = node(0)->nameItem();
    if (place > 0)
        text = descriptionOf(node(0));
    if (place > 1)
        text = descriptionOf(window->overviewerScene()->ovNodes().front());
    const QString before = text->toPlainText();
    QWidget *canvas = text->scene()->views().front()->viewport();
    text->scene()->views().front()->setFocus();
    text->setFocus();
    compareAfter([canvas] {
        for (const char letter : {'f', 'o', 'g'})
            QTest::keyClick(canvas->parentWidget(), letter);
        QTest::keyClick(canvas->parentWidget(), Qt::Key_Backspace);
        while (QApplication::focusWidget() == canvas->parentWidget()) {
            auto *view = qobject_cast<QGraphicsView *>(canvas->parentWidget());
            auto *item = dynamic_cast<QGraphicsTextItem *>(view->scene()->focusItem());
            if (!item || !item->document()->isUndoAvailable())
                break;
            QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
        }
    });
    QCOMPARE(text->toPlainText(), before);
    QVERIFY(text->document()->isRedoAvailable());
}

void tst_NothingGrows::byDraggingEvents()
{
    const QPointF there(100, 60);
    compareAfter([this, there] {
        drag(bodyOf(node(0)), bodyOf(node(0)) + there);
        drag(bodyOf(node(0)), bodyOf(node(0)) - there);
    });
    QCOMPARE(node(0)->scenePos(), QPointF(20, 30));
}

void tst_NothingGrows::byRubberBandsAndZoom()
{
    compareAfter([this] {
        drag(QPointF(5, 5), QPointF(700, 600));
        trigger("actionFrame");
        trigger("actionZoom_In");
        trigger("actionZoom_Out");
        view()->resetTransform();
        view()->horizontalScrollBar()->setValue(0);
        view()->verticalScrollBar()->setValue(0);
    });
    QCOMPARE(scene()->selectedNodes().size(), std::size_t(3));
}

void tst_NothingGrows::bySavingAndAutosaving()
{
    QDir folder(home->filePath(QStringLiteral("Documents/Fablegrid/Autosavedir")));
    const QByteArray bytes = readFile(file);
    compareAfter([this, &folder] {
        QFile::remove(file);
        window->saveTo(file);
        window->autosave();
        const QStringList copies = folder.entryList(QDir::Files);
        done += copies.size() == 1 && QFile::exists(file) ? 1 : 0;
        for (const QString &copy : copies)
            folder.remove(copy);
    });
    QCOMPARE(done, rounds);
    QCOMPARE(readFile(file).toHex(), bytes.toHex());
    QCOMPARE(QDir(QFileInfo(file).path()).entryList(QDir::Files | QDir::Hidden), QStringList{"story.scene"});
}

void tst_NothingGrows::byMenusOfATextThatCloseAgain()
{
    view()->setFocus();
    QGraphicsTextItem *text = descriptionOf(node(0));
    text->setFocus();
    const QPoint place = view()->mapFromScene(text->mapToScene(text->boundingRect().center()));
    int menus = 0;
    compareAfter([this, place, &menus] {
        QContextMenuEvent byKey(QContextMenuEvent::Keyboard, place, view()->viewport()->mapToGlobal(place));
        QApplication::sendEvent(view()->viewport(), &byKey);
        if (QWidget *menu = QApplication::activePopupWidget()) {
            ++menus;
            menu->close();
        }
    });
    QCOMPARE(menus, rounds);
}

int main(int argc, char *argv[])
{
    countAllocationsExactly(argv);
    keepFilesInMemory();
    QApplication application(argc, argv);
    tst_NothingGrows test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_nothinggrows.moc"
