#include "app/documentformat.h"
#include "app/endtest.h"
#include "app/failingmemory.h"
#include "app/guardedapplication.h"
#include "app/memoryspare.h"
#include "app/noticestrip.h"

#ifdef FABLEGRID_CAN_FAIL_MEMORY

#include <new>
#include <optional>

namespace {

constexpr std::size_t much = 300000; // bytes; the document takes more, and all else less

QByteArray storyOf(const QString &text)
{
    std::vector<Record> records = chainOfRecords(1, 0);
    records.front().description = text;
    return documentBytes({records});
}

/// Finds no memory as it is destroyed.
struct Teller
{
    ~Teller() { const QByteArray none(int(much), 'x'); }
};

/// What another process does: it opens that file, moves the event, and finds no memory for something else.
int edit(int &argc, char **argv, const QString &file, const QByteArray &where)
{
    GuardedApplication application(argc, argv);
    MainWindow window;
    window.loadFrom(file);
    sceneOf(window, 0)->nodes().front()->setPos(7, 8);
    std::optional<FailingMemory> refusing;
    std::optional<LittleMemory> little;
    std::vector<std::unique_ptr<char[]>> hoard;
    application.setLastWork([&] {
        refusing.reset(); // what was held back for that is there now
        window.keepWithoutWords();
    });
    const auto takeAll = [&] {
        // Until the end of the process, which takes no more of what others hold.
        little.emplace(1 << 20);
        for (;;)
            hoard.push_back(std::make_unique<char[]>(1 << 16));
    };
    QTimer::singleShot(0, &window, [&] {
        if (where == "limit")
            takeAll();
        if (where == "new") {
            try {
                takeAll();
            } catch (const std::bad_alloc &) {
                hoard.resize(hoard.size() - 4); // for the window's small things
            }
            window.clearTabs();
            application.setLastWork({});
            QCoreApplication::exit(tabsOf(window)->count());
            return;
        }
        refusing.emplace(much, 0);
        if (where == "destructor")
            const Teller teller;
        const QByteArray none(int(much), 'x');
        QCoreApplication::exit(int(none.size()));
    });
    return QApplication::exec();
}

} // namespace

/// Memory that the system refuses: nothing ends the program, and no half document gets into a file.
class tst_MainWindowMemory : public EndTest
{
    Q_OBJECT

private slots:
    void saveWithoutMemoryChangesNothing();
    void autosaveWithoutMemoryLeavesNothing();
    void lettingGoWithoutMemoryIsReported();
    void storyThatDoesNotFitIsNotTheDocument_data();
    void storyThatDoesNotFitIsNotTheDocument();
    void pasteThatDoesNotFitChangesNothing();
    void eventThatCannotBeMadeKeepsItsTexts();
    void lackOfMemoryLosesNothing_data();
    void lackOfMemoryLosesNothing();
    void spareMemoryGrowsWithoutASecondOne();

private:
    void prepare() override
    {
        document = storyOf(QStringLiteral("and then ").repeated(30000));
        QVERIFY(writeFile(story(), document));
        makeWindow();
    }
    QStringList copies() const { return filesBelow(path(QStringLiteral("Documents"))); }

    QByteArray document;
};

