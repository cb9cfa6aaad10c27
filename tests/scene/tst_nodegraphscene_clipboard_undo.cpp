#include "commands/connectnodescommand.h"
#include "scene/clipboardsteps.h"

#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QRegularExpression>

namespace {

void undoAll(QUndoStack &stack) { stack.setIndex(0); }
void redoAll(QUndoStack &stack) { stack.setIndex(stack.count()); }

/// X feeds A, A feeds B, B feeds C and D, C feeds Y; B is important; Z stands alone.
void buildStory(ClipboardTab &tab)
{
    tab.placeChain({text("X"), text("A"), text("B"), text("C"), text("Y")});
    tab.scene.connectNodes(tab.place(text("D")), tab.titled(text("B")));
    tab.place(text("Z"));
    tab.scene.toggleImportance(tab.titled(text("B")));
    tab.scene.sl_deselectCurrentNode();
}

/// Selects those of the events that can be seen, in this order.
void selectTitled(ClipboardTab &tab, const QString &titles)
{
    std::vector<Node *> nodes;
    for (const QChar title : titles) {
        if (tab.titled(title)->isVisible())
            nodes.push_back(tab.titled(title));
    }
    tab.select(nodes);
}

/// One random edit of a scene whose events stand anywhere.
void editAtRandom(ClipboardTab &tab, QRandomGenerator &random)
{
    NodegraphScene &scene = tab.scene;
    const std::vector<Node *> nodes = scene.nodes();
    const auto anyNode = [&] { return nodes[random.bounded(quint32(nodes.size()))]; };
    const QPointF pos(random.bounded(9000) + 0.25, random.bounded(9000) + 0.5);
    scene.sl_lastMousePos(pos);
    switch (random.bounded(12)) {
    case 0:
    case 1:
        scene.sl_addEventNode();
        break;
    case 2:
        if (!nodes.empty())
            scene.sl_selectCurrentNode(anyNode());
        break;
    case 3: {
        SceneMouse mouse{scene};
        mouse.press(QPointF(1, 1));
        mouse.move(pos);
        mouse.release(QPointF(1, 1));
        break;
    }
    case 4:
        scene.deselectAll();
        break;
    case 5:
        scene.copyNodes();
        break;
    case 6:
        scene.cutNodes();
        break;
    case 7:
    case 8:
        scene.pasteNodes();
        break;
    case 9:
        if (random.bounded(3) == 0)
            scene.deleteSelectedNodes(nullptr);
        break;
    case 10:
        for (int i = random.bounded(6); i > 0; --i)
            tab.stack.undo();
        break;
    default:
        for (int i = random.bounded(6); i > 0; --i)
            tab.stack.redo();
        break;
    }
}

/// What must hold between any two edits; empty if it does.
QString faultOf(const ClipboardTab &tab)
{
    const NodegraphScene &scene = tab.scene;
    const QStringList half = connections(scene).filter(QRegularExpression(text("half|lines")));
    if (!half.isEmpty())
        return half.join(text(", "));
    const QList<int> indices = sortedIndices(scene);
    if (std::adjacent_find(indices.begin(), indices.end()) != indices.end())
        return text("an index is there twice");
    const std::vector<Node *> &nodes = scene.nodes();
    const auto isStranger = [&nodes](const Node *node) {
        return node && std::find(nodes.begin(), nodes.end(), node) == nodes.end();
    };
    const std::vector<Node *> &selected = scene.selectedNodes();
    if (isStranger(scene.currentNode()) || isStranger(scene.endOfStoryNode()) ||
        std::any_of(selected.begin(), selected.end(), isStranger))
        return text("a node that is gone is remembered");
    for (const Node *node : nodes) {
        const bool bothSeen = node->isVisible() && (!node->prevNode() || node->prevNode()->isVisible());
        if (node->inLine() && node->inLine()->isVisible() != bothSeen)
            return text("a line is not seen as its ends are");
        if (node->isEndOfStory() != (node == scene.endOfStoryNode()))
            return text("the mark is on a wrong node");
    }
    return {};
}

} // namespace

