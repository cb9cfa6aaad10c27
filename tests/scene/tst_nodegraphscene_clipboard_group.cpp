#include "scene/clipboardsteps.h"

namespace {

QStringList titlesOf(const std::vector<Node *> &nodes)
{
    QStringList titles;
    for (const Node *node : nodes)
        titles << node->title();
    return titles;
}

} // namespace

class tst_NodegraphScene_Clipboard_Group : public TestCase
{
    Q_OBJECT

private slots:
    void groupKeepsItsShape();
    void connectionsWithinGroupAreRecreated();

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

void tst_NodegraphScene_Clipboard_Group::groupKeepsItsShape()
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

void tst_NodegraphScene_Clipboard_Group::connectionsWithinGroupAreRecreated()
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

void tst_NodegraphScene_Clipboard_Group::pastedNodeAttachesToCurrentNode()
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
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 2}));
}

void tst_NodegraphScene_Clipboard_Group::pastedGroupComesOutAsItWas_data()
{
    QTest::addColumn<QStringList>("sources");     // "A > B"
    QTest::addColumn<QStringList>("order");       // of the selection
    QTest::addColumn<QStringList>("connections"); // "E" is current, the end of the story and no source
    QTest::addColumn<QStringList>("story");       // with what is behind the end, or else as it was
    const QStringList chain{text("A > B"), text("B > C")};
    const QStringList fork{text("A > B"), text("A > C")};
    const QStringList forward{text("A"), text("B"), text("C")};
    const QStringList asItWas{text("E")};
    QTest::newRow("chain") << chain << forward << QStringList{text("A > B"), text("B > C"), text("E > A")}
                           << QStringList{text("E"), text("A"), text("B"), text("C")};
    QTest::newRow("chain from its end")
        << chain << QStringList{text("C"), text("B"), text("A")} << chain << asItWas;
    QTest::newRow("chain from its middle")
        << chain << QStringList{text("B"), text("A"), text("C")} << chain << asItWas;
    QTest::newRow("fork") << fork << forward << QStringList{text("A > B"), text("A > C"), text("E > A")}
                          << QStringList{text("E"), text("A"), text("C")};
    QTest::newRow("fork from its tip")
        << fork << QStringList{text("B"), text("C"), text("A")} << fork << asItWas;
    QTest::newRow("loose") << QStringList() << forward << QStringList{text("E > A")}
                           << QStringList{text("E"), text("A")};
    QTest::newRow("loose behind pair")
        << QStringList{text("C > B")} << forward << QStringList{text("C > B"), text("E > A")}
        << QStringList{text("E"), text("A")};
}

void tst_NodegraphScene_Clipboard_Group::pastedGroupComesOutAsItWas()
{
    QFETCH(QStringList, sources);
    QFETCH(QStringList, order);
    QFETCH(QStringList, connections);
    ClipboardTab tab;
    Node *current = tab.place(text("E"));
    for (const char *title : {"A", "B", "C"})
        tab.place(text(title));
    QCOMPARE(tab.scene.endOfStoryNode(), current);
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
    QTEST(titlesOf(tab.scene.story()), "story");
    tab.stack.setIndex(0);
    QCOMPARE(titlesOf(tab.scene.story()), QStringList{text("E")});
    tab.stack.setIndex(tab.stack.count());
    QTEST(titlesOf(tab.scene.story()), "story");
}

void tst_NodegraphScene_Clipboard_Group::importanceComesAlong()
{
    ClipboardTab tab;
    Node *a = tab.place(text("A"));
    tab.place(text("B"));
    tab.scene.toggleImportance(a);
    tab.scene.selectAll();
    tab.scene.copyNodes();
    QSignalSpy told(&tab.scene, &NodegraphScene::s_importanceChanged);
    tab.pasteAt(elsewhere);
    QVERIFY(tab.titled(text("A"))->isImportant());
    QVERIFY(!tab.titled(text("B"))->isImportant());
    QCOMPARE(told.count(), 1);
    QCOMPARE(told.first().first().value<Node *>(), tab.titled(text("A")));
    QCOMPARE(told.first().at(1).toBool(), true);
}

void tst_NodegraphScene_Clipboard_Group::endOfStoryComesAlong_data()
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

void tst_NodegraphScene_Clipboard_Group::endOfStoryComesAlong()
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
    for (const Node *node : tab.scene.nodes()) {
        if (node->isEndOfStory())
            carriers << node->title();
    }
    QCOMPARE(carriers.join(text(" ")), marked);
    QCOMPARE(tab.scene.endOfStoryNode(), marked.isEmpty() ? nullptr : tab.titled(marked));
    QCOMPARE(indicesOf(tab.scene.story()), story);
}

void tst_NodegraphScene_Clipboard_Group::publishedStoryHoldsPastedNodes()
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

void tst_NodegraphScene_Clipboard_Group::selectionIsDeletedInsteadOfSource()
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

void tst_NodegraphScene_Clipboard_Group::onlyFirstSourceIsSparedForSelection()
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

void tst_NodegraphScene_Clipboard_Group::survivingCutSourceShowsAgain()
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

QTEST_MAIN(tst_NodegraphScene_Clipboard_Group)
#include "tst_nodegraphscene_clipboard_group.moc"