void tst_MainWindowMemory::saveWithoutMemoryChangesNothing()
{
    window->loadFrom(story());
    const QString file = path(QStringLiteral("copy.scene"));
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
    QCOMPARE(filesBelow(path(QString())).filter(QStringLiteral("copy.scene")).size(), 1);
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

void tst_MainWindowMemory::pasteThatDoesNotFitChangesNothing()
{
    window->loadFrom(story());
    window->sl_selectAll();
    window->sl_copy();
    {
        const FailingMemory refusing(much, 0);
        QTest::ignoreMessage(QtWarningMsg, "Couldn't paste: there is not enough memory.");
        window->sl_paste();
        QVERIFY(refusing.refusals() > 0);
    }
    const auto *strip = window->findChild<NoticeStrip *>();
    QCOMPARE(strip->accessibleName(),
             QStringLiteral("There is not enough memory to paste that. Nothing has changed."));
    QVERIFY(window->saveTo(story()));
    QVERIFY(readFile(story()) == document);
    window->sl_paste(); // what was copied is still there
    QVERIFY(window->saveTo(story()));
    QVERIFY(readFile(story()) != document);
    QVERIFY(!strip->accessibleName().contains(QStringLiteral("memory")));
}

// What is kept as the program ends then must be whole.
void tst_MainWindowMemory::eventThatCannotBeMadeKeepsItsTexts()
{
    QVERIFY(writeFile(story(), documentBytes({chainOfRecords(150, 50)})));
    window->loadFrom(story());
    Node *node = sceneOf(*window, 0)->nodes().back();
    QVERIFY(node->isLate());
    const QByteArray before = DocumentFormat::bytes({sceneOf(*window, 0)});
    bool isRefused = false;
    try {
        const FailingMemory refusing(1, 0);
        node->make();
    } catch (const std::bad_alloc &) {
        isRefused = true;
    }
    QVERIFY(isRefused);
    QVERIFY(node->isLate());
    QCOMPARE(DocumentFormat::bytes({sceneOf(*window, 0)}), before);
    node->make();
    QCOMPARE(DocumentFormat::bytes({sceneOf(*window, 0)}), before);
}

void tst_MainWindowMemory::lackOfMemoryLosesNothing_data()
{
    QTest::addColumn<QString>("where");
    QTest::addColumn<int>("words");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("copyEnd");
    constexpr int few = 30000;
    // What is held back for the last copy has to be enough for these.
    constexpr int many = (16 << 20) / 9;
    const QString end = QStringLiteral("_end.scene");
    QTest::newRow("caught by the application") << QStringLiteral("slot") << few << EXIT_FAILURE << end;
    QTest::newRow("caught by nobody") << QStringLiteral("destructor") << few << EXIT_FAILURE << end;
    QTest::newRow("a long text") << QStringLiteral("limit") << many << EXIT_FAILURE << end;
    QTest::newRow("a long text before New")
        << QStringLiteral("new") << many << 0 << QStringLiteral("_new.scene");
}

void tst_MainWindowMemory::lackOfMemoryLosesNothing()
{
    QFETCH(const QString, where);
    QFETCH(const int, words);
    QFETCH(const int, code);
    QFETCH(const QString, copyEnd);
    const QString text = QStringLiteral("and then ").repeated(words);
    QVERIFY(writeFile(story(), storyOf(text)));
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--edit"), story(), where});
    checkCode(process, code);
    const QByteArray log = process.readAllStandardError();
    QVERIFY2(!log.contains("Failed to keep a copy"), log.right(300).constData());
    QCOMPARE(log.endsWith("Out of memory, the program ends.\n"), code != 0);
    QVERIFY(readFile(story()) == storyOf(text));
    QCOMPARE(copies().size(), 1);
    QVERIFY2(copies().front().endsWith(copyEnd), qPrintable(copies().front()));
    window->loadFrom(path(QStringLiteral("Documents/")) + copies().front());
    const std::vector<Node *> nodes = sceneOf(*window, 0)->nodes();
    QCOMPARE(nodes.size(), std::size_t(1));
    QCOMPARE(nodes.front()->pos(), QPointF(7, 8));
    QVERIFY(nodes.front()->payload()->eventContent()->getDescription() == text);
}

// While both were there the larger one would not fit just when it matters.
void tst_MainWindowMemory::spareMemoryGrowsWithoutASecondOne()
{
    constexpr std::size_t megabyte = 1 << 20;
    MemorySpare spare;
    std::vector<std::unique_ptr<char[]>> hoard;
    hoard.reserve(100);
    const LittleMemory little(80 * megabyte);
    MemorySpare::fit(10 * megabyte);
    while (char *more = new (std::nothrow) char[megabyte])
        hoard.emplace_back(more);
    spare.release();
    const std::unique_ptr<char[]> last(new (std::nothrow) char[6 * 10 * megabyte]);
    hoard.clear();
    QVERIFY(last);
}

int main(int argc, char *argv[])
{
    if (argc == 4 && qstrcmp(argv[1], "--edit") == 0)
        return edit(argc, argv, QFile::decodeName(argv[2]), argv[3]);
    const QApplication application(argc, argv);
    tst_MainWindowMemory test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mainwindow_memory.moc"

#else

#include <cstdio>

int main()
{
    std::puts("Skipped: the memory cannot be refused here");
    return 77;
}

#endif
