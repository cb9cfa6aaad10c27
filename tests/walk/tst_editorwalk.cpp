#include "walk/walk.h"

namespace {

struct Chapter
{
    QString title;
    QString description;
};

/// One, three and two lines: in the panel each is told from the others by its height.
const QList<Chapter> tale{
    {QStringLiteral("The lamp"), QStringLiteral("Who let the lamp go out?")},
    {QStringLiteral("The crossing"),
     QStringLiteral("He rows for new fire.\nThe sea is \"rough\" & dark;\nhe counts 100 waves.")},
    {QStringLiteral("The light"), QStringLiteral("It burns again!\nEvery ship turns home.")},
};

const QColor importantColour(QStringLiteral("#ADD8E6"));

const QString saveDialog = QStringLiteral("Save Scene");
const QString openDialog = QStringLiteral("Load Scene");
const QString yes = QStringLiteral("alt+y");
const QString no = QStringLiteral("alt+n");
const QString cancel = QStringLiteral("Escape");

constexpr int saveAsEntry = 3; // of the File menu

bool haveTaleHeights(const QList<QRect> &entries)
{
    return entries.size() == 3 && entries.at(0).height() < entries.at(2).height() &&
           entries.at(2).height() < entries.at(1).height();
}

} // namespace

class tst_EditorWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(walk.desktop.start(), qPrintable(walk.desktop.problem())); }
    void init() { failOnWarnings(); }
    void cleanup() { walk.tidyUp(); }

    void storyIsWrittenSavedAndOpenedAgain();
    void tabsAreMadeAndClosedByEachAnswer();
    void windowStaysOrClosesByTheAnswer();

private:
    void start(const QString &name);

    void addThreeEvents();
    void writeTheTale();
    void layOutTheBoxes();
    void markTheMiddleEvent();
    void joinAnew();
    void undoAndRedo();
    void checkSavedTale(const QString &path);
    void openAgain(const QString &path);

    Walk walk;
    const Desktop &desktop = walk.desktop;
    const EditorWindow &window = walk.window;
};

void tst_EditorWalk::start(const QString &name)
{
    STEP(walk.start(name));
    QCOMPARE(window.outline().size(), QSize(1440, 748));
}

void tst_EditorWalk::addThreeEvents()
{
    for (int count = 1; count <= 3; ++count) {
        QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
        QVERIFY(window.comesToShowEntries(count));
        // The new one is in sight as a whole, joined to the one before it.
        QVERIFY(eventually([&] {
            const QList<EventBox> seen = window.events();
            return !seen.isEmpty() && seen.constLast().inputFed == (count > 1) &&
                   !seen.constLast().outputFeeds;
        }));
    }
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+f")));
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(boxes.at(i).inputFed, i > 0);
        QCOMPARE(boxes.at(i).outputFeeds, i < 2);
    }
}

void tst_EditorWalk::writeTheTale()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(window.replaceTitle(boxes.at(i), tale.at(i).title));
        QVERIFY(window.writeDescription(boxes.at(i), tale.at(i).description));
    }
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(eventually([this] { return haveTaleHeights(window.entries()); }));
    STEP(walk.checkScreen());
}

/// Puts the boxes like stairs: the second one a bit below the first, the third below the second.
void tst_EditorWalk::layOutTheBoxes()
{
    QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    for (int i = 1; i < 3; ++i) {
        const QPoint way = boxes.at(i).at(-40.0 * i, 110.0 * i) - boxes.at(i).header.topLeft();
        const QPoint target = boxes.at(i).header.topLeft() + way;
        QVERIFY(desktop.drag(boxes.at(i).body(), boxes.at(i).body() + way));
        QVERIFY(eventually([&] {
            const QList<EventBox> seen = window.events();
            return seen.size() == 3 && (seen.at(i).header.topLeft() - target).manhattanLength() <= 4;
        }));
    }
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+f")));
    QCOMPARE(window.framedEvents(3).size(), 3);
    STEP(walk.checkScreen());
}

void tst_EditorWalk::markTheMiddleEvent()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    QVERIFY(desktop.click(boxes.at(1).body()));
    QVERIFY(window.key(QStringLiteral("ctrl+i")));
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.comesToShowBodyColour(boxes.at(1), importantColour));
    STEP(walk.checkScreen());
}

