#include "scene/clipboardsteps.h"

#include <QPointer>

class tst_NodegraphSceneClipboardCut : public TestCase
{
    Q_OBJECT

private slots:
    void cutHidesNodesAtOnce();
    void cutNodesStayInGraph();
    void pasteReplacesHiddenSources();
    void lineIsSeenWhileBothEndsAre();
    void newLineToHiddenNodeIsHidden();
    void unpastedCutNodesShowAgain_data();
    void unpastedCutNodesShowAgain();
    void cuttingTwiceKeepsNodesHidden();
    void unpastedCutNodeIsSavedAndVisibleAfterLoading();

    void deletedNodeIsNotPasted();
    void restoredNodeIsNotPasted();
    void restoredCutNodeIsVisible();
    void redoneNodeIsNotPasted();
    void clearedSceneForgetsClipboard();
    void sceneDiesWithFullClipboard();
    void sourceIsDestroyedOnce();
};

void tst_NodegraphSceneClipboardCut::cutHidesNodesAtOnce()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    tab.place(text("B"));
    Node *c = tab.place(text("C"));
    tab.select({a, c});
    LogCapture log;
    tab.scene.cutNodes();
    QCOMPARE(log.lines(), QStringList{text("Copying")});
    QCOMPARE(tab.hidden(), (QStringList{text("A"), text("C")}));
    QCOMPARE(tab.stack.count(), 0);

    ClipboardTab other;
    other.place(text("A"));
    other.scene.selectAll();
    log.clear();
    other.cutCurrent(other.place(text("B")));
    QCOMPARE(log.lines().last(2), (QStringList{text("Copying"), text("Copying node  1")}));
    QCOMPARE(other.hidden(), QStringList{text("B")});
}

void tst_NodegraphSceneClipboardCut::cutNodesStayInGraph()
{
    ClipboardTab tab;
    tab.placeChain({text("A"), text("B"), text("C")});
    tab.scene.setEndOfStory(tab.titled(text("C")));
    const QByteArray before = tab.document();
    tab.cutCurrent(tab.titled(text("B")));
    QCOMPARE(tab.document(), before);
    QCOMPARE(tab.joined(), (QStringList{text("A > B"), text("B > C")}));
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 1, 2}));
}

void tst_NodegraphSceneClipboardCut::pasteReplacesHiddenSources()
{
    ClipboardTab tab;
    tab.placeChain({text("A"), text("B")});
    tab.scene.selectAll();
    tab.scene.cutNodes();
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{2, 3}));
    QCOMPARE(tab.hidden(), QStringList());
    QCOMPARE(tab.hiddenLines(), QStringList());
    QCOMPARE(tab.joined(), QStringList{text("A > B")});
}

void tst_NodegraphSceneClipboardCut::lineIsSeenWhileBothEndsAre()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B"), text("C"), text("D")});
    tab.select({chain[1], chain[2]});
    tab.scene.cutNodes();
    QCOMPARE(tab.hiddenLines(), (QStringList{text("A > B"), text("B > C"), text("C > D")}));
    tab.cutCurrent(chain[3]);
    QCOMPARE(tab.hiddenLines(), QStringList{text("C > D")});
    tab.cutCurrent(chain[0]);
    QCOMPARE(tab.hiddenLines(), QStringList{text("A > B")});
}

// The cut node is still current, so an event that is added attaches to it.
void tst_NodegraphSceneClipboardCut::newLineToHiddenNodeIsHidden()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    tab.cutCurrent(a);
    tab.scene.sl_addEventNode();
    QCOMPARE(tab.joined(), QStringList{text("A > Event")});
    QCOMPARE(tab.hiddenLines(), QStringList{text("A > Event")});
    tab.scene.copyNodes();
    QCOMPARE(tab.hiddenLines(), QStringList());
}

void tst_NodegraphSceneClipboardCut::unpastedCutNodesShowAgain_data()
{
    QTest::addColumn<bool>("cutAgain");
    QTest::addColumn<bool>("another");
    QTest::newRow("copy of another node") << false << true;
    QTest::newRow("cut of another node") << true << true;
    QTest::newRow("copy of nothing") << false << false;
    QTest::newRow("cut of nothing") << true << false;
}

void tst_NodegraphSceneClipboardCut::unpastedCutNodesShowAgain()
{
    QFETCH(bool, cutAgain);
    QFETCH(bool, another);
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    Node *other = tab.place(text("X"));
    tab.select(chain);
    tab.scene.cutNodes();
    tab.select({});
    if (another)
        tab.makeCurrent(other);
    if (cutAgain)
        tab.scene.cutNodes();
    else
        tab.scene.copyNodes();
    QCOMPARE(tab.hidden(), cutAgain && another ? QStringList{text("X")} : QStringList());
    QCOMPARE(tab.hiddenLines(), QStringList());
    QCOMPARE(tab.joined(), QStringList{text("A > B")});
}