class tst_NodegraphSceneClipboardUndo : public TestCase
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        QLoggingCategory::setFilterRules(QString());
        flushDeferredDeletes();
    }

    void pasteIsOneCommandPerNode();
    void undoGivesDocumentBack_data();
    void undoGivesDocumentBack();
    void undoneCutIsVisible();
    void undonePasteIsNotPastedAgain();
    void textTypedIntoDuplicateSurvives();
    void textTypedIntoRestoredSourceSurvives();
    void edgesOfDuplicateSurvive();
    void markThatUserMovedStays();
    void historyAfterUndoneCutOfDuplicate();
    void randomEditsCanAllBeUndone_data();
    void randomEditsCanAllBeUndone();
};

void tst_NodegraphSceneClipboardUndo::pasteIsOneCommandPerNode()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    tab.select(chain);
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    QStringList commands;
    for (int i = 0; i < tab.stack.count(); ++i)
        commands << tab.stack.text(i);
    QCOMPARE(commands,
             (QStringList{text("Add Node"), text("Add Node"), text("Delete Node"), text("Delete Node")}));

    tab.stack.undo();
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("B"), text("B")}));
    tab.stack.undo();
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("A"), text("B"), text("B")}));
    QCOMPARE(tab.joined(), (QStringList{text("A > B"), text("A > B")}));
    tab.stack.undo();
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("A"), text("B")}));
    tab.stack.undo();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 1}));
}

void tst_NodegraphSceneClipboardUndo::undoGivesDocumentBack_data()
{
    QTest::addColumn<QString>("sources"); // selected, or current if there is only one
    QTest::addColumn<QString>("current"); // at the time of the paste
    QTest::addColumn<QString>("deleted"); // selected at the time of the paste, "=" the sources
    QTest::addColumn<QString>("end");     // of the story, empty for none
    const QString none;
    const QString same = text("=");
    QTest::newRow("loose") << text("Z") << none << none << text("Y");
    QTest::newRow("loose, current") << text("Z") << text("Z") << none << text("Y");
    QTest::newRow("loose, end") << text("Z") << none << none << text("Z");
    QTest::newRow("loose, current, end") << text("Z") << text("Z") << none << text("Z");
    QTest::newRow("middle of chain") << text("B") << text("B") << none << text("Y");
    QTest::newRow("middle of chain, end") << text("B") << text("B") << none << text("B");
    QTest::newRow("behind the end") << text("Z") << text("Y") << none << text("Y");
    QTest::newRow("group") << text("ABC") << none << same << text("Y");
    QTest::newRow("group, unselected") << text("ABC") << none << none << text("Y");
    QTest::newRow("group with end") << text("ABC") << none << same << text("C");
    QTest::newRow("group with end first") << text("ABC") << none << same << text("A");
    QTest::newRow("group, no end") << text("ABC") << none << same << none;
    QTest::newRow("group behind end") << text("ABC") << text("Z") << same << text("Z");
    QTest::newRow("group from its tip behind end") << text("CBA") << text("Z") << same << text("Z");
    QTest::newRow("group behind its end") << text("ABC") << text("C") << same << text("C");
    QTest::newRow("group behind its first as end") << text("ABC") << text("A") << same << text("A");
    QTest::newRow("group from its tip behind its end") << text("CBA") << text("C") << none << text("C");
    QTest::newRow("fork") << text("DCB") << text("X") << same << text("D");
    QTest::newRow("other selection") << text("A") << text("A") << text("XZ") << text("Z");
    QTest::newRow("other selection, end is source") << text("A") << none << text("XZ") << text("A");
    QTest::newRow("part of the sources") << text("ABC") << text("Y") << text("BZ") << text("Y");
    QTest::newRow("end is deleted instead") << text("BC") << text("Y") << text("Y") << text("Y");
    QTest::newRow("everything") << text("XABCYDZ") << text("D") << same << text("Y");
}

