#include "walk/walk.h"

#include <QFile>

// Without a mouse, and under the colours of other desktops.

namespace {

/// Settings of a desktop that hands its own colours to its programs.
QByteArray desktopColours(const char *text, const char *ground, const char *selection)
{
    QByteArray settings;
    for (const char *group : {"View", "Window", "Button", "Tooltip", "Selection"}) {
        const bool selected = qstrcmp(group, "Selection") == 0;
        settings += QByteArray("[Colors:") + group +
                    "]\nBackgroundNormal=" + (selected ? selection : ground) +
                    "\nBackgroundAlternate=" + ground + "\nForegroundNormal=" + text +
                    "\nForegroundInactive=" + text + "\n\n";
    }
    return settings;
}

} // namespace

class tst_AccessWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(walk.desktop.start(), qPrintable(desktop.problem())); }
    void init() { failOnWarnings(); }
    void cleanup()
    {
        walk.variables.clear();
        walk.tidyUp();
    }

    void storyIsWrittenWithoutAMouse();
    void desktopsColoursChangeNothing();

private:
    void chooseByArrows(int menu, int entry);
    void startWithColours(const QString &name, const QByteArray &settings);

    Walk walk;
    const Desktop &desktop = walk.desktop;
    const EditorWindow &window = walk.window;
};

/// From the canvas into the menu at that place, to the entry at that place, both counted from 0.
void tst_AccessWalk::chooseByArrows(int menu, int entry)
{
    QVERIFY(window.key(QStringLiteral("F10")));
    QVERIFY(eventually([this] { return !window.openedMenu().isEmpty(); }));
    for (int i = 0; i < menu; ++i)
        QVERIFY(desktop.key(QStringLiteral("Right")));
    // The menu that was opened first has no entry chosen, the others have their first one.
    for (int i = menu == 0 ? -1 : 0; i < entry; ++i)
        QVERIFY(desktop.key(QStringLiteral("Down")));
    QVERIFY(desktop.key(QStringLiteral("Return")));
    QVERIFY(eventually([this] { return window.openedMenu().isEmpty(); }));
}

void tst_AccessWalk::storyIsWrittenWithoutAMouse()
{
    const QString path = desktop.homePath(QStringLiteral("mouseless.scene"));
    STEP(walk.start(QStringLiteral("mouseless")));
    // Three events: by menu, and by key.
    STEP(chooseByArrows(3, 2));
    QVERIFY(window.comesToShowEntries(1));
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
    QVERIFY(window.comesToShowEntries(3));
    // Texts of the second one.
    QVERIFY(window.key(QStringLiteral("ctrl+Left")));
    QVERIFY(window.key(QStringLiteral("F2")));
    QVERIFY(window.key(QStringLiteral("ctrl+a")));
    QVERIFY(desktop.type(QStringLiteral("The storm")));
    QVERIFY(window.key(QStringLiteral("F2")));
    QVERIFY(window.key(QStringLiteral("ctrl+a")));
    QVERIFY(desktop.type(QStringLiteral("It breaks the lamp.")));
    QVERIFY(desktop.keepScreenshot(QStringLiteral("mouseless-writing.png"), window.outline()));
    QVERIFY(window.key(QStringLiteral("Escape")));
    // Marks, by menu; the filter and a second tab, by key.
    STEP(chooseByArrows(3, 1));
    QVERIFY(window.key(QStringLiteral("ctrl+l")));
    QVERIFY(window.comesToShowEntries(1));
    QVERIFY(window.key(QStringLiteral("ctrl+t")));
    QVERIFY(window.comesToShowTabs(2));
    STEP(walk.checkScreen());
    // Saved by menu.
    STEP(chooseByArrows(0, 3));
    QVERIFY(window.giveFile(QStringLiteral("Save Scene"), path));
    QVERIFY(eventually([&] { return QFile::exists(path); }));
    const SavedScene scene = readScene(path);
    QCOMPARE(scene.problem, QString());
    QCOMPARE(scene.tabs.size(), 2);
    QCOMPARE(scene.tabs.at(1).size(), 0);
    QCOMPARE(scene.tabs.at(0).size(), 3);
    for (const SavedEvent &event : scene.tabs.at(0)) {
        QCOMPARE(event.upstream, event.index - 1);
        QCOMPARE(event.endOfStory, event.index == 2 ? 1 : 0);
        QCOMPARE(event.important, event.index == 1 ? 1 : 0);
        QCOMPARE(event.title, QString::fromLatin1(event.index == 1 ? "The storm" : "Event"));
        QCOMPARE(event.description,
                 QString::fromLatin1(event.index == 1 ? "It breaks the lamp." : "Enter description"));
    }
    // Back at the start, by menu: the three events and the joints between them.
    STEP(chooseByArrows(1, 0));
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    const SavedScene emptied = walk.savedAgain(path);
    QCOMPARE(emptied.problem, QString());
    QCOMPARE(emptied.tabs.size(), 2);
    QCOMPARE(emptied.tabs.at(0).size(), 0);
    // The window is closed by the window manager's key in ordinary sessions; here by its button.
    STEP(walk.end());
}

void tst_AccessWalk::startWithColours(const QString &name, const QByteArray &settings)
{
    QVERIFY(QDir(desktop.homePath(QString())).mkpath(QStringLiteral("config")));
    QFile file(desktop.homePath(QStringLiteral("config/kdeglobals")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(settings) == settings.size());
    file.close();
    walk.variables = {{QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("KDE")},
                      {QStringLiteral("KDE_SESSION_VERSION"), QStringLiteral("5")},
                      // There is no session bus on this desktop, which that theme complains of.
                      {QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("qt.qpa.theme.dbus=false")}};
    STEP(walk.start(name));
}

void tst_AccessWalk::desktopsColoursChangeNothing()
{
    QList<QImage> windows;
    QList<QImage> menus;
    for (const bool dark : {false, true}) {
        STEP(startWithColours(dark ? QStringLiteral("dark") : QStringLiteral("light"),
                              dark ? desktopColours("240,240,240", "20,22,25", "200,80,0")
                                   : desktopColours("10,10,10", "250,250,245", "150,220,90")));
        QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
        QVERIFY(window.comesToShowEntries(1));
        STEP(walk.checkScreen()); // after which it is at rest
        windows << desktop.screenshot().copy(window.outline());
        QVERIFY(window.key(QStringLiteral("F10")));
        QCOMPARE(window.shownEntries(Menu::file).size(), 5);
        menus << desktop.screenshot().copy(window.openedMenu());
        QVERIFY(desktop.keepScreenshot(dark ? QStringLiteral("dark-desktop.png")
                                            : QStringLiteral("light-desktop.png"),
                                       window.outline()));
        QVERIFY(desktop.key(QStringLiteral("Escape")));
        QVERIFY(eventually([this] { return window.openedMenu().isEmpty(); }));
        STEP(walk.end());
        walk.program.reset();
    }
    QVERIFY(QFile::remove(desktop.homePath(QStringLiteral("config/kdeglobals"))));
    QCOMPARE(windows.at(0), windows.at(1));
    QCOMPARE(menus.at(0), menus.at(1));
}

QTEST_GUILESS_MAIN(tst_AccessWalk)
#include "tst_accesswalk.moc"
