#include "scene/clipboardtab.h"
#include "scene/shownscene.h"

namespace {

constexpr QPointF elsewhere(20000.5, 15000.25);

QString text(const char *latin1) { return QString::fromLatin1(latin1); }

QList<QPointF> placesOf(const ClipboardTab &tab, const QStringList &titles)
{
    QList<QPointF> places;
    for (const QString &title : titles)
        places << tab.titled(title)->scenePos();
    return places;
}

} // namespace

class tst_NodegraphSceneClipboard : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }

    void currentNodeIsCopiedBeforeSelection();
    void selectionIsCopiedWithoutCurrentNode();
    void copyingChangesNothing();
    void copyingNothingEmptiesClipboard();

    void pasteMovesNodeToMouse_data();
    void pasteMovesNodeToMouse();
    void pasteLandsInMiddleBeforeMouseWasThere();
    void pastedNodeHasContentAndFreshIndex();
    void pastedNodeKeepsEmptyTexts();
    void pasteLogsItsSteps_data();
    void pasteLogsItsSteps();
    void pasteOfNothingIsSilent();
    void pasteOfNothingWithCurrentNodeOnlySaysSo();
    void secondPasteDoesNothing();
    void nodesOfOneSceneAreNotPastedIntoAnother();
    void groupKeepsItsShape();
    void connectionsWithinGroupAreRecreated();
    void pastedNodesAreNeitherCurrentNorSelected();
    void refusedCommandsLeaveEverything();

    void pastedNodeAttachesToCurrentNode();
    void pastedGroupComesOutAsItWas_data();
    void pastedGroupComesOutAsItWas();
    void importanceComesAlong();
    void endOfStoryComesAlong_data();
    void endOfStoryComesAlong();
    void publishedStoryHoldsPastedNodes();

    void selectionIsDeletedInsteadOfSource();
    void onlyFirstSourceIsSparedForSelection();
    void survivingCutSourceShowsAgain();
};

void tst_NodegraphSceneClipboard::currentNodeIsCopiedBeforeSelection()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    Node *b = tab.place(text("B"));
    tab.scene.selectAll();
    tab.makeCurrent(b);
    LogCapture log;
    tab.scene.copyNodes();
    QCOMPARE(log.lines(), (QStringList{text("Copying"), text("Copying node  1")}));
    tab.scene.deselectAll();
    tab.pasteAt(elsewhere);
    QCOMPARE(log.count(text("Pasting node  1")), 1);
    QCOMPARE(log.count(text("Pasting node  0")), 0);
    QCOMPARE(tab.node(0), a);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2}));
}

void tst_NodegraphSceneClipboard::selectionIsCopiedWithoutCurrentNode()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    tab.place(text("B"));
    Node *c = tab.place(text("C"));
    tab.select({c, a});
    LogCapture log;
    tab.scene.copyNodes();
    QCOMPARE(log.lines(), QStringList{text("Copying")});
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines().filter(text("Pasting")),
             (QStringList{text("Pasting"), text("Pasting node  2"), text("Pasting node  0")}));
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("B"), text("C")}));
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{1, 3, 4}));
    QCOMPARE(tab.node(3)->getTitle(), text("C"));
}

void tst_NodegraphSceneClipboard::copyingChangesNothing()
{
    ClipboardTab tab;
    tab.placeChain({text("A"), text("B")});
    tab.scene.selectAll();
    const QByteArray before = tab.document();
    tab.scene.copyNodes();
    QCOMPARE(tab.document(), before);
    QCOMPARE(tab.hidden(), QStringList());
    QCOMPARE(tab.stack.count(), 0);
    QCOMPARE(tab.scene.getSelectedNodes().size(), std::size_t(2));
}

void tst_NodegraphSceneClipboard::copyingNothingEmptiesClipboard()
{
    ClipboardTab tab;
    tab.copyCurrent(tab.place(text("A")));
    tab.scene.sl_deselectCurrentNode();
    tab.scene.copyNodes();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(tab.stack.count(), 0);
}

