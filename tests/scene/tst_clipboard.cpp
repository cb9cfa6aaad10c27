#include "scene/clipboard.h"

#include "scene/clipboardsteps.h"
#include "scene/massremoval.h"

namespace {

/// A tab, and a clipboard that is not its scene's own.
struct Board : ClipboardTab
{
    MassRemoval removal{scene};
    Clipboard clipboard{scene, removal};

    void copy(const Nodes &wanted)
    {
        scene.sl_deselectCurrentNode();
        select(wanted);
        clipboard.copy();
        scene.deselectAll();
    }
};

} // namespace

class tst_Clipboard : public TestCase
{
    Q_OBJECT

private slots:
    void theCurrentEventIsCopied();
    void elseTheSelectionIsCopied();
    void aCopyReplacesTheLastOne();
    void aCutHides();
    void aCopyShowsWhatWasCut();
    void aPasteComesToTheTarget();
    void aPasteMoves();
    void aPasteJoinsAsTheSourcesWere();
    void whatAttachingHasJoinedGoes();
    void theMarkGoesAlong();
    void theMarkGoesToTheLastOneBehindIt();
    void aPasteOfNothingLeavesAllAsItIs();
    void whatTheSelectionSparesIsShownAgain();
    void eachSourceIsDeletedOnce();
    void whenNobodyRunsCommandsNothingIsPasted();
    void whatDiesIsForgotten();
};

void tst_Clipboard::theCurrentEventIsCopied()
{
    Board board;
    Node *a = board.place(text("A"));
    Node *b = board.place(text("B"));
    board.select({a});
    board.makeCurrent(b);
    const LogCapture log;
    board.clipboard.copy();
    QCOMPARE(board.clipboard.remembered(), Nodes{b});
    QCOMPARE(log.lines(), (QStringList{text("Copying"), text("Copying node  1")}));
    QVERIFY(!board.clipboard.isCutPending());
}

void tst_Clipboard::elseTheSelectionIsCopied()
{
    Board board;
    const Nodes nodes{board.place(text("A")), board.place(text("B")), board.place(text("C"))};
    const LogCapture log;
    board.copy({nodes[2], nodes[0]});
    QCOMPARE(board.clipboard.remembered(), (Nodes{nodes[2], nodes[0]}));
    QCOMPARE(log.lines(), QStringList{text("Copying")});
}

void tst_Clipboard::aCopyReplacesTheLastOne()
{
    Board board;
    Node *a = board.place(text("A"));
    Node *b = board.place(text("B"));
    board.makeCurrent(a);
    board.clipboard.copy();
    board.makeCurrent(b);
    board.clipboard.copy();
    QCOMPARE(board.clipboard.remembered(), Nodes{b});
}

void tst_Clipboard::aCutHides()
{
    Board board;
    const Nodes chain = board.placeChain({text("A"), text("B"), text("C")});
    board.makeCurrent(chain[1]);
    board.clipboard.cut();
    QVERIFY(board.clipboard.isCutPending());
    QCOMPARE(board.clipboard.remembered(), Nodes{chain[1]});
    QCOMPARE(board.hidden(), QStringList{text("B")});
    QCOMPARE(board.hiddenLines(), (QStringList{text("A > B"), text("B > C")}));
    QVERIFY(!chain[1]->isEnabled());
}

void tst_Clipboard::aCopyShowsWhatWasCut()
{
    Board board;
    const Nodes chain = board.placeChain({text("A"), text("B"), text("C")});
    board.makeCurrent(chain[1]);
    board.clipboard.cut();
    board.makeCurrent(chain[2]);
    board.clipboard.copy();
    QCOMPARE(board.hidden(), QStringList());
    QCOMPARE(board.hiddenLines(), QStringList());
    QVERIFY(chain[1]->isEnabled());
}

void tst_Clipboard::aPasteComesToTheTarget()
{
    Board board;
    const Nodes nodes{board.place(text("A")), board.place(text("B"))};
    const QPointF apart = nodes[0]->scenePos() - nodes[1]->scenePos();
    board.copy({nodes[1], nodes[0]});
    board.scene.sl_lastMousePos(QPointF(7, 7)); // which is for the scene to tell
    board.clipboard.paste(elsewhere);
    const QPointF whole(20000, 15000);
    QCOMPARE(placesOf(board, {text("B"), text("A")}), (QList<QPointF>{whole, whole + apart}));
}

