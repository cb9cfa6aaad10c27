#include "walk/walk.h"

namespace {

const QColor selectedColour(QStringLiteral("#EBF400"));
const QColor plainColour(QStringLiteral("#D9D9D9"));
const QColor endColour(QStringLiteral("#D6B4FC"));
const QColor importantColour(QStringLiteral("#ADD8E6"));

/// The entries of each menu, from top to bottom.
enum FileEntry { New, Open, Save, SaveAs, Close };
enum EditEntry { Undo, Redo, Cut, Copy, Paste, SelectAll, DeselectAll, Delete };
enum ViewEntry { ZoomIn, ZoomOut, ZoomTo50, ZoomTo100, ZoomTo200, Frame };
enum ToolsEntry { EndOfStory, Important, AddEvent };
enum HelpEntry { Documentation };

void addHands()
{
    QTest::addColumn<bool>("keys");
    QTest::newRow("mouse") << false;
    QTest::newRow("keys") << true;
}

} // namespace

class tst_MenuWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(walk.desktop.start(), qPrintable(walk.desktop.problem())); }
    void init() { failOnWarnings(); }
    void cleanup() { walk.tidyUp(); }

    void eachMenuShowsItsEntries();
    void editAndToolsChangeTheStory_data() { addHands(); }
    void editAndToolsChangeTheStory();
    void viewShowsTheStoryLargerAndSmaller_data() { addHands(); }
    void viewShowsTheStoryLargerAndSmaller();
    void fileMakesSavesAndOpens_data() { addHands(); }
    void fileMakesSavesAndOpens();
    void helpOpensTheDocumentation_data() { addHands(); }
    void helpOpensTheDocumentation();
    void nothingHappensWithoutATab_data() { addHands(); }
    void nothingHappensWithoutATab();
    void buttonsAddAndFilter();

private:
    bool choose(Menu menu, int entry) const
    {
        return byKeys ? window.chooseByKeys(menu, entry) : window.chooseByMouse(menu, entry);
    }
    void fetchHand()
    {
        QFETCH(const bool, keys);
        byKeys = keys;
    }
    QString named(const QString &stem) const { return stem + QLatin1String(byKeys ? "-keys" : "-mouse"); }
    void showsBodies(const QList<QColor> &colours);
    void pasteLastEventAt(const EventBox &from, QPoint target);
    void editByMenu();
    void moveByMenu();
    void markByMenu();

    Walk walk;
    const Desktop &desktop = walk.desktop;
    const EditorWindow &window = walk.window;
    bool byKeys = false;
    QString path;
    SavedScene scene; // as it was saved last
};

/// Leaves a picture of each open menu for whoever wants to see them.
void tst_MenuWalk::eachMenuShowsItsEntries()
{
    STEP(walk.start(QStringLiteral("menus")));
    const QStringList names{QStringLiteral("file"), QStringLiteral("edit"), QStringLiteral("view"),
                            QStringLiteral("tools"), QStringLiteral("help")};
    const QList<int> counts{5, 8, 6, 3, 1};
    for (int i = 0; i < names.size(); ++i) {
        QCOMPARE(window.openMenu(Menu(i)).size(), counts.at(i));
        QVERIFY(desktop.keepScreenshot(QStringLiteral("menu-%1.png").arg(names.at(i)),
                                       QRect(window.outline().topLeft(), QSize(500, 260))));
        QVERIFY(desktop.key(QStringLiteral("Escape")));
        QVERIFY(eventually([this] { return window.openedMenu().isEmpty(); }));
        QVERIFY(desktop.key(QStringLiteral("Escape"))); // the menu bar keeps the title until then
    }
    QVERIFY(window.openedMenu().isEmpty());
    STEP(walk.end());
}

void tst_MenuWalk::showsBodies(const QList<QColor> &colours)
{
    const QList<EventBox> boxes = window.shownEvents(int(colours.size()));
    QCOMPARE(boxes.size(), colours.size());
    for (int i = 0; i < colours.size(); ++i)
        QVERIFY2(window.comesToShowBodyColour(boxes.at(i), colours.at(i)), qPrintable(QString::number(i)));
}

