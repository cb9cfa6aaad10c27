#include "scene/clipboardtab.h"
#include "scene/scenebytes.h"
#include "scene/storypublishing.h"

#include <QSignalSpy>

#include <functional>

using namespace Qt::StringLiterals;

// What the user does at one go is told once, whatever is told in between by whoever does its parts.

namespace {

/// Three events that feed each other, of which the middle one is important, two loose ones, and a spy.
struct Tab : ClipboardTab
{
    Tab()
    {
        chain = placeChain({u"A"_s, u"B"_s, u"C"_s});
        place(u"X"_s);
        place(u"Y"_s);
        chain[1]->setImportant(true);
        scene.setEndOfStory(chain.back());
        scene.sl_deselectCurrentNode();
        scene.selectAll();
    }

    std::vector<Node *> chain;
};

using Edit = std::function<void(Tab &)>;

void nothing(Tab &) {}
void addBehindTheEnd(Tab &tab)
{
    tab.scene.deselectAll();
    tab.addBehind(tab.scene.endOfStoryNode());
}
void copyAndPaste(Tab &tab)
{
    tab.scene.copyNodes();
    tab.pasteAt(QPointF(40000, 40000));
}
void deleteMiddle(Tab &tab)
{
    tab.scene.deselectAll();
    tab.scene.deleteSelectedNodes(tab.chain[1]);
}
void deleteAll(Tab &tab) { tab.scene.deleteSelectedNodes(nullptr); }
void undo(Tab &tab) { tab.stack.undo(); }
void redo(Tab &tab) { tab.stack.redo(); }
void clear(Tab &tab) { tab.scene.clear(); }
void openAnother(Tab &tab)
{
    SceneBytes::Records records(3);
    for (int i = 0; i < 3; ++i) {
        records[i].index = i + 100;
        records[i].prevIndex = i == 0 ? -1 : i + 99;
        records[i].endOfStory = i == 2 ? 1 : 0;
    }
    SceneBytes::load(tab.scene, SceneBytes::block(records));
}

} // namespace

class tst_StoryPublishing : public TestCase
{
    Q_OBJECT

private slots:
    void stepTellsAtItsEnd();
    void stepWithoutChangesTellsNothing();
    void editOfManyEventsTellsOnce_data();
    void editOfManyEventsTellsOnce();
};

void tst_StoryPublishing::stepTellsAtItsEnd()
{
    int told = 0;
    StoryPublishing publishing([&told] { ++told; });
    publishing.storyChanged();
    QCOMPARE(told, 1);
    {
        const StoryPublishing::Step outer(publishing);
        publishing.storyChanged();
        QVERIFY(publishing.isStoryToCome());
        {
            const StoryPublishing::Step inner(publishing);
            publishing.storyChanged();
        }
        QCOMPARE(told, 1);
    }
    QCOMPARE(told, 2);
    QVERIFY(!publishing.isStoryToCome());
    publishing.storyChanged();
    QCOMPARE(told, 3);
}

void tst_StoryPublishing::stepWithoutChangesTellsNothing()
{
    int told = 0;
    StoryPublishing publishing([&told] { ++told; });
    {
        const StoryPublishing::Step step(publishing);
        QVERIFY(!publishing.isStoryToCome());
    }
    QCOMPARE(told, 0);
}

void tst_StoryPublishing::editOfManyEventsTellsOnce_data()
{
    QTest::addColumn<Edit>("before");
    QTest::addColumn<Edit>("edit");
    QTest::newRow("paste") << Edit(nothing) << Edit(copyAndPaste);
    QTest::newRow("undo of a pasted event's deletion") << Edit(copyAndPaste) << Edit(undo);
    QTest::newRow("add") << Edit(nothing) << Edit(addBehindTheEnd);
    QTest::newRow("undo of add") << Edit(addBehindTheEnd) << Edit(undo);
    QTest::newRow("redo of add") << Edit([](Tab &tab) {
        addBehindTheEnd(tab);
        tab.stack.undo();
    }) << Edit(redo);
    QTest::newRow("delete in the middle") << Edit(nothing) << Edit(deleteMiddle);
    QTest::newRow("undo of it") << Edit(deleteMiddle) << Edit(undo);
    QTest::newRow("redo of it") << Edit([](Tab &tab) {
        deleteMiddle(tab);
        tab.stack.undo();
    }) << Edit(redo);
    QTest::newRow("delete of all") << Edit(nothing) << Edit(deleteAll);
    QTest::newRow("clear") << Edit(nothing) << Edit(clear);
    QTest::newRow("reading") << Edit(clear) << Edit(openAnother);
}

void tst_StoryPublishing::editOfManyEventsTellsOnce()
{
    QFETCH(const Edit, before);
    QFETCH(const Edit, edit);
    Tab tab;
    before(tab);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    edit(tab);
    QCOMPARE(stories.count(), 1);
    QCOMPARE(stories.first().first().value<std::vector<Node *>>(), tab.scene.story());
    for (const Node *node : tab.scene.story())
        QVERIFY(tab.scene.isMember(node));
}

QTEST_MAIN(tst_StoryPublishing)
#include "tst_storypublishing.moc"