void tst_NodegraphSceneClipboard::pasteMovesNodeToMouse_data()
{
    QTest::addColumn<QPointF>("source");
    QTest::addColumn<QPointF>("mouse");
    QTest::addColumn<QPointF>("target");
    QTest::newRow("whole") << QPointF(100, 200) << QPointF(700, 900) << QPointF(700, 900);
    QTest::newRow("fraction forward") << QPointF(100, 200) << QPointF(700.75, 900.25) << QPointF(700, 900);
    QTest::newRow("fraction back") << QPointF(700, 900) << QPointF(100.25, 200.75) << QPointF(101, 201);
    QTest::newRow("source between") << QPointF(0.5, 0.75) << QPointF(700, 900) << QPointF(699.5, 899.75);
    QTest::newRow("less than one") << QPointF(10.5, 10.5) << QPointF(11.25, 9.75) << QPointF(10.5, 10.5);
    QTest::newRow("mixed") << QPointF(500, 500) << QPointF(900.5, 100.5) << QPointF(900, 101);
}

void tst_NodegraphSceneClipboard::pasteMovesNodeToMouse()
{
    QFETCH(QPointF, source);
    QFETCH(QPointF, mouse);
    QFETCH(QPointF, target);
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    a->setPos(source);
    tab.copyCurrent(a);
    tab.pasteAt(mouse);
    QCOMPARE(tab.scene.getNodes().size(), std::size_t(1));
    QCOMPARE(tab.titled(text("A"))->scenePos(), target);
}

void tst_NodegraphSceneClipboard::pasteLandsInMiddleBeforeMouseWasThere()
{
    ShownScene shown;
    shown.scene.createNode(QPointF(10, 10), 0, 0, nullptr, text("A"));
    shown.scene.selectAll();
    shown.scene.copyNodes();
    const QPointF middle = shown.view.mapToScene(shown.view.viewport()->rect().center());
    shown.scene.pasteNodes();
    QCOMPARE(shown.scene.getNodes().size(), std::size_t(1));
    const QPointF distance = middle - QPointF(10, 10);
    QCOMPARE(shown.scene.getNodes().front()->scenePos(),
             QPointF(10 + int(distance.x()), 10 + int(distance.y())));
}

void tst_NodegraphSceneClipboard::pastedNodeHasContentAndFreshIndex()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    typeTitle(a, text("Arrival"));
    typeDescription(a, text("First line\nsecond line"));
    const QRectF body = a->boundingRect();
    tab.copyCurrent(a);
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), QList<int>{1});
    const Node *pasted = tab.node(1);
    QCOMPARE(pasted->getTitle(), text("Arrival"));
    QCOMPARE(descriptionOf(pasted), text("First line\nsecond line"));
    QCOMPARE(pasted->getType(), 0);
    QCOMPARE(pasted->boundingRect(), body);
    QVERIFY(pasted->isVisible());
}

void tst_NodegraphSceneClipboard::pastedNodeKeepsEmptyTexts()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    typeTitle(a, QString());
    typeDescription(a, QString());
    tab.copyCurrent(a);
    tab.pasteAt(elsewhere);
    QCOMPARE(tab.node(1)->getTitle(), QString());
    QCOMPARE(descriptionOf(tab.node(1)), QString());
}

void tst_NodegraphSceneClipboard::pasteLogsItsSteps_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("one node") << 1
                              << QStringList{text("Pasting"), text("Pasting node  0"),
                                             text("Old node index  0  New node index  1"), text("Del"),
                                             text("Deleted node  0")};
    QTest::newRow("chain") << 2
                           << QStringList{text("Pasting"),
                                          text("Pasting node  0"),
                                          text("Old node index  0  New node index  2"),
                                          text("Pasting node  1"),
                                          text("Old node index  0  New node index  3"),
                                          text("Connected node  3  to  2"),
                                          text("Del"),
                                          text("Disconnected node  1"),
                                          text("Deleted node  0"),
                                          text("Del"),
                                          text("Deleted node  1")};
}