void tst_MenuWalk::editAndToolsChangeTheStory()
{
    fetchHand();
    path = desktop.homePath(named(QStringLiteral("edit")) + QStringLiteral(".scene"));
    STEP(walk.start(named(QStringLiteral("edit"))));
    for (int count = 1; count <= 3; ++count) {
        QVERIFY(choose(Menu::tools, AddEvent));
        QVERIFY(window.comesToShowEntries(count));
    }
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(choose(Menu::view, Frame));
    QCOMPARE(window.framedEvents(3).size(), 3);
    STEP(walk.saveFirst(path));
    scene = readScene(path);
    QCOMPARE(scene.tabs.value(0).size(), 3);
    STEP(editByMenu());
    STEP(moveByMenu());
    STEP(markByMenu());
    STEP(walk.end());
}

void tst_MenuWalk::editByMenu()
{
    QVERIFY(choose(Menu::edit, SelectAll));
    STEP(showsBodies({selectedColour, selectedColour, selectedColour}));
    QVERIFY(choose(Menu::edit, DeselectAll));
    STEP(showsBodies({plainColour, plainColour, endColour}));
    QVERIFY(choose(Menu::edit, Undo));
    QVERIFY(window.comesToShowEntries(2));
    STEP(showsBodies({plainColour, endColour}));
    QVERIFY(choose(Menu::edit, Redo));
    QVERIFY(window.comesToShowEntries(3));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));

    QVERIFY(window.clickEvent(2, 3));
    QVERIFY(choose(Menu::edit, Delete));
    QVERIFY(window.comesToShowEntries(0));
    STEP(showsBodies({plainColour, plainColour}));
    QCOMPARE(walk.savedAgain(path).tabs.value(0).size(), 2);
    QVERIFY(choose(Menu::edit, Undo));
    QVERIFY(window.comesToShowEntries(3));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    QVERIFY(window.clickEmptyCanvas());
    STEP(showsBodies({plainColour, plainColour, endColour}));
    STEP(walk.checkScreen());
}

/// Moves the last event, once after Copy and once after Cut, and undoes it.
void tst_MenuWalk::moveByMenu()
{
    const QList<EventBox> boxes = window.shownEvents(3);
    QCOMPARE(boxes.size(), 3);
    const EventBox box = boxes.at(2);
    for (const int taken : {Copy, Cut}) {
        QVERIFY(desktop.click(box.body()));
        QVERIFY(choose(Menu::edit, taken));
        STEP(showsBodies(taken == Cut ? QList<QColor>{plainColour, plainColour}
                                      : QList<QColor>{plainColour, plainColour, selectedColour}));
        QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
        STEP(pasteLastEventAt(box, box.at(-60, 220)));
        QVERIFY(choose(Menu::edit, Undo));
        QVERIFY(choose(Menu::edit, Undo));
        QVERIFY(window.comesToShowEntries(3));
        QVERIFY(window.clickEmptyCanvas());
        STEP(showsBodies({plainColour, plainColour, endColour}));
        QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    }
}

/// The place to paste at is where the mouse was last on the canvas.
void tst_MenuWalk::pasteLastEventAt(const EventBox &from, QPoint target)
{
    QVERIFY(desktop.moveTo(target));
    QVERIFY(choose(Menu::edit, Paste));
    QVERIFY(window.comesToShowEntries(1));
    QVERIFY(eventually([&] {
        const QList<EventBox> seen = window.events();
        return seen.size() == 3 && (seen.at(2).header.topLeft() - target).manhattanLength() <= 4;
    }));
    const SavedScene pasted = walk.savedAgain(path);
    QCOMPARE(pasted.tabs.value(0).size(), 3);
    const SavedEvent &moved = pasted.tabs.at(0).at(2);
    QCOMPARE(moved.endOfStory, 1);
    QCOMPARE(moved.upstream, -1);
    const QPoint way = target - from.header.topLeft();
    QVERIFY(qAbs(moved.x - scene.tabs.at(0).at(2).x - way.x() / from.scale()) < 5);
    QVERIFY(qAbs(moved.y - scene.tabs.at(0).at(2).y - way.y() / from.scale()) < 5);
}