void tst_NodegraphSceneClipboardUndo::undoGivesDocumentBack()
{
    QFETCH(QString, sources);
    QFETCH(QString, current);
    QFETCH(QString, deleted);
    QFETCH(QString, end);
    for (const bool isCut : {false, true}) {
        ClipboardTab tab;
        buildStory(tab);
        if (end.isEmpty()) {
            Node *marked = tab.place(text("Marked"));
            tab.scene.setEndOfStory(marked);
            tab.scene.deleteNode(marked);
        } else {
            tab.scene.setEndOfStory(tab.titled(end));
        }
        const QByteArray before = tab.document();
        const QList<int> story = indicesOf(tab.scene.story());
        selectTitled(tab, sources);
        if (isCut)
            tab.scene.cutNodes();
        else
            tab.scene.copyNodes();
        if (deleted != text("="))
            selectTitled(tab, deleted);
        if (!current.isEmpty())
            tab.makeCurrent(tab.titled(current));
        tab.pasteAt(elsewhere);
        const QByteArray pasted = tab.document();
        const QStringList joined = tab.joined();
        QVERIFY(pasted != before);
        QCOMPARE(faultOf(tab), QString());
        for (int round = 0; round < 3; ++round) {
            undoAll(tab.stack);
            flushDeferredDeletes();
            QCOMPARE(tab.document(), before);
            QCOMPARE(faultOf(tab), QString());
            QCOMPARE(indicesOf(tab.scene.story()), story);
            QCOMPARE(tab.hidden(), QStringList());
            QCOMPARE(tab.hiddenLines(), QStringList());
            redoAll(tab.stack);
            flushDeferredDeletes();
            QCOMPARE(tab.document(), pasted);
            QCOMPARE(tab.joined(), joined);
            QCOMPARE(faultOf(tab), QString());
            QCOMPARE(tab.hidden(), QStringList());
        }
    }
}

void tst_NodegraphSceneClipboardUndo::undoneCutIsVisible()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B"), text("C")});
    tab.select({chain[1]});
    tab.scene.cutNodes();
    tab.pasteAt(elsewhere);
    tab.stack.undo();
    QCOMPARE(tab.titles(), (QStringList{text("A"), text("B"), text("B"), text("C")}));
    QCOMPARE(tab.hidden(), QStringList());
    QCOMPARE(tab.hiddenLines(), QStringList());
    QCOMPARE(tab.joined(), (QStringList{text("A > B"), text("B > C")}));
}

void tst_NodegraphSceneClipboardUndo::undonePasteIsNotPastedAgain()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    tab.scene.cutNodes();
    tab.pasteAt(elsewhere);
    undoAll(tab.stack);
    flushDeferredDeletes();
    const QByteArray before = tab.document();
    LogCapture log;
    tab.pasteAt(elsewhere);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(tab.document(), before);
    QVERIFY(tab.stack.canRedo());
}

void tst_NodegraphSceneClipboardUndo::textTypedIntoDuplicateSurvives()
{
    ClipboardTab tab;
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    tab.select(chain);
    tab.scene.copyNodes();
    const QByteArray before = tab.document();
    tab.pasteAt(elsewhere);
    typeTitle(tab.titled(text("A")), text("A, pasted"));
    typeDescription(tab.titled(text("B")), text("Written after the paste"));
    tab.titled(text("B"))->setPos(4321.5, 1234.25);
    tab.scene.toggleImportance(tab.titled(text("B")));
    const QByteArray typed = tab.document();
    for (int round = 0; round < 2; ++round) {
        undoAll(tab.stack);
        flushDeferredDeletes();
        QCOMPARE(tab.document(), before);
        redoAll(tab.stack);
        flushDeferredDeletes();
        QCOMPARE(tab.document(), typed);
    }
    QCOMPARE(tab.joined(), QStringList{text("A, pasted > B")});
    QCOMPARE(descriptionOf(tab.titled(text("B"))), text("Written after the paste"));
}

// The redone paste takes the source away once more; its new text comes back with the next undo.
void tst_NodegraphSceneClipboardUndo::textTypedIntoRestoredSourceSurvives()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    const QByteArray pasted = tab.document();
    undoAll(tab.stack);
    typeTitle(tab.node(0), text("A, again"));
    typeDescription(tab.node(0), text("Written after the undo"));
    const QByteArray typed = tab.document();
    redoAll(tab.stack);
    QCOMPARE(tab.document(), pasted);
    undoAll(tab.stack);
    QCOMPARE(tab.document(), typed);
}