void tst_NodegraphSceneClipboard::pasteLogsItsSteps()
{
    QFETCH(int, count);
    QFETCH(QStringList, lines);
    ClipboardTab tab;
    tab.placeChain(QStringList{text("A"), text("B")}.first(count));
    tab.scene.selectAll();
    tab.scene.copyNodes();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), lines);
}

void tst_NodegraphSceneClipboard::pasteOfNothingIsSilent()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    const QByteArray before = tab.document();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(tab.document(), before);
    QCOMPARE(tab.stack.count(), 0);
}

void tst_NodegraphSceneClipboard::pasteOfNothingWithCurrentNodeOnlySaysSo()
{
    ClipboardTab tab;
    tab.makeCurrent(tab.place(text("A")));
    tab.scene.selectAll();
    const QByteArray before = tab.document();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), QStringList{text("Pasting")});
    QCOMPARE(tab.document(), before);
    QCOMPARE(tab.stack.count(), 0);
}

void tst_NodegraphSceneClipboard::secondPasteDoesNothing()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    const QByteArray before = tab.document();
    const int commands = tab.stack.count();
    LogCapture log;
    tab.pasteAt(QPointF(300, 300));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(tab.document(), before);
    QCOMPARE(tab.stack.count(), commands);
}

void tst_NodegraphSceneClipboard::nodesOfOneSceneAreNotPastedIntoAnother()
{
    ClipboardTab from;
    ClipboardTab to;
    from.place(text("A"));
    to.place(text("B"));
    from.scene.selectAll();
    from.scene.copyNodes();
    to.pasteAt(elsewhere);
    QCOMPARE(to.titles(), QStringList{text("B")});
    QCOMPARE(to.stack.count(), 0);
    QCOMPARE(from.titles(), QStringList{text("A")});

    // The other scene's paste has not consumed it.
    from.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(from.scene), QList<int>{1});
}

void tst_NodegraphSceneClipboard::groupKeepsItsShape()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    Node *b = tab.place(text("B"));
    Node *c = tab.place(text("C"));
    const QPointF toA = a->scenePos() - b->scenePos();
    const QPointF toC = c->scenePos() - b->scenePos();
    tab.select({b, a, c});
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    const QPointF reference(20000, 15000);
    QCOMPARE(placesOf(tab, {text("B"), text("A"), text("C")}),
             (QList<QPointF>{reference, reference + toA, reference + toC}));
}

void tst_NodegraphSceneClipboard::connectionsWithinGroupAreRecreated()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("X"), text("A"), text("B"), text("C"), text("Y")});
    tab.select({chain[1], chain[2], chain[3]});
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    QCOMPARE(tab.joined(), (QStringList{text("A > B"), text("B > C")}));
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 4, 5, 6, 7}));
    QVERIFY(linesAreExact(tab.scene));
    QCOMPARE(tab.hiddenLines(), QStringList());
}

void tst_NodegraphSceneClipboard::pastedNodesAreNeitherCurrentNorSelected()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(tab.scene.getSelectedNodes().empty());
    QVERIFY(!tab.titled(text("A"))->isSelected());
}

void tst_NodegraphSceneClipboard::refusedCommandsLeaveEverything()
{
    NodegraphScene scene;
    connect(&scene, &NodegraphScene::s_UndoCommandAdded, [](QUndoCommand *command) { delete command; });
    scene.createNode(QPointF(10, 10), 0, 0, nullptr, text("A"));
    scene.selectAll();
    scene.cutNodes();
    const QByteArray before = SceneBytes::saved(scene);
    scene.sl_lastMousePos(elsewhere);
    scene.pasteNodes();
    QCOMPARE(SceneBytes::saved(scene), before);
    QVERIFY(scene.getNodes().front()->isVisible());
}

