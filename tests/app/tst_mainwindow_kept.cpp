#include "app/noticestrip.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <QDir>

namespace {

/// What takes the document out of the window, or a part of it.
enum class Leaving { anew, open, tab, window };
/// How the question of a tab or the window is answered.
enum class Answer { no, cancel, saved, saveCancelled, saveFailed };

const QStringList endings{QStringLiteral("_new.scene"), QStringLiteral("_open.scene"),
                          QStringLiteral("_tab.scene"), QStringLiteral("_close.scene")};

} // namespace

Q_DECLARE_METATYPE(Leaving)
Q_DECLARE_METATYPE(Answer)

/// What leaves the window unsaved is kept, whole, and nothing is said of it in the log.
class tst_MainWindowKept : public WindowTest
{
    Q_OBJECT

private slots:
    void unsavedWorkIsKept_data();
    void unsavedWorkIsKept();
    void workIsKeptBeforeAFileThatIsNoStory();
    void savedWorkIsNotKept_data();
    void savedWorkIsNotKept();
    void openedWorkIsNotKept_data();
    void openedWorkIsNotKept();
    void emptyStoriesAreNotKept_data();
    void emptyStoriesAreNotKept();
    void fileThatCannotBeOpenedLetsNothingLeave();
    void answersOfTheQuestions_data();
    void answersOfTheQuestions();
    void autosavedWorkIsKept();
    void savedCopyElsewhereCounts();
    void keepingSaysNothing();
    void whatAnotherProgramHasSavedIsKept_data();
    void whatAnotherProgramHasSavedIsKept();
    void damagedFileIsKeptBeforeTheFirstSave_data();
    void damagedFileIsKeptBeforeTheFirstSave();
    void keptCopyIsToldOfTheSaveThatFailedOnly();

private:
    void prepare() override
    {
        makeWindow();
        window->addNodeGraphTab();
        QVERIFY(writeFile(path(QStringLiteral("other.scene")), documentBytes({{}, {}})));
        QVERIFY(writeFile(path(QStringLiteral("no-story.scene")), "no story at all"));
        QVERIFY(QDir().mkpath(path(QStringLiteral("folder.scene"))));
    }
    QString kept() const { return path(QStringLiteral("Documents/Fablegrid/Kept")); }
    /// Two tabs, each with an event.
    void write() const
    {
        addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"), QStringLiteral("It begins."))->setPos(1, 2);
        addEvent(sceneOf(*window, 1), QStringLiteral("Dusk"), QStringLiteral("It ends."))->setPos(3, 4);
    }
    static QByteArray written()
    {
        Record dawn{QStringLiteral("Dawn"), QPointF(1, 2)};
        dawn.endOfStory = true;
        dawn.description = QStringLiteral("It begins.");
        Record dusk{QStringLiteral("Dusk"), QPointF(3, 4)};
        dusk.endOfStory = true;
        dusk.description = QStringLiteral("It ends.");
        return documentBytes({{dawn}, {dusk}});
    }
    /// Lets it leave, where questions are answered with No; what went wrong with that.
    QString leave(Leaving leaving) const;
    /// Whether there is one copy, of what write() has written, and why not.
    QString isKeptAs(const QString &ending) const;
};

QString tst_MainWindowKept::leave(Leaving leaving) const
{
    if (leaving == Leaving::anew) {
        actionOf(*window, "actionNew")->trigger();
        return {};
    }
    if (leaving == Leaving::open)
        return openFile(*window, path(QStringLiteral("other.scene")));
    const DialogAnswers answers({press(QMessageBox::No)});
    if (leaving == Leaving::tab)
        window->closeTab(1);
    else
        window->close();
    return answers.problem();
}

QString tst_MainWindowKept::isKeptAs(const QString &ending) const
{
    const QStringList files = filesBelow(kept());
    if (files.size() != 1 || !files.front().endsWith(ending))
        return QStringLiteral("Kept: ") + files.join(QLatin1Char(' '));
    return readFile(kept() + QLatin1Char('/') + files.front()) == written() ? QString()
                                                                            : QStringLiteral("Other bytes");
}

static void addLeavings()
{
    QTest::addColumn<Leaving>("leaving");
    QTest::newRow("new") << Leaving::anew;
    QTest::newRow("open") << Leaving::open;
    QTest::newRow("tab") << Leaving::tab;
    QTest::newRow("window") << Leaving::window;
}

void tst_MainWindowKept::unsavedWorkIsKept_data() { addLeavings(); }

void tst_MainWindowKept::unsavedWorkIsKept()
{
    QFETCH(const Leaving, leaving);
    write();
    QCOMPARE(leave(leaving), QString());
    QCOMPARE(isKeptAs(endings.at(int(leaving))), QString());
}

