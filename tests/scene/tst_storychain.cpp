#include "scene/storychain.h"

#include "items/node.h"
#include "support/testsupport.h"

#include <array>

namespace {

using Nodes = std::vector<Node *>;

/// Events that are on no canvas: what the chain follows from is what they say of themselves.
struct Events
{
    std::array<Node, 4> nodes{Node(0), Node(0), Node(0), Node(0)};
    StoryChain story;

    Node *operator[](std::size_t i) { return &nodes[i]; }

    void feed(std::size_t downstream, std::size_t upstream)
    {
        nodes[downstream].setPrevNode(&nodes[upstream]);
        nodes[downstream].setHasInput(true);
        story.change();
    }
};

} // namespace

class tst_StoryChain : public TestCase
{
    Q_OBJECT

private slots:
    void withoutAnEndThereIsNoStory();
    void leadsFromTheFirstEventToTheEnd();
    void onlyOneEventCarriesTheMark();
    void isWalkedAgainAfterAChangeOnly();
    void aDyingEndEndsNothing();
    void anotherThatDiesLeavesTheEnd();
    void whatFeedsWithoutBeingAnInputIsNotFollowed();
};

void tst_StoryChain::withoutAnEndThereIsNoStory()
{
    Events events;
    events.feed(1, 0);
    QCOMPARE(events.story.end(), nullptr);
    QCOMPARE(events.story.nodes(), Nodes());
}

void tst_StoryChain::leadsFromTheFirstEventToTheEnd()
{
    Events events;
    events.feed(2, 0);
    events.feed(1, 2);
    events.feed(3, 1); // behind the end
    events.story.setEnd(events[1]);
    QCOMPARE(events.story.nodes(), (Nodes{events[0], events[2], events[1]}));
    events.story.setEnd(events[3]);
    QCOMPARE(events.story.nodes(), (Nodes{events[0], events[2], events[1], events[3]}));
}

void tst_StoryChain::onlyOneEventCarriesTheMark()
{
    Events events;
    events.story.setEnd(events[0]);
    QCOMPARE(events.story.end(), events[0]);
    QVERIFY(events[0]->isEndOfStory());
    events.story.setEnd(events[2]);
    QCOMPARE(events.story.end(), events[2]);
    QVERIFY(!events[0]->isEndOfStory());
    QVERIFY(events[2]->isEndOfStory());
    events.story.setEnd(events[2]);
    QVERIFY(events[2]->isEndOfStory());
}

void tst_StoryChain::isWalkedAgainAfterAChangeOnly()
{
    Events events;
    events.feed(1, 0);
    events.story.setEnd(events[1]);
    QCOMPARE(events.story.nodes(), (Nodes{events[0], events[1]}));
    events[1]->setHasInput(false);
    QCOMPARE(events.story.nodes(), (Nodes{events[0], events[1]}));
    events.story.change();
    QCOMPARE(events.story.nodes(), Nodes{events[1]});
}

void tst_StoryChain::aDyingEndEndsNothing()
{
    Events events;
    events.feed(1, 0);
    events.story.setEnd(events[1]);
    QCOMPARE(int(events.story.nodes().size()), 2);
    events.story.forget(events[1]);
    QCOMPARE(events.story.end(), nullptr);
    QCOMPARE(events.story.nodes(), Nodes());
}

void tst_StoryChain::anotherThatDiesLeavesTheEnd()
{
    Events events;
    events.feed(1, 0);
    events.story.setEnd(events[1]);
    QCOMPARE(int(events.story.nodes().size()), 2);
    events[1]->setHasInput(false);
    events.story.forget(events[0]);
    QCOMPARE(events.story.end(), events[1]);
    QCOMPARE(events.story.nodes(), Nodes{events[1]});
}

void tst_StoryChain::whatFeedsWithoutBeingAnInputIsNotFollowed()
{
    Events events;
    events.feed(1, 0);
    events[1]->setHasInput(false);
    events.story.setEnd(events[1]);
    QCOMPARE(events.story.nodes(), Nodes{events[1]});
}

QTEST_MAIN(tst_StoryChain)
#include "tst_storychain.moc"
