#include "commands/connectnodescommand.h"
#include "random/changes.h"
#include "random/choices.h"
#include "random/documents.h"
#include "random/hands.h"
#include "random/storywindow.h"
#include "scene/scenebytes.h"

#include <QUndoStack>

// What a step may change, where its decisions come from, and what becomes of a document that is opened.

class tst_RandomChanges : public ProgramTest
{
    Q_OBJECT

private slots:
    void changesThatNoStepExplainsAreFound_data();
    void changesThatNoStepExplainsAreFound();
    void eventThatIsThrownIsFound();
    void whatComesBackIsComparedWithWhatWent();
    void aConnectionThatDoesNotComeBackIsNoted();
    void bytesRepeatASeed();
    void oneSeedMeansOneSequence();
    void usedUpBytesDecideNothing();
    void aDocumentWithoutAnEndGetsOneWhenOpened();
};

void tst_RandomChanges::changesThatNoStepExplainsAreFound_data()
{
    QTest::addColumn<WindowDamage>("change");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("effects"); // which explain it, 0 if none do
    const auto row = [](const char *name, const WindowDamage &change, const char *fault, int effects) {
        QTest::newRow(name) << change << QString::fromLatin1(fault) << effects;
    };
    row(
        "title", [](auto &w) { node(w, 1)->setNodeName(QStringLiteral("x")); },
        "event 1 has lost its texts 'Event' 'Enter description'", Effect::types);
    row(
        "description", [](auto &w) { contentOf(node(w, 1))->setDescription(QStringLiteral("x")); },
        "event 1 has lost its texts 'Event' 'Enter description'", Effect::types);
    row(
        "place", [](auto &w) { node(w, 3)->moveBy(0, 1); }, "event 3 has moved", Effect::moves);
    row(
        "importance", [](auto &w) { node(w, 3)->setImportant(true); }, "event 3 has changed its importance",
        Effect::marks);
    row(
        "connection", [](auto &w) { sceneOf(w, 0)->disconnectNode(node(w, 1)); }, "event 1 is fed by -1 now",
        Effect::connects);
    row(
        "index", [](auto &w) { node(w, 3)->setIndex(9); }, "event 3 has become 9", 0);
    row(
        "gone", [](auto &w) { sceneOf(w, 0)->deleteNode(node(w, 3)); }, "event 3 has gone", Effect::removes);
    row(
        "come", [](auto &w) { addLoose(*sceneOf(w, 0), QPointF()); }, "event 4 has come", Effect::adds);
    row(
        "tab come", [](auto &w) { w.addNodeGraphTab(); }, "a tab has come", Effect::documents);
    row(
        "tabs gone", [](auto &w) { w.clearTabs(); }, "a tab has gone", Effect::documents);
    row(
        "come from nowhere",
        [](auto &w) { sceneOf(w, 0)->restoreNode({}, 4, 0, nullptr, QStringLiteral("x")); },
        "event 4 has come", 0);
    row(
        "texts of two",
        [](auto &w) {
            node(w, 1)->setNodeName(QStringLiteral("x"));
            node(w, 3)->setNodeName(QStringLiteral("y"));
        },
        "", Effect::types | Effect::scrolls);
    row(
        "texts of three",
        [](auto &w) {
            for (const int index : {0, 1, 3})
                node(w, index)->setNodeName(QStringLiteral("x"));
        },
        "", 0);
}

void tst_RandomChanges::changesThatNoStepExplainsAreFound()
{
    StoryWindow story;
    constexpr int all = Effect::types | Effect::moves | Effect::marks | Effect::adds | Effect::removes |
                        Effect::connects | Effect::documents;
    QFETCH(WindowDamage, change);
    QFETCH(QString, fault);
    QFETCH(int, effects);
    Changes strict;
    QCOMPARE(strict.unexplained(story.window, {{}, Effect::documents}), QString());
    change(story.window);
    flushDeferredDeletes();
    // An object is numbered by the first who sees it, so another Changes would not know what was here.
    const Changes before = strict;
    if (!fault.isEmpty())
        QCOMPARE(strict.unexplained(story.window, {{}, 0}), fault);
    if (effects)
        QCOMPARE(Changes(before).unexplained(story.window, {{}, effects}), QString());
    if (effects == 0 || effects & Effect::scrolls)
        QVERIFY(!Changes(before).unexplained(story.window, {{}, all}).isEmpty());
}

