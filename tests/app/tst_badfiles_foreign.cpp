#include "app/badfiles.h"
#include "app/longruns.h"

#include <QDir>
#include <QImage>
#include <QRandomGenerator>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#endif

namespace {

constexpr int large = 100'000;
QByteArray picture()
{
    QImage image(300, 300, QImage::Format_RGB32);
    QRandomGenerator generator(1);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, generator.generate() & 0x30F030);
    }
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    image.save(&file, "PNG");
    return file.data();
}

QByteArray randomBytes(quint32 seed, int size)
{
    QRandomGenerator generator(seed);
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(generator.bounded(256));
    return bytes;
}

QByteArray prose(int size)
{
    return QByteArrayLiteral("Once upon a time there was a very long text.\n")
        .repeated(size / 40 + 1)
        .left(size);
}

/// The same bytes as a document of that many tabs.
QByteArray withTabs(int count, const QByteArray &bytes) { return intBytes(count) + bytes.mid(4); }

void row(const QByteArray &name, const QByteArray &bytes) { QTest::newRow(name.constData()) << bytes; }

} // namespace

class tst_BadFilesForeign : public ProgramTest
{
    Q_OBJECT

public:
    static void initMain() { keepFilesInMemory(); }

private slots:
    void smallForeignFile_data();
    void smallForeignFile() { checkRow(); }
    void largeForeignFile_data();
    void largeForeignFile() { checkRow(); }
    void randomBytesOfEverySize();
    void whatCannotBeReadChangesNothing_data();
    void whatCannotBeReadChangesNothing();
    void thousandsOfEmptyTabsAreOpened();
    void pipeIsNotWaitedFor();
    void badFileAfterBadFileLeavesNothingBehind();

private:
    static void checkRow()
    {
        QFETCH(const QByteArray, bytes);
        FileOpener opener;
        const QString problem = opener.check(bytes);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

    PrivateHome home;
};

void tst_BadFilesForeign::smallForeignFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    row("empty", {});
    for (const char byte : {'\0', '\1', '\x7F', '\xFF'})
        row("one byte " + QByteArray(1, byte).toHex(), QByteArray(1, byte));
    row("text", prose(120));
    row("text of one letter", "x");
    row("text with a byte order mark", QByteArray::fromHex("EFBBBF") + prose(90));
    row("wide text", QByteArray::fromHex("FFFE4F006E006300650020007500700"
                                         "06F006E002000610020007400690006D0065"));
    row("picture", picture().left(160));
    row("program", QByteArray::fromHex("7F454C460201010000000000000000000300"
                                       "3E000100000060100000000000004000000000000000"));
    row("picture's beginning and zeros", QByteArray::fromHex("4D4D002A") + QByteArray(large, '\0'));
    row("archive", QByteArray::fromHex("504B03041400000008000000210000000000") + prose(60));
    row("compressed", QByteArray::fromHex("1F8B0808000000000003") + randomBytes(2, 120));
    row("document of another kind", "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n1 0 obj\n<< /Type /Catalog >>\nendobj\n");
    row("zeros", QByteArray(400, '\0'));
    row("ones", QByteArray(400, '\xFF'));
}

void tst_BadFilesForeign::largeForeignFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    row("picture", picture().left(large));
    row("zeros", QByteArray(large, '\0'));
    row("ones", QByteArray(large, '\xFF'));
    for (const int tabs : {1, 3}) {
        const QByteArray kind = QByteArray::number(tabs) + " tabs of ";
        row(kind + "text", withTabs(tabs, prose(large)));
        row(kind + "zeros", withTabs(tabs, QByteArray(large, '\0')));
        row(kind + "ones", withTabs(tabs, QByteArray(large, '\xFF')));
        for (const quint32 seed : {1U, 2U, 3U})
            row(kind + "random bytes " + QByteArray::number(seed), withTabs(tabs, randomBytes(seed, large)));
    }
    row("text", prose(large));
    row("program", readFile(QCoreApplication::applicationFilePath()).left(large));
    row("archive", QByteArray::fromHex("504B0304") + randomBytes(7, large - 4));
}

void tst_BadFilesForeign::randomBytesOfEverySize()
{
    FileOpener opener;
    const int rounds = isExhaustive() ? 20 : 1;
    quint32 seed = 1;
    for (int round = 0; round < rounds; ++round) {
        for (const int size : {1, 2, 3, 4, 5, 7, 8, 9, 11, 12, 16, 31, 52, 64, 100, 200}) {
            const QByteArray bytes = randomBytes(++seed, size);
            std::vector<QByteArray> files{withTabs(2, bytes), intBytes(1) + intBytes(9) + bytes};
            if (isExhaustive() || size < 20) // most of the larger ones mean many tabs, and those take long
                files.push_back(bytes);
            for (const QByteArray &file : files) {
                const QString problem = opener.check(file);
                QVERIFY2(problem.isEmpty(),
                         qPrintable(QStringLiteral("seed %1: %2\n  file %3")
                                        .arg(seed)
                                        .arg(problem, QString::fromLatin1(shortHex(file)))));
            }
        }
    }
}