void tst_NodegraphSceneClipboardCut::cuttingTwiceKeepsNodesHidden()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    tab.select({chain.front()});
    tab.scene.cutNodes();
    tab.scene.cutNodes();
    QCOMPARE(tab.hidden(), QStringList{text("A")});
    QCOMPARE(tab.hiddenLines(), QStringList{text("A > B")});
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{1, 2}));
    QCOMPARE(tab.hidden(), QStringList());
}

void tst_NodegraphSceneClipboardCut::unpastedCutNodeIsSavedAndVisibleAfterLoading()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    const QByteArray before = SceneBytes::saved(tab.scene);
    tab.cutCurrent(chain.front());
    const QByteArray bytes = SceneBytes::saved(tab.scene);
    QCOMPARE(bytes, before);
    ClipboardTab reopened;
    SceneBytes::load(reopened.scene, bytes);
    QCOMPARE(reopened.titles(), (QStringList{text("A"), text("B")}));
    QCOMPARE(reopened.joined(), QStringList{text("A > B")});
    QCOMPARE(reopened.hidden(), QStringList());
    QCOMPARE(reopened.hiddenLines(), QStringList());
}

void tst_NodegraphSceneClipboardCut::deletedNodeIsNotPasted()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B"), text("C")});
    tab.select(chain);
    tab.scene.cutNodes();
    tab.select({});
    tab.scene.deleteSelectedNodes(chain[1]);
    flushDeferredDeletes();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.count(text("Pasting node  1")), 0);
    QCOMPARE(log.count(text("Del")), 2);
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("C")}));
    QCOMPARE(tab.joined(), QStringList());
    QCOMPARE(tab.titled(text("A"))->scenePos(), QPointF(20000, 15000));
}

void tst_NodegraphSceneClipboardCut::restoredNodeIsNotPasted()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    tab.copyCurrent(a);
    tab.scene.deleteSelectedNodes(nullptr);
    flushDeferredDeletes();
    tab.stack.undo();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(sortedIndices(tab.scene), QList<int>{0});
}

void tst_NodegraphSceneClipboardCut::restoredCutNodeIsVisible()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    tab.cutCurrent(chain.back());
    tab.scene.deleteSelectedNodes(nullptr);
    flushDeferredDeletes();
    tab.stack.undo();
    QCOMPARE(tab.hidden(), QStringList());
    QCOMPARE(tab.hiddenLines(), QStringList());
    QCOMPARE(tab.joined(), QStringList{text("A > B")});
    tab.scene.cutNodes(); // the clipboard holds nothing that is gone
    QCOMPARE(tab.hidden(), QStringList());
}

void tst_NodegraphSceneClipboardCut::redoneNodeIsNotPasted()
{
    ClipboardTab tab;
    tab.scene.sl_addEventNode();
    tab.scene.cutNodes();
    tab.stack.undo();
    flushDeferredDeletes();
    tab.pasteAt(elsewhere);
    QVERIFY(tab.scene.nodes().empty());
    tab.stack.redo();
    QCOMPARE(tab.hidden(), QStringList());
    tab.pasteAt(elsewhere);
    QCOMPARE(sortedIndices(tab.scene), QList<int>{0});
}

void tst_NodegraphSceneClipboardCut::clearedSceneForgetsClipboard()
{
    ClipboardTab tab;
    tab.placeChain({text("A"), text("B")});
    tab.scene.selectAll();
    tab.scene.cutNodes();
    tab.scene.clear();
    flushDeferredDeletes();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), QStringList());
    tab.scene.copyNodes();
    QVERIFY(tab.scene.nodes().empty());
}

// Worth its while under AddressSanitizer.
void tst_NodegraphSceneClipboardCut::sceneDiesWithFullClipboard()
{
    ClipboardTab other;
    other.place(text("X"));
    {
        ClipboardTab tab;
        tab.placeChain({text("A"), text("B")});
        tab.scene.selectAll();
        tab.scene.cutNodes();
    }
    flushDeferredDeletes();
    other.scene.sl_deselectCurrentNode();
    other.pasteAt(elsewhere);
    QCOMPARE(other.titles(), QStringList{text("X")});
}

void tst_NodegraphSceneClipboardCut::sourceIsDestroyedOnce()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    const QPointer<Node> first(chain.front());
    QSignalSpy firstGone(chain.front(), &QObject::destroyed);
    QSignalSpy secondGone(chain.back(), &QObject::destroyed);
    tab.scene.selectAll();
    tab.scene.copyNodes();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QVERIFY(first); // its own key press may have led here
    flushDeferredDeletes();
    QVERIFY(!first);
    QCOMPARE(firstGone.count(), 1);
    QCOMPARE(secondGone.count(), 1);
    QCOMPARE(log.count(text("Deleted node  0")), 1);
    QCOMPARE(log.count(text("Deleted node  1")), 1);
}

QTEST_MAIN(tst_NodegraphSceneClipboardCut)
#include "tst_nodegraphscene_clipboard_cut.moc"