/// Takes the line between the first two boxes off at its input and draws it anew from the output.
void tst_EditorWalk::joinAnew()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    QVERIFY(desktop.drag(boxes.at(1).input, boxes.at(1).at(-40, 260)));
    QVERIFY(window.comesToShowEntries(2));
    QVERIFY(eventually([this] {
        const QList<EventBox> seen = window.events();
        return seen.size() == 3 && !seen.at(0).outputFeeds && !seen.at(1).inputFed && seen.at(2).inputFed;
    }));
    QVERIFY(desktop.keepScreenshot(QStringLiteral("taken-apart.png")));

    QVERIFY(desktop.drag(boxes.at(0).output, boxes.at(1).input));
    QVERIFY(eventually([this] { return haveTaleHeights(window.entries()); }));
    QVERIFY(eventually([this] {
        const QList<EventBox> seen = window.events();
        return seen.size() == 3 && seen.at(0).outputFeeds && seen.at(1).inputFed;
    }));
    STEP(walk.checkScreen());
}

void tst_EditorWalk::undoAndRedo()
{
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    QVERIFY(window.comesToShowEntries(2));
    QVERIFY(window.key(QStringLiteral("ctrl+y")));
    QVERIFY(eventually([this] { return haveTaleHeights(window.entries()); }));
    STEP(walk.checkScreen());
}

void tst_EditorWalk::checkSavedTale(const QString &path)
{
    const SavedScene scene = readScene(path);
    QCOMPARE(scene.problem, QString());
    QCOMPARE(scene.tabs.size(), 1);
    const QList<SavedEvent> events = scene.tabs.constFirst();
    QCOMPARE(events.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(events.at(i).tag, QStringLiteral("Event"));
        QCOMPARE(events.at(i).title, tale.at(i).title);
        QCOMPARE(events.at(i).description, tale.at(i).description);
        QCOMPARE(events.at(i).index, i);
        QCOMPARE(events.at(i).upstream, i - 1);
        QCOMPARE(events.at(i).endOfStory, i == 2 ? 1 : 0);
        QCOMPARE(events.at(i).important, i == 1 ? 1 : 0);
        // The chain stands 555 units apart; the drags that made the stairs are as exact as a pixel is.
        QVERIFY(qAbs(events.at(i).x - events.at(0).x - (555.0 - 40.0) * i) < 8);
        QVERIFY(qAbs(events.at(i).y - events.at(0).y - 110.0 * i) < 8);
    }
}

void tst_EditorWalk::openAgain(const QString &path)
{
    QVERIFY(window.key(QStringLiteral("ctrl+o")));
    QVERIFY(window.giveFile(openDialog, path));
    QVERIFY(eventually([this] { return haveTaleHeights(window.entries()); }));
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(boxes.at(i).inputFed, i > 0);
        QCOMPARE(boxes.at(i).outputFeeds, i < 2);
    }
    QVERIFY(window.comesToShowBodyColour(boxes.at(1), importantColour));
    QVERIFY(window.comesToShowTabs(1));
    STEP(walk.checkScreen());
}

void tst_EditorWalk::storyIsWrittenSavedAndOpenedAgain()
{
    const QString first = desktop.homePath(QStringLiteral("first.scene"));
    const QString second = desktop.homePath(QStringLiteral("second.scene"));

    STEP(start(QStringLiteral("story-written")));
    STEP(addThreeEvents());
    STEP(writeTheTale());
    STEP(layOutTheBoxes());
    STEP(markTheMiddleEvent());
    STEP(joinAnew());
    STEP(undoAndRedo());
    QVERIFY(desktop.keepScreenshot(QStringLiteral("story.png"), window.outline()));
    STEP(walk.saveFirst(first));
    STEP(checkSavedTale(first));
    QVERIFY(window.noticeHasGone()); // and leaves the canvas as it was
    STEP(walk.checkScreen());
    STEP(walk.end());
    QVERIFY(walk.program->logLines().contains(QStringLiteral("Connected node  1  to  0")));
    const QByteArray firstBytes = bytesOf(first);

    STEP(start(QStringLiteral("story-opened")));
    STEP(openAgain(first));
    QVERIFY(desktop.keepScreenshot(QStringLiteral("story-opened.png"), window.outline()));
    QVERIFY(window.chooseByMouse(Menu::file, saveAsEntry));
    STEP(walk.giveNewFile(second));
    QCOMPARE(bytesOf(second), firstBytes);

    // The document now is the second file: it is saved there without a question, the first one stays.
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    QVERIFY(window.replaceTitle(boxes.at(0), QStringLiteral("The cold lamp")));
    QVERIFY(window.key(QStringLiteral("ctrl+s")));
    QVERIFY(eventually([&] { return bytesOf(second) != firstBytes; }));
    QCOMPARE(readScene(second).tabs.at(0).at(0).title, QStringLiteral("The cold lamp"));

    QVERIFY(window.replaceTitle(boxes.at(2), QStringLiteral("The new light")));
    STEP(walk.end(yes));
    const SavedScene last = readScene(second);
    QCOMPARE(last.problem, QString());
    QCOMPARE(last.tabs.at(0).at(0).title, QStringLiteral("The cold lamp"));
    QCOMPARE(last.tabs.at(0).at(2).title, QStringLiteral("The new light"));
    QCOMPARE(last.tabs.at(0).at(2).description, tale.at(2).description);
    QCOMPARE(bytesOf(first), firstBytes);
}