void tst_RandomChanges::eventThatIsThrownIsFound()
{
    StoryWindow story;
    Changes changes;
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::documents}), QString());
    const Step drag{QStringLiteral("drag on"), Effect::moves};
    node(story.window, 3)->setPos(300, 2100);
    QCOMPARE(changes.unexplained(story.window, drag), QString());
    node(story.window, 3)->setPos(50000, 50000);
    QCOMPARE(changes.unexplained(story.window, drag),
             QStringLiteral("event 3 was thrown from (300, 2100) to (50000, 50000)"));
    node(story.window, 3)->setPos(0, 0);
    QCOMPARE(changes.unexplained(story.window, {QStringLiteral("look"), Effect::moves}), QString());
}

void tst_RandomChanges::whatComesBackIsComparedWithWhatWent()
{
    StoryWindow story;
    constexpr int history = Effect::adds | Effect::removes | Effect::connects | Effect::history;
    Changes changes;
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::documents}), QString());
    node(story.window, 3)->setNodeName(QStringLiteral("Written by hand"));
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::types}), QString());
    story.scene.deleteSelectedNodes(node(story.window, 3));
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::removes}), QString());
    Changes other = changes;
    story.window.sl_undo();
    QCOMPARE(changes.unexplained(story.window, {{}, history}), QString());
    story.window.sl_redo();
    story.scene.restoreNode(QPointF(100, 2000), 3, 0, nullptr, QStringLiteral("Written by another"));
    QCOMPARE(
        other.unexplained(story.window, {{}, history}),
        QStringLiteral("event 3 has come back as it never was: 'Written by another' 'Enter description'"));
}

// Undoing a connection does not bring back the one that it replaced, but redoing all of them passes it again.
void tst_RandomChanges::aConnectionThatDoesNotComeBackIsNoted()
{
    constexpr int history = Effect::adds | Effect::removes | Effect::connects | Effect::history;
    StoryWindow story;
    const NodegraphView *view = story.window.views().front();
    Changes changes;
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::documents}), QString());
    view->undoStack()->push(new ConnectNodesCommand(&story.scene, 1, 3));
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::connects}), QString());
    QVERIFY(!changes.hasLostConnection(view));
    story.window.sl_undo();
    QCOMPARE(changes.unexplained(story.window, {{}, history}), QString());
    QVERIFY(changes.hasLostConnection(view));
    QCOMPARE(node(story.window, 1)->getPrevIndex(), -1);
}

void tst_RandomChanges::bytesRepeatASeed()
{
    Choices seeded = Choices::fromSeed(5);
    QList<int> drawn;
    for (int i = 0; i < 200; ++i)
        drawn << seeded.below(i % 3 == 0 ? 1000 : 2 + i);
    Choices repeated = Choices::fromBytes(seeded.record());
    for (int i = 0; i < 200; ++i)
        QCOMPARE(repeated.below(i % 3 == 0 ? 1000 : 2 + i), drawn.at(i));
    QVERIFY(repeated.isExhausted());
}

// Whoever is told a seed can run it again, here or elsewhere.
void tst_RandomChanges::oneSeedMeansOneSequence()
{
    Choices choices = Choices::fromSeed(1);
    QList<int> drawn;
    for (int i = 0; i < 5; ++i)
        drawn << choices.below(100);
    QCOMPARE(drawn, (QList<int>{41, 99, 72, 93, 0}));
    QVERIFY(!choices.isExhausted());
}

void tst_RandomChanges::usedUpBytesDecideNothing()
{
    Choices choices = Choices::fromBytes(QByteArrayLiteral("\x07"));
    QVERIFY(!choices.isExhausted());
    QCOMPARE(choices.below(5), 2);
    QVERIFY(choices.isExhausted());
    QCOMPARE(choices.below(5), 0);
}

void tst_RandomChanges::aDocumentWithoutAnEndGetsOneWhenOpened()
{
    SceneBytes::Record first;
    first.index = 5;
    SceneBytes::Record second;
    second.index = 2;
    second.prevIndex = 5;
    const auto document = [](const SceneBytes::Records &records) {
        return SceneBytes::int32(1) + SceneBytes::block(records);
    };
    const QByteArray open = document({first, second});
    first.endOfStory = 1;
    const QByteArray ended = document({first, second});
    QCOMPARE(asOpened(open), ended);
    QCOMPARE(asOpened(ended), ended);
    QCOMPARE(sortedDocument(ended), document({second, first}));
    QCOMPARE(sortedDocument(ended.chopped(1)), ended.chopped(1));
    second.prevIndex = -1;
    QCOMPARE(withoutConnections(ended), document({first, second}));
}

QTEST_MAIN(tst_RandomChanges)
#include "tst_randomchanges.moc"
