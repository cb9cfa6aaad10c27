#include "app/badfiles.h"
#include "story/storyagrees.h"
#include "story/storyreader.h"

// The command reads a file as the window does, whatever is in it.

class tst_StoryReader : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarningsOfTheProgram(); }

    void fileIsToldAsTheWindowHasIt_data();
    void fileIsToldAsTheWindowHasIt();
    void fileIsWrittenAsTheEditorWould();

private:
    StoryFolder folder;
};

void tst_StoryReader::fileIsToldAsTheWindowHasIt_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QDir corpus(QStringLiteral(FABLEGRID_CORPUS "/document"));
    const QStringList names = corpus.entryList(QDir::Files);
    QVERIFY(!names.isEmpty());
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << readFile(corpus.filePath(name));
    QTest::newRow("branches") << sceneBytes({branchedTab(), StoryTab(), branchedTab()});
    const QString odd = QStringLiteral("\r\na\u2028\u2029\t \U0001F600") + QChar(0xD800) + QChar(u'\0');
    QTest::newRow("texts") << documentBytes({{Record{odd, QPointF(-0.0, 1e-300), 5, -1, true, true, odd}}});
    QTest::newRow("null texts")
        << QByteArray(documentBytes({{Record{}}})).replace(22, 4, QByteArray(4, '\xFF'));
}

void tst_StoryReader::fileIsToldAsTheWindowHasIt()
{
    QFETCH(const QByteArray, bytes);
    const QString path = folder.put(QStringLiteral("told.scene"), bytes);
    MainWindow window;
    Warnings warnings;
    window.loadFrom(path);
    QCOMPARE(StoryAgrees::difference(path, window, warnings.take()), QString());
}

void tst_StoryReader::fileIsWrittenAsTheEditorWould()
{
    const QByteArray sound = sceneBytes({branchedTab(), StoryTab()});
    StoryReader reader;
    QCOMPARE(reader.read(folder.put(QStringLiteral("sound.scene"), sound)), QString());
    QVERIFY(reader.damage().isNone());
    QCOMPARE(reader.bytes().toHex(), sound.toHex());
}

QTEST_MAIN(tst_StoryReader)
#include "tst_storyreader.moc"
