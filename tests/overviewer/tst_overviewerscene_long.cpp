#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"

#include <QGraphicsSceneMouseEvent>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QUndoStack>

#include <array>
#include <random>

using namespace Qt::StringLiterals;

// A story that is longer than the screen. The entries beyond its first part are made when they are needed,
// and nobody is to notice.

namespace {

constexpr std::size_t length = 60;

/// Texts of different heights.
QString textOfEvent(int index) { return u"Event %1. "_s.arg(index).repeated(1 + index % 9 * 4); }

struct LongStory
{
    LongStory()
    {
        pushCommandsOn(graph, stack);
        nodes = addChain(graph, int(length));
        for (const Node *node : nodes)
            node->payload()->eventContent()->setDescription(textOfEvent(node->getIndex()));
        QObject::connect(&panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)), &graph,
                                        SLOT(sl_ovNodeChanged(QGraphicsItem*,int)));
        QObject::connect(&graph, SIGNAL(s_updateNode(Node*)), &panel, SLOT(sl_updatedNode(Node*)));
        panel.sl_recieveNodes(nodes);
    }

    OvNode *entry(std::size_t place) const { return panel.ovNodes().at(place); }
    EventData *content(std::size_t place) const
    {
        return dynamic_cast<EventData *>(entry(place)->eventData());
    }
    EventData *nodeContent(std::size_t place) const { return nodes.at(place)->payload()->eventContent(); }
    bool isMade(std::size_t place) const { return !entry(place)->childItems().isEmpty(); }

    NodegraphScene graph;
    QUndoStack stack;
    OverViewerScene panel;
    std::vector<Node *> nodes;
};

/// Anything that is told to the panel or asked of it.
void edit(LongStory &story, std::mt19937 &random)
{
    const std::vector<Node *> &all = story.graph.nodes();
    Node *any = all.at(random() % all.size());
    switch (random() % 9) {
    case 0:
        any->payload()->eventContent()->descriptionItem()->setPlainText(textOfEvent(int(random() % 60)));
        break;
    case 1:
        any->payload()->eventContent()->setDescription(u"not told"_s);
        break;
    case 2:
        story.graph.toggleImportance(any);
        break;
    case 3:
        story.panel.sl_setFilter_important(random() % 3 == 0);
        break;
    case 4:
        story.graph.setEndOfStory(any);
        break;
    case 5:
        any->setIndex(1000 + int(random() % 1000));
        break;
    case 6:
        if (OvNode *entry = story.panel.findOvNode(int(random() % 60)))
            dynamic_cast<EventData *>(entry->eventData())->descriptionItem()->setPlainText(u"typed here"_s);
        break;
    case 7:
        story.graph.sl_selectCurrentNode(any);
        story.graph.sl_addEventNode();
        break;
    default:
        if (random() % 2 == 0)
            story.stack.undo();
        else
            story.graph.deleteSelectedNodes(any);
    }
}

QStringList shown(const LongStory &story)
{
    QStringList all;
    for (OvNode *entry : story.panel.ovNodes()) {
        const QRectF place = entry->sceneBoundingRect();
        const auto *content = dynamic_cast<EventData *>(entry->eventData());
        all << u"%1 at %2 of %3: %4"_s.arg(entry->getIndex())
                   .arg(place.top())
                   .arg(place.height())
                   .arg(content->descriptionItem()->toPlainText());
    }
    return all;
}

} // namespace

class tst_OverviewerSceneLong : public TestCase
{
    Q_OBJECT

private slots:
    void firstScreenfulIsMadeAtOnce();
    void placesAndSizesAreThoseOfMadeEntries();
    void textsAreThoseOfTheRebuild();
    void whatIsPaintedIsMade();
    void pressBeforeThePaintFindsTheText();
    void editOfALateEntryReachesItsNode();
    void editOfANodeReachesALateEntry();
    void storiesInARowLeaveNothingBehind();
    void entriesOutOfSightAreMadeForWhoeverAsks();
    void entriesThatWereAskedForAreThoseThatWereNot_data();
    void entriesThatWereAskedForAreThoseThatWereNot();
};

void tst_OverviewerSceneLong::firstScreenfulIsMadeAtOnce()
{
    const LongStory story;
    for (std::size_t place = 0; place < 10; ++place)
        QVERIFY2(story.isMade(place), qPrintable(QString::number(place)));
    QVERIFY(!story.isMade(length - 1));
}

void tst_OverviewerSceneLong::placesAndSizesAreThoseOfMadeEntries()
{
    const LongStory story;
    int y = 0;
    for (std::size_t place = 0; place < length; ++place) {
        const QRectF outline = story.entry(place)->boundingRect();
        QCOMPARE(outline, story.nodeContent(place)->boundingRect());
        QCOMPARE(story.entry(place)->pos(), QPointF(0, y));
        y = static_cast<int>(5 + outline.height() + y);
    }
    for (std::size_t place = 0; place < length; ++place) {
        const QRectF before = story.entry(place)->boundingRect();
        story.content(place)->descriptionItem();
        QCOMPARE(story.entry(place)->boundingRect(), before);
    }
    QCOMPARE(story.panel.sceneRect().height(), story.entry(length - 1)->sceneBoundingRect().bottom() + 10);
}

// An entry shows the text of the moment at which it was listed, also if it is made later.
void tst_OverviewerSceneLong::textsAreThoseOfTheRebuild()
{
    const LongStory story;
    const QString listed = textOfEvent(50);
    story.nodeContent(50)->setDescription(u"Set without a report"_s);
    QVERIFY(!story.isMade(50));
    QCOMPARE(story.content(50)->getDescription(), listed);
    QCOMPARE(story.content(50)->descriptionItem()->toPlainText(), listed);
}