void tst_NodegraphSceneClipboard::pastedNodeAttachesToCurrentNode()
{
    ClipboardTab tab;
    Node *end = tab.place(text("End"));
    Node *a = tab.place(text("A"));
    tab.copyCurrent(a);
    tab.makeCurrent(end);
    tab.pasteAt(elsewhere);
    Node *pasted = tab.titled(text("A"));
    QCOMPARE(pasted->getIndex(), 2);
    QCOMPARE(tab.joined(), QStringList{text("End > A")});
    QCOMPARE(pasted->scenePos(), QPointF(20000, 15000));
    QVERIFY(linesAreExact(tab.scene));
    QCOMPARE(tab.scene.currentNode(), pasted);
    QVERIFY(pasted->isSelected());
    QCOMPARE(tab.scene.endOfStoryNode(), pasted);
    QCOMPARE(indicesOf(tab.scene.getStory()), (QList<int>{0, 2}));
}

void tst_NodegraphSceneClipboard::pastedGroupComesOutAsItWas_data()
{
    QTest::addColumn<QStringList>("sources");     // "A > B"
    QTest::addColumn<QStringList>("order");       // of the selection
    QTest::addColumn<QStringList>("connections"); // "E" is current and no source
    const QStringList chain{text("A > B"), text("B > C")};
    const QStringList fork{text("A > B"), text("A > C")};
    const QStringList forward{text("A"), text("B"), text("C")};
    QTest::newRow("chain") << chain << forward << QStringList{text("A > B"), text("B > C"), text("E > A")};
    QTest::newRow("chain from its end") << chain << QStringList{text("C"), text("B"), text("A")} << chain;
    QTest::newRow("chain from its middle") << chain << QStringList{text("B"), text("A"), text("C")} << chain;
    QTest::newRow("fork") << fork << forward << QStringList{text("A > B"), text("A > C"), text("E > A")};
    QTest::newRow("fork from its tip") << fork << QStringList{text("B"), text("C"), text("A")} << fork;
    QTest::newRow("loose") << QStringList() << forward << QStringList{text("E > A")};
    QTest::newRow("loose behind pair")
        << QStringList{text("C > B")} << forward << QStringList{text("C > B"), text("E > A")};
}

void tst_NodegraphSceneClipboard::pastedGroupComesOutAsItWas()
{
    QFETCH(QStringList, sources);
    QFETCH(QStringList, order);
    QFETCH(QStringList, connections);
    ClipboardTab tab;
    Node *current = tab.place(text("E"));
    for (const char *title : {"A", "B", "C"})
        tab.place(text(title));
    for (const QString &connection : sources)
        tab.scene.connectNodes(tab.titled(connection.last(1)), tab.titled(connection.first(1)));
    std::vector<Node *> selection;
    for (const QString &title : order)
        selection.push_back(tab.titled(title));
    tab.select(selection);
    tab.scene.copyNodes();
    tab.makeCurrent(current);
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 4, 5, 6}));
    QCOMPARE(tab.joined(), connections);
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneClipboard::importanceComesAlong()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    tab.place(text("B"));
    tab.scene.toggleImportance(a);
    tab.scene.selectAll();
    tab.scene.copyNodes();
    QSignalSpy told(&tab.scene, &NodegraphScene::s_importanceChanged);
    tab.pasteAt(elsewhere);
    QVERIFY(tab.titled(text("A"))->getIsImportant());
    QVERIFY(!tab.titled(text("B"))->getIsImportant());
    QCOMPARE(told.count(), 1);
    QCOMPARE(told.first().first().value<Node *>(), tab.titled(text("A")));
    QCOMPARE(told.first().at(1).toBool(), true);
}