void tst_MenuWalk::markByMenu()
{
    QVERIFY(window.clickEvent(0, 3));
    QVERIFY(choose(Menu::tools, Important));
    scene.tabs[0][0].important = 1;
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    QVERIFY(window.clickEmptyCanvas());
    STEP(showsBodies({importantColour, plainColour, endColour}));

    QVERIFY(window.clickEvent(1, 3));
    QVERIFY(choose(Menu::tools, EndOfStory));
    QVERIFY(window.comesToShowEntries(2));
    scene.tabs[0][1].endOfStory = 1;
    scene.tabs[0][2].endOfStory = 0;
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    QVERIFY(window.clickEmptyCanvas());
    STEP(showsBodies({importantColour, endColour, plainColour}));
    STEP(walk.checkScreen());
}

void tst_MenuWalk::viewShowsTheStoryLargerAndSmaller()
{
    fetchHand();
    STEP(walk.start(named(QStringLiteral("view"))));
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.comesToShowEntries(1));
    struct Step
    {
        int entry;
        double scale;
    };
    const QList<Step> steps{{ZoomTo100, 1.0}, {ZoomIn, 1.2},  {ZoomIn, 1.44},
                            {ZoomTo100, 1.0}, {ZoomOut, 0.8}, {ZoomOut, 0.64},
                            {ZoomTo50, 0.5},  {ZoomIn, 0.6},  {ZoomTo200, 2.0}};
    for (const Step &step : steps) {
        QVERIFY(choose(Menu::view, step.entry));
        QVERIFY2(window.comesToShowScale(step.scale), qPrintable(QString::number(step.scale)));
        STEP(walk.checkScreen());
    }
    QVERIFY(choose(Menu::view, Frame));
    QCOMPARE(window.framedEvents(1).size(), 1);
    QCOMPARE(walk.logged({QStringLiteral("ZoomingIn")}), 3);
    STEP(walk.end());
}

void tst_MenuWalk::fileMakesSavesAndOpens()
{
    fetchHand();
    const QString first = desktop.homePath(named(QStringLiteral("first")) + QStringLiteral(".scene"));
    const QString second = desktop.homePath(named(QStringLiteral("second")) + QStringLiteral(".scene"));
    STEP(walk.start(named(QStringLiteral("file"))));
    STEP(walk.addChain(2));
    QVERIFY(choose(Menu::file, Save));
    QVERIFY(window.giveFile(QStringLiteral("Save Scene"), first));
    QVERIFY(eventually([&] { return QFile::exists(first); }));
    const QByteArray bytes = bytesOf(first);
    QCOMPARE(readScene(first).tabs.value(0).size(), 2);

    // Close/Exit does nothing at all.
    const QStringList log = walk.linesOfCommands();
    QVERIFY(choose(Menu::file, Close));
    QVERIFY(desktop.moveTo(window.outline().center()));
    QVERIFY(window.hasKeyboard());
    QVERIFY(window.comesToShowEntries(2));
    QVERIFY(window.comesToShowTabs(1));
    QCOMPARE(walk.linesOfCommands(), log);

    QVERIFY(choose(Menu::file, SaveAs));
    QVERIFY(window.giveFile(QStringLiteral("Save Scene"), second));
    QVERIFY(eventually([&] { return QFile::exists(second); }));
    QCOMPARE(bytesOf(second), bytes);

    // Save now writes the second file.
    QVERIFY(window.clickEvent(1, 2));
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.comesToShowEntries(3));
    QVERIFY(choose(Menu::file, Save));
    QVERIFY(eventually([&] { return bytesOf(second) != bytes; }));
    QCOMPARE(readScene(second).tabs.value(0).size(), 3);
    QCOMPARE(bytesOf(first), bytes);

    QVERIFY(choose(Menu::file, New));
    QVERIFY(window.comesToShowTabs(0));
    QVERIFY(window.comesToShowCanvas(false));
    QVERIFY(choose(Menu::file, Open));
    QVERIFY(window.giveFile(QStringLiteral("Load Scene"), first));
    QVERIFY(window.comesToShowTabs(1));
    QVERIFY(window.comesToShowEntries(2));
    QCOMPARE(window.framedEvents(2).size(), 2);
    STEP(walk.end());
}

