#include "scene/clipboardsteps.h"

class tst_NodegraphSceneClipboard : public TestCase
{
    Q_OBJECT

private slots:
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
    void pastedNodesAreNeitherCurrentNorSelected();
    void refusedCommandsLeaveEverything();
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
    QCOMPARE(tab.node(3)->title(), text("C"));
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
    QCOMPARE(tab.scene.selectedNodes().size(), std::size_t(2));
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
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
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
    QCOMPARE(shown.scene.nodes().size(), std::size_t(1));
    const QPointF distance = middle - QPointF(10, 10);
    QCOMPARE(shown.scene.nodes().front()->scenePos(),
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
    QCOMPARE(pasted->title(), text("Arrival"));
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
    QCOMPARE(tab.node(1)->title(), QString());
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

void tst_NodegraphSceneClipboard::pastedNodesAreNeitherCurrentNorSelected()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(tab.scene.selectedNodes().empty());
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
    QVERIFY(scene.nodes().front()->isVisible());
}

QTEST_MAIN(tst_NodegraphSceneClipboard)
#include "tst_nodegraphscene_clipboard.moc"