void tst_OverviewerSceneLong::whatIsPaintedIsMade()
{
    LongStory story;
    const QRectF shown = story.entry(45)->sceneBoundingRect();
    QImage image(440, 600, QImage::Format_RGB32);
    QPainter painter(&image);
    story.panel.render(&painter, QRectF(), QRectF(0, shown.top(), 440, shown.height()));
    painter.end();
    QVERIFY(story.isMade(45));
    QVERIFY(!story.isMade(40));
    QVERIFY(!story.isMade(50));
    // The text's own dark colour is on its light panel.
    bool dark = false;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y)
            dark = dark || qGray(image.pixel(x, y)) < 120;
    }
    QVERIFY(dark);
}

void tst_OverviewerSceneLong::pressBeforeThePaintFindsTheText()
{
    LongStory story;
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&story.panel, &activate);
    SceneMouse{story.panel}.press(story.entry(45)->sceneBoundingRect().center());
    QVERIFY(story.panel.focusItem());
    QCOMPARE(story.panel.focusItem(), story.content(45)->descriptionItem());
}

void tst_OverviewerSceneLong::editOfALateEntryReachesItsNode()
{
    LongStory story;
    const QSignalSpy reported(&story.panel, &OverViewerScene::s_nodeChanged);
    story.content(55)->descriptionItem()->setPlainText(u"Typed in the panel"_s);
    QCOMPARE(reported.count(), 1);
    QCOMPARE(reported.at(0).at(1).toInt(), story.nodes.at(55)->getIndex());
    QCOMPARE(story.nodeContent(55)->getDescription(), u"Typed in the panel"_s);
}

void tst_OverviewerSceneLong::editOfANodeReachesALateEntry()
{
    LongStory story;
    const double below = story.entry(56)->y();
    story.nodeContent(55)->descriptionItem()->setPlainText(u"line\n"_s.repeated(30));
    QVERIFY(!story.isMade(55));
    QCOMPARE(story.entry(55)->boundingRect(), story.nodeContent(55)->boundingRect());
    QVERIFY(story.entry(56)->y() > below);
    QCOMPARE(story.entry(56)->y(),
             double(int(5 + story.entry(55)->boundingRect().height() + story.entry(55)->y())));
    QCOMPARE(story.content(55)->getDescription(), u"line\n"_s.repeated(30));
}

void tst_OverviewerSceneLong::storiesInARowLeaveNothingBehind()
{
    LongStory story;
    const auto items = story.panel.items().size();
    for (int i = 0; i < 5; ++i) {
        story.panel.sl_recieveNodes({});
        QCOMPARE(story.panel.items().size(), 0);
        story.panel.sl_recieveNodes(story.nodes);
        QCOMPARE(story.panel.items().size(), items);
    }
}

void tst_OverviewerSceneLong::entriesOutOfSightAreMadeForWhoeverAsks()
{
    LongStory story;
    const auto entryCount = [&story] {
        const QList<QGraphicsItem *> items = story.panel.items();
        return std::count_if(items.begin(), items.end(),
                             [](QGraphicsItem *item) { return dynamic_cast<OvNode *>(item); });
    };
    QCOMPARE(entryCount(), 10);
    const QRectF area = story.panel.sceneRect();
    QVERIFY(story.panel.findOvNode(50));
    QCOMPARE(entryCount(), 11);
    QCOMPARE(story.panel.ovNodes().size(), length);
    QCOMPARE(entryCount(), int(length));
    QCOMPARE(story.panel.sceneRect(), area);
}

void tst_OverviewerSceneLong::entriesThatWereAskedForAreThoseThatWereNot_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// The same edits in two windows, in one of which every entry is made after each of them.
void tst_OverviewerSceneLong::entriesThatWereAskedForAreThoseThatWereNot()
{
    QFETCH(const unsigned, seed);
    std::array<LongStory, 2> both;
    std::array<QStringList, 2> logs;
    std::array<QStringList, 2> areas;
    for (const std::size_t made : {0, 1}) {
        LongStory &story = both.at(made);
        QObject::connect(&story.graph, SIGNAL(s_updateStory(std::vector<Node*>)), &story.panel,
                                              SLOT(sl_recieveNodes(std::vector<Node*>)));
        QObject::connect(&story.graph, SIGNAL(s_importanceChanged(Node*,bool)), &story.panel,
                                              SLOT(sl_importanceChanged(Node*,bool)));
        QObject::connect(&story.graph, SIGNAL(s_nodeIndexChanged(Node*,int)), &story.panel,
                                              SLOT(sl_nodeIndexChanged(Node*,int)));
        std::mt19937 random(seed);
        const LogCapture log;
        for (int step = 0; step < 40; ++step) {
            edit(story, random);
            if (made == 1) {
                for (OvNode *entry : story.panel.ovNodes())
                    entry->make();
            }
            const QRectF area = story.panel.sceneRect();
            areas.at(made) << u"%1 %2"_s.arg(area.width()).arg(area.height());
        }
        logs.at(made) = log.lines();
    }
    QCOMPARE(logs[0], logs[1]);
    QCOMPARE(areas[0], areas[1]);
    QCOMPARE(shown(both[0]), shown(both[1]));
}

QTEST_MAIN(tst_OverviewerSceneLong)
#include "tst_overviewerscene_long.moc"