void tst_MenuWalk::helpOpensTheDocumentation()
{
    fetchHand();
    // Stands in for the system's browser.
    const QString opened = desktop.homePath(named(QStringLiteral("opened")));
    QVERIFY(QDir().mkpath(desktop.homePath(QStringLiteral("bin"))));
    QFile script(desktop.homePath(QStringLiteral("bin/xdg-open")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >> '" + opened.toUtf8() + "'\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));

    STEP(walk.start(named(QStringLiteral("help"))));
    QVERIFY(choose(Menu::help, Documentation));
    QVERIFY(eventually([&] { return !bytesOf(opened).isEmpty(); }));
    static const QRegularExpression address(QStringLiteral("^https://[^/]+/documentation\n$"));
    QVERIFY2(address.match(QString::fromUtf8(bytesOf(opened))).hasMatch(), bytesOf(opened).constData());
    QVERIFY(eventually([&] { return walk.logged({QStringLiteral("Opening Support page")}) == 1; }));
    STEP(walk.end());
}

void tst_MenuWalk::nothingHappensWithoutATab()
{
    fetchHand();
    STEP(walk.start(named(QStringLiteral("tabless"))));
    QVERIFY(choose(Menu::file, New));
    QVERIFY(window.comesToShowTabs(0));
    QVERIFY(window.comesToShowCanvas(false));

    const QPoint aside = window.outline().center();
    QVERIFY(desktop.moveTo(aside));
    const QImage before = desktop.screenshot();
    const int told = int(walk.linesOfCommands().size());
    struct Choice
    {
        Menu menu;
        int count;
    };
    for (const Choice &choice : {Choice{Menu::edit, 8}, Choice{Menu::view, 6}, Choice{Menu::tools, 3}}) {
        for (int entry = 0; entry < choice.count; ++entry) {
            QVERIFY(choose(choice.menu, entry));
            QVERIFY(desktop.moveTo(aside));
            QVERIFY2(eventually([&] { return desktop.screenshot() == before; }),
                     qPrintable(QStringLiteral("%1/%2").arg(int(choice.menu)).arg(entry)));
        }
    }
    QVERIFY(choose(Menu::file, Close));
    QVERIFY(desktop.moveTo(aside));
    QVERIFY(eventually([&] { return desktop.screenshot() == before; }));
    QCOMPARE(walk.linesOfCommands().mid(told),
             (QStringList{QStringLiteral("cut"), QStringLiteral("Copy"), QStringLiteral("paste"),
                          QStringLiteral("ZoomingIn")}));
    STEP(walk.end());
}

void tst_MenuWalk::buttonsAddAndFilter()
{
    STEP(walk.start(QStringLiteral("buttons")));
    for (int count = 1; count <= 3; ++count) {
        QVERIFY(window.pressAddButton());
        QVERIFY(window.comesToShowEntries(count));
    }
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+f")));
    const QList<EventBox> boxes = window.framedEvents(3);
    QCOMPARE(boxes.size(), 3);
    QVERIFY(window.pressFilterButton());
    QVERIFY(window.comesToShowEntries(0));
    QVERIFY(desktop.click(boxes.at(1).body()));
    QVERIFY(window.key(QStringLiteral("ctrl+i")));
    QVERIFY(window.comesToShowEntries(1));
    QVERIFY(window.pressFilterButton());
    QVERIFY(window.comesToShowEntries(3));
    STEP(walk.checkScreen());

    QVERIFY(window.pressTabButton());
    QVERIFY(window.comesToShowTabs(2));
    QVERIFY(window.comesToShowEntries(3));
    QVERIFY(window.chooseTab(1));
    QVERIFY(window.comesToShowCurrentTab(1));
    QVERIFY(window.comesToShowEntries(0));
    QVERIFY(window.pressAddButton());
    QVERIFY(window.comesToShowEntries(1));
    STEP(walk.end());
}

QTEST_GUILESS_MAIN(tst_MenuWalk)
#include "tst_menuwalk.moc"