void tst_MainWindowKept::workIsKeptBeforeAFileThatIsNoStory()
{
    write();
    const Warnings ofTheDamage;
    QCOMPARE(openFile(*window, path(QStringLiteral("no-story.scene"))), QString());
    QCOMPARE(isKeptAs(QStringLiteral("_open.scene")), QString());
}

void tst_MainWindowKept::savedWorkIsNotKept_data() { addLeavings(); }

void tst_MainWindowKept::savedWorkIsNotKept()
{
    QFETCH(const Leaving, leaving);
    write();
    QCOMPARE(saveAs(*window, path(QStringLiteral("story.scene"))), QString());
    QCOMPARE(leave(leaving), QString());
    QCOMPARE(filesBelow(kept()), QStringList());
}

void tst_MainWindowKept::openedWorkIsNotKept_data()
{
    QTest::addColumn<Leaving>("leaving");
    QTest::addColumn<bool>("changed");
    for (const auto &[name, leaving] :
         {std::pair("new", Leaving::anew), std::pair("open", Leaving::open), std::pair("tab", Leaving::tab),
          std::pair("window", Leaving::window)}) {
        QTest::addRow("%s", name) << leaving << false;
        QTest::addRow("%s, changed", name) << leaving << true;
    }
}

void tst_MainWindowKept::openedWorkIsNotKept()
{
    QFETCH(const Leaving, leaving);
    QFETCH(const bool, changed);
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, documentBytes({chainOfRecords(3, 10), {}})));
    window->loadFrom(file);
    if (changed)
        sceneOf(*window, 0)->nodes().back()->setPos(7, 8);
    QCOMPARE(leave(leaving), QString());
    QCOMPARE(filesBelow(kept()).size(), changed ? 1 : 0);
}

void tst_MainWindowKept::emptyStoriesAreNotKept_data() { addLeavings(); }

void tst_MainWindowKept::emptyStoriesAreNotKept()
{
    QFETCH(const Leaving, leaving);
    QCOMPARE(leave(leaving), QString());
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("Documents"))));
}

void tst_MainWindowKept::fileThatCannotBeOpenedLetsNothingLeave()
{
    write();
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for reading.");
    window->loadFrom(path(QStringLiteral("folder.scene")));
    QCOMPARE(filesBelow(kept()), QStringList());
}

void tst_MainWindowKept::answersOfTheQuestions_data()
{
    QTest::addColumn<Leaving>("leaving");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<bool>("isKept");
    for (const auto &[name, leaving] :
         {std::pair("tab", Leaving::tab), std::pair("window", Leaving::window)}) {
        QTest::addRow("%s, No", name) << leaving << Answer::no << true;
        QTest::addRow("%s, Cancel", name) << leaving << Answer::cancel << false;
        QTest::addRow("%s, Yes", name) << leaving << Answer::saved << false;
        QTest::addRow("%s, Yes and the file dialog cancelled", name)
            << leaving << Answer::saveCancelled << true;
        QTest::addRow("%s, Yes and a save that failed", name) << leaving << Answer::saveFailed << true;
    }
}

void tst_MainWindowKept::answersOfTheQuestions()
{
    QFETCH(const Leaving, leaving);
    QFETCH(const Answer, answer);
    QFETCH(const bool, isKept);
    write();
    std::vector<DialogAnswers::Answer> all{press(answer == Answer::no       ? QMessageBox::No
                                                 : answer == Answer::cancel ? QMessageBox::Cancel
                                                                            : QMessageBox::Yes)};
    if (answer == Answer::saved)
        all.push_back(chooseFile(path(QStringLiteral("story.scene"))));
    if (answer == Answer::saveCancelled)
        all.push_back(pressEscape());
    if (answer == Answer::saveFailed) {
        // A first save that fails gives the document its path, and so the question leads straight to it.
        QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
        QCOMPARE(saveAs(*window, path(QStringLiteral("missing/story.scene"))), QString());
        QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    }
    const DialogAnswers answers(all);
    if (leaving == Leaving::tab)
        window->closeTab(1);
    else
        window->close();
    if (isKept)
        QCOMPARE(isKeptAs(endings.at(int(leaving))), QString());
    else
        QCOMPARE(filesBelow(kept()), QStringList());
}

// An autosave is a copy of another folder, and no save.
void tst_MainWindowKept::autosavedWorkIsKept()
{
    write();
    window->autosave();
    QCOMPARE(leave(Leaving::anew), QString());
    QCOMPARE(isKeptAs(QStringLiteral("_new.scene")), QString());
}

void tst_MainWindowKept::savedCopyElsewhereCounts()
{
    write();
    QVERIFY(window->saveTo(path(QStringLiteral("elsewhere.scene"))));
    QCOMPARE(leave(Leaving::anew), QString());
    QCOMPARE(filesBelow(kept()), QStringList());
}