void tst_NodegraphSceneClipboardUndo::edgesOfDuplicateSurvive()
{
    ClipboardTab tab;
    Node *other = tab.place(text("X"));
    const std::vector<Node *> chain = tab.placeChain({text("A"), text("B")});
    tab.select(chain);
    tab.scene.copyNodes();
    tab.pasteAt(elsewhere);
    const int afterPaste = tab.stack.index();
    tab.scene.sl_deselectCurrentNode();
    tab.stack.push(new ConnectNodesCommand(&tab.scene, tab.titled(text("A"))->getIndex(), other->getIndex()));
    const QByteArray connected = tab.document();
    tab.stack.setIndex(afterPaste);
    QCOMPARE(tab.joined(), QStringList{text("A > B")});
    undoAll(tab.stack);
    QCOMPARE(tab.joined(), QStringList{text("A > B")});
    redoAll(tab.stack);
    flushDeferredDeletes();
    QCOMPARE(tab.document(), connected);
    QCOMPARE(tab.joined(), (QStringList{text("A > B"), text("X > A")}));
}

// Marking is not undoable: what the user marked after the paste keeps the mark.
void tst_NodegraphSceneClipboardUndo::markThatUserMovedStays()
{
    ClipboardTab tab;
    Node *other = tab.place(text("X"));
    Node *a = tab.place(text("A"));
    tab.scene.setEndOfStory(a);
    tab.copyCurrent(a);
    tab.pasteAt(elsewhere);
    QCOMPARE(tab.scene.endOfStoryNode(), tab.titled(text("A")));
    tab.scene.setEndOfStory(other);
    undoAll(tab.stack);
    QCOMPARE(tab.scene.endOfStoryNode(), other);
    QVERIFY(!tab.node(1)->isEndOfStory());
    redoAll(tab.stack);
    QCOMPARE(tab.scene.endOfStoryNode(), other);
    QVERIFY(!tab.titled(text("A"))->isEndOfStory());
}

void tst_NodegraphSceneClipboardUndo::historyAfterUndoneCutOfDuplicate()
{
    ClipboardTab tab;
    tab.place(text("A"));
    tab.scene.selectAll();
    tab.scene.copyNodes();
    const QByteArray before = tab.document();
    tab.pasteAt(elsewhere);
    const QByteArray pasted = tab.document();
    tab.cutCurrent(tab.titled(text("A")));
    undoAll(tab.stack);
    flushDeferredDeletes();
    QCOMPARE(tab.document(), before);
    QCOMPARE(tab.hidden(), QStringList());
    redoAll(tab.stack);
    flushDeferredDeletes();
    QCOMPARE(tab.document(), pasted);
    QCOMPARE(tab.hidden(), QStringList());
    tab.pasteAt(elsewhere); // what was cut is gone, another like it came back
    QCOMPARE(tab.document(), pasted);
}

void tst_NodegraphSceneClipboardUndo::randomEditsCanAllBeUndone_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 12; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_NodegraphSceneClipboardUndo::randomEditsCanAllBeUndone()
{
    QFETCH(quint32, seed);
    // Thousands of lines would hide the one that matters.
    QLoggingCategory::setFilterRules(text("default.info=false"));
    ClipboardTab tab;
    buildStory(tab);
    const QByteArray start = tab.document();
    QRandomGenerator random(seed);
    for (int edit = 0; edit < 120; ++edit) {
        editAtRandom(tab, random);
        if (edit % 7 == 0)
            flushDeferredDeletes();
        const QString fault = faultOf(tab);
        QVERIFY2(fault.isEmpty(), qPrintable(text("edit %1: %2").arg(edit).arg(fault)));
    }
    redoAll(tab.stack);
    const QByteArray end = tab.document();
    undoAll(tab.stack);
    QCOMPARE(tab.document(), start);
    redoAll(tab.stack);
    QCOMPARE(tab.document(), end);
    undoAll(tab.stack);
    QCOMPARE(tab.document(), start);
}

QTEST_MAIN(tst_NodegraphSceneClipboardUndo)
#include "tst_nodegraphscene_clipboard_undo.moc"
