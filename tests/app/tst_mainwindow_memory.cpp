#include "app/failingmemory.h"
#include "app/noticestrip.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#ifdef FABLEGRID_CAN_FAIL_MEMORY

namespace {

constexpr std::size_t much = 300000; // bytes; the document takes more, and all else less

QByteArray largeStory()
{
    std::vector<Record> records = chainOfRecords(1, 0);
    records.front().description = QStringLiteral("and then ").repeated(30000);
    return documentBytes({records});
}

} // namespace

/// Memory that the system refuses: nothing ends the program, and no half document gets into a file.
class tst_MainWindowMemory : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        home = std::make_unique<PrivateHome>();
        document = largeStory();
        QVERIFY(writeFile(story(), document));
        window = std::make_unique<MainWindow>();
    }
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }

    void saveWithoutMemoryChangesNothing();
    void autosaveWithoutMemoryLeavesNothing();
    void lettingGoWithoutMemoryIsReported();
    void storyThatDoesNotFitIsNotTheDocument_data();
    void storyThatDoesNotFitIsNotTheDocument();

private:
    QString story() const { return home->filePath(QStringLiteral("story.scene")); }
    QStringList copies() const { return filesBelow(home->filePath(QStringLiteral("Documents"))); }

    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<MainWindow> window;
    QByteArray document;
};

void tst_MainWindowMemory::saveWithoutMemoryChangesNothing()
{
    window->loadFrom(story());
    const QString file = home->filePath(QStringLiteral("copy.scene"));
    QVERIFY(writeFile(file, documentBytes({})));
    const Warnings warnings;
    {
        const FailingMemory refusing(much, 0);
        QVERIFY(!window->saveTo(file));
        QVERIFY(refusing.refusals() > 0);
    }
    QCOMPARE(
        warnings.lines(),
        QStringList{
            QStringLiteral("Couldn't write the scene file: \"%1\" \"Cannot allocate memory\"").arg(file)});
    QCOMPARE(readFile(file), documentBytes({}));
    QCOMPARE(filesBelow(home->filePath(QString())).filter(QStringLiteral("copy.scene")).size(), 1);
    QVERIFY(window->saveTo(file));
    QVERIFY(readFile(file) == document);
}

void tst_MainWindowMemory::autosaveWithoutMemoryLeavesNothing()
{
    window->loadFrom(story());
    const Warnings warnings;
    {
        const FailingMemory refusing(much, 0);
        window->autosave();
    }
    QCOMPARE(warnings.lines().size(), 1);
    QVERIFY(warnings.lines().front().startsWith(QStringLiteral("Failed to write autosave file:")));
    QCOMPARE(copies(), QStringList());
}

void tst_MainWindowMemory::lettingGoWithoutMemoryIsReported()
{
    window->loadFrom(story());
    sceneOf(*window, 0)->nodes().front()->setPos(7, 8);
    const Warnings warnings;
    {
        const FailingMemory refusing(much, 0);
        window->clearTabs();
    }
    QCOMPARE(warnings.lines().size(), 1);
    QVERIFY(warnings.lines().front().startsWith(QStringLiteral("Failed to keep a copy:")));
}

void tst_MainWindowMemory::storyThatDoesNotFitIsNotTheDocument_data()
{
    QTest::addColumn<int>("granted");
    QTest::addColumn<bool>("tabsStay");
    QTest::newRow("the file") << 0 << true;
    QTest::newRow("a text of it") << 1 << false;
}

void tst_MainWindowMemory::storyThatDoesNotFitIsNotTheDocument()
{
    QFETCH(const int, granted);
    QFETCH(const bool, tabsStay);
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    const Warnings warnings;
    {
        const FailingMemory refusing(much, granted);
        window->loadFrom(story());
        QVERIFY(refusing.refusals() > 0);
    }
    QCOMPARE(warnings.lines(), QStringList{QStringLiteral("Couldn't open file for reading.")});
    QCOMPARE(window->currentFilePath(), QString());
    QCOMPARE(tabsOf(*window)->count(), tabsStay ? 1 : 0);
    QCOMPARE(copies().size(), tabsStay ? 0 : 1);
    const QString notice = window->findChild<NoticeStrip *>()->accessibleName();
    for (const QString &copy : copies())
        QVERIFY2(notice.contains(QFileInfo(copy).fileName()), qPrintable(notice));
    window->loadFrom(story());
    QCOMPARE(window->currentFilePath(), story());
    QVERIFY(window->saveTo(story()));
    QVERIFY(readFile(story()) == document);
}

QTEST_MAIN(tst_MainWindowMemory)
#include "tst_mainwindow_memory.moc"

#else

#include <cstdio>

int main()
{
    std::puts("Skipped: the memory cannot be refused here");
    return 77;
}

#endif