void tst_MainWindowKept::keepingSaysNothing()
{
    write();
    const LogCapture log;
    window->clearTabs();
    QCOMPARE(filesBelow(kept()).size(), 1);
    QCOMPARE(log.lines().filter(QRegularExpression(QStringLiteral("save|Serializing|Kept|kept"))),
             QStringList());
    qInfo() << "The log goes on";
    QVERIFY(log.contains(QStringLiteral("The log goes on")));
}

void tst_MainWindowKept::whatAnotherProgramHasSavedIsKept_data()
{
    QTest::addColumn<bool>("opened");
    QTest::addColumn<bool>("othersCame");
    QTest::newRow("saved before") << false << true;
    QTest::newRow("opened before") << true << true;
    QTest::newRow("saved before, nobody came") << false << false;
    QTest::newRow("opened before, nobody came") << true << false;
}

void tst_MainWindowKept::whatAnotherProgramHasSavedIsKept()
{
    QFETCH(const bool, opened);
    QFETCH(const bool, othersCame);
    const QString file = path(QStringLiteral("story.scene"));
    const QByteArray others = documentBytes({{}, {}, {}});
    if (opened) {
        QVERIFY(writeFile(file, documentBytes({{}, {}})));
        window->loadFrom(file);
        write();
    } else {
        write();
        QVERIFY(window->saveTo(file));
        sceneOf(*window, 0)->nodes().front()->setPos(100, 200);
    }
    if (othersCame)
        QVERIFY(writeFile(file, others));
    QVERIFY(window->saveTo(file));
    QVERIFY(readFile(file) != others);
    const QStringList files = filesBelow(kept());
    const QString notice = window->findChild<NoticeStrip *>()->accessibleName();
    QVERIFY2(notice.startsWith(QStringLiteral("Saved story.scene (2 tabs, 2 events)")), qPrintable(notice));
    if (!othersCame) {
        QCOMPARE(files, QStringList());
        return;
    }
    QCOMPARE(files.size(), 1);
    QVERIFY2(files.front().endsWith(QStringLiteral("_other.scene")), qPrintable(files.front()));
    QCOMPARE(readFile(kept() + QLatin1Char('/') + files.front()), others);
    QVERIFY2(notice.contains(files.front()), qPrintable(notice));
    QVERIFY(window->saveTo(file)); // by now it is this window's own
    QCOMPARE(filesBelow(kept()), files);
}

void tst_MainWindowKept::damagedFileIsKeptBeforeTheFirstSave_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray story = documentBytes({chainOfRecords(3, 10), chainOfRecords(2, 10)});
    QTest::newRow("cut") << story.chopped(30);
    QTest::newRow("with something behind") << story + "more";
    QTest::newRow("no story") << QByteArray("no story at all");
}

// What could not be read of it would be nowhere else.
void tst_MainWindowKept::damagedFileIsKeptBeforeTheFirstSave()
{
    QFETCH(const QByteArray, content);
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, content));
    const Warnings ofTheDamage;
    window->loadFrom(file);
    QVERIFY(window->saveTo(file));
    QVERIFY(readFile(file) != content);
    const QStringList files = filesBelow(kept());
    QCOMPARE(files.size(), 1);
    QVERIFY2(files.front().endsWith(QStringLiteral("_other.scene")), qPrintable(files.front()));
    QCOMPARE(readFile(kept() + QLatin1Char('/') + files.front()), content);
    QVERIFY(window->saveTo(file));
    window->clearTabs(); // all that is left of it is saved
    QCOMPARE(filesBelow(kept()), files);
}

void tst_MainWindowKept::keptCopyIsToldOfTheSaveThatFailedOnly()
{
    const auto notice = [this] { return window->findChild<NoticeStrip *>()->accessibleName(); };
    write();
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    QVERIFY(!window->saveTo(path(QStringLiteral("missing/story.scene"))));
    QCOMPARE(leave(Leaving::anew), QString());
    QCOMPARE(isKeptAs(QStringLiteral("_new.scene")), QString());
    QVERIFY2(notice().contains(QStringLiteral("_new.scene")), qPrintable(notice()));
    QVERIFY2(notice().contains(QStringLiteral("missing")), qPrintable(notice()));
    window->addNodeGraphTab();
    window->addNodeGraphTab();
    addEvent(sceneOf(*window, 0), QStringLiteral("Noon"));
    QCOMPARE(leave(Leaving::tab), QString());
    QVERIFY2(notice().contains(QStringLiteral("_tab.scene")), qPrintable(notice()));
    QVERIFY2(!notice().contains(QStringLiteral("story.scene")), qPrintable(notice()));
}

QTEST_MAIN(tst_MainWindowKept)
#include "tst_mainwindow_kept.moc"