void tst_Clipboard::aPasteMoves()
{
    Board board;
    Node *a = board.place(text("A"));
    board.place(text("B"));
    a->setImportant(true);
    board.copy({a});
    const LogCapture log;
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.titles(), (QStringList{text("A"), text("B")}));
    QVERIFY(!board.scene.isMember(a));
    const Node *pasted = board.titled(text("A"));
    QCOMPARE(pasted->getIndex(), 2);
    QVERIFY(pasted->isImportant());
    QCOMPARE(descriptionOf(pasted), text("About A"));
    QCOMPARE(board.clipboard.remembered(), Nodes());
    QCOMPARE(log.lines().first(2), (QStringList{text("Pasting"), text("Pasting node  0")}));
}

void tst_Clipboard::aPasteJoinsAsTheSourcesWere()
{
    Board board;
    const Nodes chain = board.placeChain({text("out"), text("A"), text("B"), text("C")});
    board.copy({chain[3], chain[1], chain[2]});
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.joined(), (QStringList{text("A > B"), text("B > C")}));
}

// Each duplicate attaches itself to the current event, and the next one to it.
void tst_Clipboard::whatAttachingHasJoinedGoes()
{
    Board board;
    const Nodes chain = board.placeChain({text("A"), text("B")});
    Node *other = board.place(text("other"));
    board.copy({chain[1], chain[0]});
    board.makeCurrent(other);
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.joined(), QStringList{text("A > B")});
}

void tst_Clipboard::theMarkGoesAlong()
{
    Board board;
    const Nodes chain = board.placeChain({text("A"), text("B"), text("C")});
    board.scene.setEndOfStory(chain[1]);
    board.copy(chain);
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.scene.endOfStoryNode(), board.titled(text("B")));
}

void tst_Clipboard::theMarkGoesToTheLastOneBehindIt()
{
    Board board;
    const Nodes nodes{board.place(text("A")), board.place(text("B")), board.place(text("end"))};
    board.scene.setEndOfStory(nodes[2]);
    board.copy({nodes[0], nodes[1]});
    board.makeCurrent(nodes[2]); // they attach themselves behind it
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.joined(), QStringList{text("end > A")});
    QCOMPARE(board.scene.endOfStoryNode(), board.titled(text("A")));
}

void tst_Clipboard::aPasteOfNothingLeavesAllAsItIs()
{
    Board board;
    Node *a = board.place(text("A"));
    const LogCapture log;
    board.clipboard.paste(elsewhere);
    QCOMPARE(log.lines(), QStringList());
    board.makeCurrent(a);
    board.clipboard.paste(elsewhere);
    QCOMPARE(log.lines(), QStringList{text("Pasting")});
    QCOMPARE(board.scene.nodes(), Nodes{a});
    QCOMPARE(board.stack.count(), 0);
}

void tst_Clipboard::whatTheSelectionSparesIsShownAgain()
{
    Board board;
    const Nodes nodes{board.place(text("A")), board.place(text("B"))};
    board.select({nodes[1]});
    board.makeCurrent(nodes[0]);
    board.clipboard.cut();
    board.scene.sl_deselectCurrentNode();
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.titles(), (QStringList{text("A"), text("A")})); // the selection went instead
    QCOMPARE(board.hidden(), QStringList());
}

void tst_Clipboard::eachSourceIsDeletedOnce()
{
    Board board;
    const Nodes nodes{board.place(text("A")), board.place(text("B"))};
    board.scene.deselectAll();
    board.scene.sl_deselectCurrentNode();
    board.select(nodes);
    board.clipboard.copy(); // and the selection stays
    const LogCapture log;
    board.clipboard.paste(elsewhere);
    QCOMPARE(log.count(text("Del")), 2);
    QCOMPARE(board.titles(), (QStringList{text("A"), text("B")}));
}

void tst_Clipboard::whenNobodyRunsCommandsNothingIsPasted()
{
    Board board;
    Node *a = board.place(text("A"));
    board.scene.disconnect(SIGNAL(s_UndoCommandAdded(QUndoCommand*)));
    board.makeCurrent(a);
    board.clipboard.cut();
    board.clipboard.paste(elsewhere);
    QCOMPARE(board.scene.nodes(), Nodes{a});
    QVERIFY(a->isVisible());
    QCOMPARE(board.clipboard.remembered(), Nodes());
}

void tst_Clipboard::whatDiesIsForgotten()
{
    Board board;
    const Nodes nodes{board.place(text("A")), board.place(text("B"))};
    board.copy(nodes);
    board.clipboard.forget(nodes[0]);
    QCOMPARE(board.clipboard.remembered(), Nodes{nodes[1]});
    board.clipboard.forget(nodes[0]);
    QCOMPARE(board.clipboard.remembered(), Nodes{nodes[1]});
}

QTEST_MAIN(tst_Clipboard)
#include "tst_clipboard.moc"