void tst_BadFilesForeign::whatCannotBeReadChangesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing there") << QStringLiteral("missing.scene");
    QTest::newRow("a folder") << QStringLiteral("folder");
    QTest::newRow("a link to itself") << QStringLiteral("loop.scene");
    QTest::newRow("a link to nothing") << QStringLiteral("astray.scene");
    QTest::newRow("a file in a file") << QStringLiteral("file/inner.scene");
    QTest::newRow("a name that is too long") << QString(5000, QLatin1Char('n'));
}

void tst_BadFilesForeign::whatCannotBeReadChangesNothing()
{
    QFETCH(const QString, name);
    const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("folder")));
    QVERIFY(writeFile(folder.filePath(QStringLiteral("file")), "x"));
    QVERIFY(QFile::link(folder.filePath(QStringLiteral("loop.scene")),
                        folder.filePath(QStringLiteral("loop.scene"))));
    QVERIFY(QFile::link(folder.filePath(QStringLiteral("nowhere")),
                        folder.filePath(QStringLiteral("astray.scene"))));
    const QString document = folder.filePath(QStringLiteral("document.scene"));
    FileOpener opener;
    MainWindow &window = opener.window();
    window.addNodeGraphTab();
    addEvent(sceneOf(window, 1), QStringLiteral("kept"), QStringLiteral("text"));
    window.saveTo(document);
    window.loadFrom(document);
    const std::vector<NodegraphView *> views = window.views();
    const QByteArray before = opener.bytes();
    QCOMPARE(opener.takeWarnings(), QStringList());

    window.loadFrom(path);
    QCOMPARE(opener.takeWarnings(), QStringList{QStringLiteral("Couldn't open file for reading.")});
    QVERIFY(window.views() == views);
    QCOMPARE(opener.bytes().toHex(), before.toHex());
    QCOMPARE(window.currentFilePath(), document);
}

// They took hours: a tab bar lays all its tabs out for each one that comes.
void tst_BadFilesForeign::thousandsOfEmptyTabsAreOpened()
{
    constexpr int many = 2000;
    const std::vector<Record> good{{QStringLiteral("good"), QPointF(1, 2), 0, -1, true}};
    std::vector<std::vector<Record>> tabs(many);
    tabs.at(120) = good;
    FileOpener opener;
    QCOMPARE(opener.check(documentBytes(tabs)), QString());
    QCOMPARE(opener.window().views().size(), std::size_t(many));
    QCOMPARE(opener.window().views().at(120)->nodegraphScene()->nodes().size(), std::size_t(1));
}

// A pipe makes its reader wait for whoever writes, and a device may never end: neither is a document.
void tst_BadFilesForeign::pipeIsNotWaitedFor()
{
#ifdef Q_OS_UNIX
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pipe.scene"));
    const QByteArray name = QFile::encodeName(path);
    QCOMPARE(mkfifo(name.constData(), 0600), 0);
    // Ends the wait of a reader, so that the test does not hang with it.
    std::thread writer([&name] { close(open(name.constData(), O_WRONLY)); });
    FileOpener opener;
    opener.window().loadFrom(path);
    const QStringList warnings = opener.takeWarnings();
    close(open(name.constData(), O_RDONLY | O_NONBLOCK)); // and that of the writer
    writer.join();
    QCOMPARE(warnings, QStringList{QStringLiteral("Couldn't open file for reading.")});
    QCOMPARE(opener.window().currentFilePath(), QString());
    QCOMPARE(opener.window().views().size(), std::size_t(1));
#endif
}

void tst_BadFilesForeign::badFileAfterBadFileLeavesNothingBehind()
{
    FileOpener opener;
    const QByteArray good = documentBytes({{{QStringLiteral("good"), QPointF(1, 2), 0, -1, true}}});
    for (const QByteArray &bad : {prose(90), QByteArray(), randomBytes(5, 100), intBytes(3)}) {
        QCOMPARE(opener.open(bad), QString());
        QCOMPARE(opener.open(good), QString());
        QCOMPARE(opener.bytes().toHex(), good.toHex());
        QCOMPARE(tabTitles(opener.window()), QStringList{QStringLiteral("Story 1")});
        QCOMPARE(panelTexts(opener.window()), QStringList{QString()});
    }
}

QTEST_MAIN(tst_BadFilesForeign)
#include "tst_badfiles_foreign.moc"
