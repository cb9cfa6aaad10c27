#include "app/badfiles.h"
#include "items/stnodename.h"
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
    void whatALibrarySaysIsNoDamage();
    void whatWouldBeSavedDifferentlyIsDamaged_data();
    void whatWouldBeSavedDifferentlyIsDamaged();
    void whatTheEditorSavedIsSound();
    void boxesAreMeasuredForWhoeverPaintsThem();

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

// A font without the script of a text is the machine's fault, not the file's.
void tst_StoryReader::whatALibrarySaysIsNoDamage()
{
    const char *complaint = "OpenType support missing for \"Some Font\", script 10";
    int complaints = 0;
    const auto complain = [&](double) {
        if (complaints++ > 0)
            return;
        QTest::ignoreMessage(QtWarningMsg, complaint);
        qWarning("%s", complaint);
    };
    StoryReader reader;
    QCOMPARE(reader.read(folder.put(QStringLiteral("sound.scene"), sceneBytes({branchedTab()})), complain),
             QString());
    QVERIFY(complaints > 0);
    QCOMPARE(reader.damage().lines(), QStringList());
}

void tst_StoryReader::whatWouldBeSavedDifferentlyIsDamaged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("damages");
    const auto of = [](int tab, const QString &reason) {
        return QStringList(
            QStringLiteral(
                "Story %1 is not read just as it stands in the file, and would be saved differently: %2")
                .arg(tab)
                .arg(reason));
    };
    const auto row = [](const char *name, const std::vector<Record> &records, const QStringList &damages) {
        QTest::newRow(name) << documentBytes({{Record{}}, records}) << damages;
    };
    const Record first{QStringLiteral("first"), QPointF(), 0, -1};
    row("two ends", {{{}, {}, 0, -1, true}, {{}, {}, 1, -1, true}},
        of(2, QStringLiteral("event 0 is an end of the story beside another one")));
    row("carriage return in a title", {{QStringLiteral("a\rb"), {}, 0, -1, true}},
        of(2, QStringLiteral("the title of event 0 has signs that no text here keeps")));
    row("paragraph separator in a text", {{{}, {}, 0, -1, true, false, QStringLiteral("a\u2029b")}},
        of(2, QStringLiteral("the text of event 0 has signs that no text here keeps")));
    row("line separator", {{QStringLiteral("a\u2028b"), {}, 0, -1, true}}, {});
    row("an event without an index", {{{}, {}, 2, -1, true}, {{}, {}, 9, -1}},
        of(2, QStringLiteral("another event is read over event 2")));
    row("no event", {}, {});
    QTest::newRow("without a tag")
        << QByteArray(documentBytes({{Record{}}})).replace(8, 14, QByteArray(4, '\0'))
        << of(1, QStringLiteral("event 0 is of a kind that is not known"));
    QByteArray mark = documentBytes({{Record{}}});
    mark[mark.size() - 5] = '\2'; // behind it is the length of a text only
    QTest::newRow("mark of another value")
        << mark << of(1, QStringLiteral("a mark of event 0 says neither yes nor no"));
    QTest::newRow("less than no tabs")
        << QByteArray(4, '\xFF')
        << QStringList(QStringLiteral("the number of the tabs would be saved differently"));

    // As the editor saves it when the end was deleted.
    row("no end", {first, {QStringLiteral("next"), QPointF(), 1, 0}}, {});
}

void tst_StoryReader::whatWouldBeSavedDifferentlyIsDamaged()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QStringList, damages);
    StoryReader reader;
    QCOMPARE(reader.read(folder.put(QStringLiteral("odd.scene"), bytes)), QString());
    QCOMPARE(reader.damage().lines(), damages);
}

void tst_StoryReader::whatTheEditorSavedIsSound()
{
    MainWindow window;
    NodegraphScene &scene = *window.views().front()->nodegraphScene();
    for (int i = 0; i < 4; ++i)
        scene.addNodeAt(QPointF(300.0 * i, 0), 0, -1);
    const std::vector<Node *> nodes = scene.nodes();
    QCOMPARE(nodes.size(), std::size_t(4));
    nodes[0]->nameItem()->setTitle(QStringLiteral("a\rb\u2028c\u2029d"));
    nodes[0]->setDescription(QStringLiteral("a\rb\u2028c\u2029d\uFDD0"));
    nodes[1]->nameItem()->setTitle({});
    nodes[1]->setDescription({});
    scene.deleteNode(scene.endOfStoryNode());
    QVERIFY(!scene.endOfStoryNode());
    const QString path = folder.path(QStringLiteral("saved.scene"));
    QVERIFY(window.saveTo(path));
    const CommandResult checked = runCommand({QStringLiteral("check"), path});
    QCOMPARE(checked.outputLines(), QStringList(path + QStringLiteral(": sound")));
}

// Whoever wants the texts only is spared the time, and leaves nothing behind for the next one who wants the
// boxes.
void tst_StoryReader::boxesAreMeasuredForWhoeverPaintsThem()
{
    StoryTab tab;
    tab.events.resize(150); // those of a small story are made at once, whoever reads them
    for (std::size_t i = 0; i < tab.events.size(); ++i) {
        tab.events[i].index = int(i);
        tab.events[i].description = QString(500, QLatin1Char('w'));
    }
    const QString path = folder.put(QStringLiteral("many.scene"), sceneBytes({tab}));
    MainWindow window;
    window.loadFrom(path);
    const auto heights = [](const NodegraphScene &scene) {
        std::vector<double> all;
        for (const Node *node : scene.nodes())
            all.push_back(node->boundingRect().height());
        return all;
    };
    StoryReader texts;
    QCOMPARE(texts.read(path), QString());
    StoryReader boxes(StoryReader::Boxes::measured);
    QCOMPARE(boxes.read(path), QString());
    QCOMPARE(texts.bytes(), boxes.bytes());
    const std::vector<double> shown = heights(*window.views().front()->nodegraphScene());
    QVERIFY(heights(*boxes.scenes().front()) == shown);
    QVERIFY(heights(*texts.scenes().front()).back() < shown.back());
}

QTEST_MAIN(tst_StoryReader)
#include "tst_storyreader.moc"