void tst_EditorWalk::tabsAreMadeAndClosedByEachAnswer()
{
    const QString path = desktop.homePath(QStringLiteral("tabs.scene"));
    STEP(start(QStringLiteral("tabs")));
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.comesToShowEntries(1));

    // New leaves no tab, and "Tab +" makes the first one again.
    QVERIFY(window.key(QStringLiteral("ctrl+n")));
    QVERIFY(window.comesToShowTabs(0));
    QVERIFY(window.comesToShowEntries(0));
    QVERIFY(window.comesToShowCanvas(false));
    QVERIFY(window.pressTabButton());
    QVERIFY(window.comesToShowTabs(1));
    QVERIFY(window.comesToShowCanvas(true));
    QVERIFY(window.pressAddButton());
    QVERIFY(window.comesToShowEntries(1));

    // The panel follows the current tab.
    QVERIFY(window.pressTabButton());
    QVERIFY(window.comesToShowTabs(2));
    QVERIFY(window.comesToShowCurrentTab(0));
    QVERIFY(window.chooseTab(1));
    QVERIFY(window.comesToShowCurrentTab(1));
    QVERIFY(window.comesToShowEntries(0));
    for (int count = 1; count <= 2; ++count) {
        QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
        QVERIFY(window.comesToShowEntries(count));
    }
    QVERIFY(desktop.keepScreenshot(QStringLiteral("tabs.png"), window.outline()));
    QVERIFY(window.chooseTab(0));
    QVERIFY(window.comesToShowEntries(1));
    STEP(walk.checkScreen());

    // Cancel keeps the tab, No closes it.
    QVERIFY(window.pressCloseButton(1));
    QVERIFY(window.answer(cancel));
    QVERIFY(window.hasKeyboard());
    QVERIFY(window.comesToShowTabs(2));
    QVERIFY(window.pressCloseButton(1));
    QVERIFY(window.answer(no));
    QVERIFY(window.comesToShowTabs(1));
    QVERIFY(window.comesToShowEntries(1));

    // Yes saves all tabs, this one included, before it closes.
    QVERIFY(window.pressTabButton());
    QVERIFY(window.comesToShowTabs(2));
    QVERIFY(window.pressCloseButton(1));
    QVERIFY(window.answer(yes));
    STEP(walk.giveNewFile(path));
    QVERIFY(window.comesToShowTabs(1));
    const SavedScene scene = readScene(path);
    QCOMPARE(scene.problem, QString());
    QCOMPARE(scene.tabs.size(), 2);
    QCOMPARE(scene.tabs.at(0).size(), 1);
    QCOMPARE(scene.tabs.at(1).size(), 0);

    // The last tab stays without a question: the next key is for the canvas, not for a dialog.
    QVERIFY(window.pressCloseButton(0));
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.comesToShowEntries(2));
    QVERIFY(window.comesToShowTabs(1));
    STEP(walk.end());
    QCOMPARE(readScene(path).tabs.at(0).size(), 1);
}

void tst_EditorWalk::windowStaysOrClosesByTheAnswer()
{
    STEP(start(QStringLiteral("window-closed")));
    QVERIFY(window.askToClose());
    QVERIFY(window.answer(cancel));
    // It still takes part in life.
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.comesToShowEntries(1));
    QVERIFY(walk.program->isRunning());
    STEP(walk.end());

    // It closes as well when the saving that was wanted is given up in the file dialog.
    STEP(start(QStringLiteral("window-closed-unsaved")));
    QVERIFY(window.askToClose());
    QVERIFY(window.answer(yes));
    QVERIFY(window.cancelDialog(saveDialog));
    QVERIFY(walk.program->endsWell());
    STEP(walk.checkLog());
}

QTEST_GUILESS_MAIN(tst_EditorWalk)
#include "tst_editorwalk.moc"