void tst_NodegraphSceneClipboard::endOfStoryComesAlong_data()
{
    QTest::addColumn<QString>("end");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("marked"); // afterwards
    QTest::addColumn<QList<int>>("story");
    const QString none;
    QTest::newRow("source, none current") << text("B") << none << text("B") << QList<int>{4, 5};
    QTest::newRow("first source, none current") << text("A") << none << text("A") << QList<int>{4};
    QTest::newRow("last source, itself current")
        << text("C") << text("C") << text("C") << QList<int>{4, 5, 6};
    QTest::newRow("first source, itself current") << text("A") << text("A") << text("A") << QList<int>{4};
    QTest::newRow("source, another current") << text("B") << text("X") << text("B") << QList<int>{0, 4, 5};
    QTest::newRow("outside, none current") << text("X") << none << text("X") << QList<int>{0};
    QTest::newRow("outside, itself current") << text("X") << text("X") << text("C") << QList<int>{0, 4, 5, 6};
    QTest::newRow("none") << none << none << none << QList<int>();
}

void tst_NodegraphSceneClipboard::endOfStoryComesAlong()
{
    QFETCH(QString, end);
    QFETCH(QString, current);
    QFETCH(QString, marked);
    QFETCH(QList<int>, story);
    ClipboardTab tab;
    Node *formerEnd = tab.place(text("X"));
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B"), text("C")});
    if (end.isEmpty()) {
        tab.scene.deleteNode(formerEnd);
        flushDeferredDeletes();
    } else {
        tab.scene.setEndOfStory(tab.titled(end));
    }
    tab.select(chain);
    tab.scene.copyNodes();
    if (!current.isEmpty())
        tab.makeCurrent(tab.titled(current));
    tab.pasteAt(elsewhere);
    QStringList carriers;
    for (const Node *node : tab.scene.getNodes()) {
        if (node->getIsEndOfStory())
            carriers << node->getTitle();
    }
    QCOMPARE(carriers.join(text(" ")), marked);
    QCOMPARE(tab.scene.endOfStoryNode(), marked.isEmpty() ? nullptr : tab.titled(marked));
    QCOMPARE(indicesOf(tab.scene.getStory()), story);
}

void tst_NodegraphSceneClipboard::publishedStoryHoldsPastedNodes()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    tab.scene.setEndOfStory(chain.back());
    tab.scene.selectAll();
    tab.scene.copyNodes();
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    tab.pasteAt(elsewhere);
    const auto story = stories.last().first().value<std::vector<Node *>>();
    QCOMPARE(story, (std::vector<Node *>{tab.titled(text("A")), tab.titled(text("B"))}));
    QCOMPARE(indicesOf(story), (QList<int>{2, 3}));
}

void tst_NodegraphSceneClipboard::selectionIsDeletedInsteadOfSource()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    Node *x = tab.place(text("X"));
    Node *y = tab.place(text("Y"));
    tab.copyCurrent(a);
    tab.select({x, y});
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.count(text("Del")), 2);
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("A")}));
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 3}));
    QCOMPARE(tab.node(0), a);
}

void tst_NodegraphSceneClipboard::onlyFirstSourceIsSparedForSelection()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    Node *b = tab.place(text("B"));
    Node *x = tab.place(text("X"));
    tab.select({a, b});
    tab.scene.copyNodes();
    tab.select({x});
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 3, 4}));
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("A"), text("B")}));
}

void tst_NodegraphSceneClipboard::survivingCutSourceShowsAgain()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    Node *x = tab.place(text("X"));
    tab.cutCurrent(chain.front());
    tab.select({x});
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 1, 3}));
    QCOMPARE(tab.hidden(), QStringList());
    QCOMPARE(tab.hiddenLines(), QStringList());
    QCOMPARE(tab.joined(), QStringList{text("A > B")});
}

QTEST_MAIN(tst_NodegraphSceneClipboard)
#include "tst_nodegraphscene_clipboard.moc"
