#include "commands/graphtab.h"
#include "overviewer/overviewerscene.h"
#include "scene/scenebytes.h"
#include "view/nodegraphview.h"

#include <QFocusEvent>
#include <QGraphicsSceneHelpEvent>
#include <QImage>
#include <QPainter>

#include <memory>
#include <random>

using namespace Qt::StringLiterals;
using SceneBytes::Record;
using SceneBytes::Records;

// Events of a file that nobody has seen yet have no inner items: nobody but the clock can tell.

namespace {

constexpr int many = 260;             // more than a small story, and enough for pictures of events
constexpr int changedByDocuments = 5; // of the texts

QString randomText(std::mt19937 &random)
{
    static const QStringList pieces = {u"a"_s, u"event"_s,  u" "_s,  u" "_s,           u"\n"_s,
                                       u"."_s, u"Wörter"_s, u"长"_s, u"WWWWWWWWWWWW"_s};
    QString text = u""_s;
    for (auto left = random() % 60; left > 0; --left)
        text += pieces.at(qsizetype(random() % unsigned(pieces.size())));
    return text;
}

QByteArray file(unsigned seed)
{
    std::mt19937 random(seed);
    Records records;
    for (int i = 0; i < many; ++i) {
        Record record;
        record.title = i % 7 == 0 ? randomText(random) : u"Event %1"_s.arg(i);
        record.pos = QPointF(600 * (i % 20), 400 * (i / 20)); // NOLINT(bugprone-integer-division)
        record.index = i;
        record.prevIndex = i % 9 == 8 ? i - 5 : i - 1;
        record.endOfStory = i == many - 1 ? 1 : 0;
        record.important = i % 11 == 0 ? 1 : 0;
        record.description = i % 5 == 0 ? u"Enter description"_s : randomText(random);
        if (i % 50 == 49)
            record.description += u"\u00a0\r\n"_s; // which a document would change
        records << record;
    }
    return SceneBytes::block(records);
}

/// A tab with that file.
struct Tab
{
    explicit Tab(const QByteArray &bytes)
    {
        view->setFrameShape(QFrame::NoFrame);
        view->resize(500, 300);
        SceneBytes::load(scene, bytes);
    }
    ~Tab()
    {
        view.reset();
        delete &scene;
    }
    Tab(const Tab &) = delete;
    Tab &operator=(const Tab &) = delete;

    void makeAll() const
    {
        for (const Node *node : scene.nodes()) {
            node->nameItem();
            node->payload()->eventContent()->descriptionItem();
        }
    }
    int lateCount() const
    {
        const std::vector<Node *> &nodes = scene.nodes();
        return int(
            std::count_if(nodes.begin(), nodes.end(), [](const Node *node) { return node->isLate(); }));
    }
    QImage frame(double scale, QPointF centre) const
    {
        view->show();
        QCoreApplication::processEvents(); // it frames what was read before it had its size
        view->setTransform(QTransform::fromScale(scale, scale));
        view->centerOn(centre);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
        return view->viewport()->grab().toImage();
    }
    /// All that can be told without reaching for an inner item.
    QStringList state() const
    {
        QStringList lines{QString::fromLatin1(SceneBytes::saved(scene).toHex())};
        for (const Node *node : scene.nodes()) {
            QString line;
            QDebug out(&line);
            out << node->getIndex() << node->title() << node->description() << node->sceneBoundingRect()
                << node->descriptionOutline() << node->isSelected() << node->isVisible() << node->isEnabled()
                << node->bodyColor() << node->socketCentre(0) << node->socketCentre(1) << node->hasInput();
            if (const ConnectionLine *joined = node->inLine())
                out << joined->path() << joined->isVisible();
            lines << line;
        }
        QString rest;
        QDebug(&rest) << indicesOf(scene.story()) << indicesOf(scene.selectedNodes())
                      << (scene.currentNode() ? scene.currentNode()->getIndex() : -1)
                      << view->undoStack()->count() << !scene.focusItem();
        return lines << rest;
    }

    std::unique_ptr<NodegraphView> view = std::make_unique<NodegraphView>(nullptr);
    NodegraphScene &scene{*view->nodegraphScene()};
    SceneMouse mouse{scene};
};

using Work = std::function<void(Tab &)>;

/// All that can be told of a node's inner items.
QStringList itemsOf(const Node *node)
{
    const auto kindOf = [](const QGraphicsItem *item) {
        const auto *object = dynamic_cast<const QObject *>(item);
        return object ? QString::fromLatin1(object->metaObject()->className()) : u"item"_s;
    };
    QStringList lines;
    const auto tell = [&](const QGraphicsItem *item) {
        QString line;
        QDebug(&line) << kindOf(item) << item->pos() << item->zValue() << item->boundingRect()
                      << item->shape().boundingRect() << item->isVisible() << item->isEnabled()
                      << item->toolTip() << item->flags() << item->acceptHoverEvents() << item->acceptDrops();
        lines << line;
    };
    for (const QGraphicsItem *part : node->childItems()) {
        tell(part);
        for (const QGraphicsItem *inner : part->childItems())
            tell(inner);
    }
    for (const Socket *socket : {node->inSocket(), node->outSocket()}) {
        const Socket *other = socket->connectedSocket();
        const auto *partner = other ? dynamic_cast<const Node *>(other->parentItem()) : nullptr;
        QString line;
        QDebug(&line) << socket->getIsConnected() << socket->fillColor() << socket->sceneCentre()
                      << (partner ? partner->getIndex() : -1) << (other ? other->getType() : -1);
        lines << line;
    }
    return lines;
}

} // namespace

Q_DECLARE_METATYPE(Work)

class tst_LateEvents : public TestCase
{
    Q_OBJECT

private slots:
    void workThatNeedsNoItemsMakesNone_data();
    void workThatNeedsNoItemsMakesNone();
    void whatIsSeenOrTouchedIsMade_data();
    void whatIsSeenOrTouchedIsMade();
    void itemsAreThoseOfAnEventMadeAtOnce();
    void makingMovesNoLine();
    void otherTypeMakesAnEvent();
    void pictureOfWhatWasReadAgainIsWhole();
    void picturesAreTheSame_data();
    void picturesAreTheSame();
    void changesAreReportedAlike();
    void randomEditsAreAsWithEverythingMade_data();
    void randomEditsAreAsWithEverythingMade();
};

void tst_LateEvents::workThatNeedsNoItemsMakesNone_data()
{
    QTest::addColumn<Work>("work");
    QTest::addColumn<int>("gone");
    const auto row = [](const char *name, const Work &work, int gone = 0) {
        QTest::newRow(name) << work << gone;
    };
    row("saving", [](Tab &tab) { SceneBytes::saved(tab.scene); });
    row("a frame from far away", [](Tab &tab) { tab.frame(0.03, QPointF(6000, 2500)); });
    row("a frame with handles", [](Tab &tab) {
        for (Node *node : tab.scene.nodes())
            node->setPos(5.0 * node->getIndex(), 0);
        tab.frame(0.15, QPointF(600, 100));
    });
    row("a press on a picture", [](Tab &tab) {
        tab.frame(0.03, QPointF(6000, 2500));
        tab.mouse.press(tab.scene.nodes().at(200)->sceneBoundingRect().center());
        tab.mouse.release(tab.scene.nodes().at(200)->sceneBoundingRect().center());
        QVERIFY(tab.scene.nodes().at(200)->isSelected());
    });
    row("selecting all", [](Tab &tab) { tab.scene.selectAll(); });
    row("a rubber band", [](Tab &tab) {
        tab.frame(0.03, QPointF(6000, 2500));
        tab.mouse.drag(QPointF(-100, -100), QPointF(12000, 6000));
        QCOMPARE(int(tab.scene.selectedNodes().size()), many);
    });
    row("importance", [](Tab &tab) { tab.scene.toggleImportance(tab.scene.nodes().at(200)); });
    row("end of story", [](Tab &tab) { tab.scene.setEndOfStory(tab.scene.nodes().at(200)); });
    row("moving", [](Tab &tab) {
        tab.scene.nodes().at(200)->moveBy(5, 5);
        tab.scene.nodes().at(200)->updateLines();
    });
    row("joining", [](Tab &tab) {
        tab.scene.disconnectNode(tab.scene.nodes().at(200));
        tab.scene.connectNodes(tab.scene.nodes().at(200), tab.scene.nodes().at(150));
    });
    row(
        "deleting", [](Tab &tab) { tab.scene.deleteSelectedNodes(tab.scene.nodes().at(200)); }, 1);
    row(
        "deleting and its undo",
        [](Tab &tab) {
            tab.scene.deleteSelectedNodes(tab.scene.nodes().at(200));
            tab.view->undoStack()->undo();
        },
        1);
    row("listing", [](Tab &tab) {
        OverViewerScene panel;
        panel.showStory(tab.scene.story());
        panel.ovNodes();
        panel.showStory({});
    });
    row("a new description", [](Tab &tab) { tab.scene.nodes().at(200)->setDescription(u"New"_s); });
    row("cutting", [](Tab &tab) {
        tab.scene.sl_selectCurrentNode(tab.scene.nodes().at(200));
        tab.scene.cutNodes();
    });
    row(
        "cutting and pasting",
        [](Tab &tab) {
            tab.scene.sl_selectCurrentNode(tab.scene.nodes().at(200));
            tab.scene.cutNodes();
            tab.scene.pasteNodes();
        },
        1);
    row("a window that comes to the front", [](Tab &tab) {
        for (const QEvent::Type type : {QEvent::WindowActivate, QEvent::WindowDeactivate}) {
            QEvent event(type);
            QCoreApplication::sendEvent(&tab.scene, &event);
        }
    });
    row(
        "clearing", [](Tab &tab) { tab.scene.clear(); }, many - changedByDocuments);
}

void tst_LateEvents::workThatNeedsNoItemsMakesNone()
{
    QFETCH(const Work, work);
    QFETCH(const int, gone);
    Tab tab(file(1));
    const int before = many - changedByDocuments;
    QCOMPARE(tab.lateCount(), before);
    work(tab);
    QCOMPARE(tab.lateCount(), before - gone);
}

void tst_LateEvents::whatIsSeenOrTouchedIsMade_data()
{
    QTest::addColumn<Work>("work");
    const auto row = [](const char *name, const Work &work) { QTest::newRow(name) << work; };
    row("seen", [](Tab &tab) { tab.frame(1.0, tab.scene.nodes().at(200)->sceneBoundingRect().center()); });
    row("painted for something else", [](Tab &tab) {
        QImage image(100, 100, QImage::Format_RGB32);
        QPainter painter(&image);
        tab.scene.render(&painter, QRectF(), tab.scene.nodes().at(200)->sceneBoundingRect());
    });
    row("pressed", [](Tab &tab) { tab.mouse.press(tab.scene.nodes().at(200)->pos() + QPointF(60, 80)); });
    row("pointed at", [](Tab &tab) {
        QGraphicsSceneHelpEvent help(QEvent::GraphicsSceneHelp);
        help.setScenePos(tab.scene.nodes().at(200)->pos() + QPointF(60, 80));
        QCoreApplication::sendEvent(&tab.scene, &help);
    });
    row("asked for its payload", [](Tab &tab) { tab.scene.nodes().at(200)->payload(); });
    row("asked for its title", [](Tab &tab) { tab.scene.nodes().at(200)->nameItem(); });
    row("asked by a line", [](Tab &tab) { tab.scene.nodes().at(200)->inLine()->inputSocket(); });
    row("asked by a socket", [](Tab &tab) { tab.scene.nodes().at(201)->inSocket()->connectedSocket(); });
    row("touched by a handle", [](Tab &tab) {
        for (Node *node : tab.scene.nodes())
            node->setPos(5.0 * node->getIndex(), 0);
        tab.frame(0.15, QPointF(600, 100));
        tab.mouse.press(tab.scene.nodes().at(200)->socketCentre(SocketType::output));
    });
    row("text that a document would change",
        [](Tab &tab) { tab.scene.nodes().at(200)->setDescription(u"a\r\nb"_s); });
}

void tst_LateEvents::whatIsSeenOrTouchedIsMade()
{
    QFETCH(const Work, work);
    Tab tab(file(1));
    const Node *node = tab.scene.nodes().at(200);
    QVERIFY(node->isLate());
    QVERIFY(node->childItems().isEmpty());
    work(tab);
    QVERIFY(!node->isLate());
    QCOMPARE(node->childItems().size(), 5);
    QVERIFY(tab.lateCount() > 0);
}

void tst_LateEvents::itemsAreThoseOfAnEventMadeAtOnce()
{
    const QByteArray bytes = file(2);
    Tab late(bytes);
    Tab whole(bytes);
    whole.makeAll();
    for (Tab *tab : {&late, &whole}) {
        tab->scene.disconnectNode(tab->scene.nodes().at(150));
        tab->scene.connectNodes(tab->scene.nodes().at(220), tab->scene.nodes().at(150));
        tab->scene.nodes().at(230)->setNodeName(u"Named\nanew"_s);
        tab->scene.nodes().at(240)->setVisible(false);
        tab->scene.nodes().at(250)->setEnabled(false);
    }
    for (int i = 0; i < many; ++i) {
        const Node *made = late.scene.nodes().at(std::size_t(i));
        made->payload();
        QCOMPARE(itemsOf(made), itemsOf(whole.scene.nodes().at(std::size_t(i))));
        QCOMPARE(descriptionOf(made), descriptionOf(whole.scene.nodes().at(std::size_t(i))));
    }
    for (Tab *tab : {&late, &whole})
        tab->scene.nodes().at(240)->setVisible(true);
    QCOMPARE(itemsOf(late.scene.nodes().at(240)), itemsOf(whole.scene.nodes().at(240)));
}

// A dragged event's lines are a step behind until it is dropped, also where it comes into sight.
void tst_LateEvents::makingMovesNoLine()
{
    const Tab tab(file(5));
    Node *node = tab.scene.nodes().at(200);
    QVERIFY(node->isLate() && node->inLine());
    const QPainterPath before = node->inLine()->path();
    node->moveBy(100, 100);
    node->make();
    QCOMPARE(node->inLine()->path(), before);
    node->updateLines();
    QVERIFY(node->inLine()->path() != before);
}

void tst_LateEvents::otherTypeMakesAnEvent()
{
    const Tab tab(file(5));
    Node *node = tab.scene.nodes().at(200);
    const QString description = node->description();
    const Node other(1);
    node->copyDataFrom(other);
    QCOMPARE(node->getType(), 1);
    QCOMPARE(node->description(), description);
    QVERIFY(node->payload()->eventContent());
}

// The events before were bars when they went.
void tst_LateEvents::pictureOfWhatWasReadAgainIsWhole()
{
    const QByteArray bytes = file(5);
    const auto picture = [](const Tab &tab) {
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        tab.scene.render(&painter, QRectF(), tab.scene.nodes().at(200)->sceneBoundingRect());
        return image;
    };
    const Tab tab(bytes);
    tab.frame(0.03, QPointF(6000, 2500));
    tab.scene.clear();
    flushDeferredDeletes();
    tab.view->viewport()->setUpdatesEnabled(false); // no frame comes between
    SceneBytes::load(tab.scene, bytes);
    const Tab fresh(bytes);
    fresh.makeAll();
    QCOMPARE(picture(tab), picture(fresh));
}

void tst_LateEvents::picturesAreTheSame_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {2.0, 1.0, 0.5, 0.21, 0.15, 0.1, 0.05, 0.03, 0.02})
        QTest::addRow("%g %%", 100 * scale) << scale;
}

void tst_LateEvents::picturesAreTheSame()
{
    QFETCH(const double, scale);
    const QByteArray bytes = file(3);
    Tab late(bytes);
    Tab whole(bytes);
    whole.makeAll();
    for (Tab *tab : {&late, &whole}) {
        for (Node *node : tab->scene.nodes()) {
            if (scale < 0.2 && scale > 0.04) // all in view, in part
                node->setPos(node->pos() / 8);
            node->setSelected(node->getIndex() % 17 == 0);
            node->updateLines();
        }
    }
    const QPointF centre = late.scene.nodes().at(189)->sceneBoundingRect().center();
    QCOMPARE(late.frame(scale, centre), whole.frame(scale, centre));
    QCOMPARE(late.frame(scale, QPointF()), whole.frame(scale, QPointF()));
}

// As the texts do that are made at once: only what differs from what was told last.
void tst_LateEvents::changesAreReportedAlike()
{
    QStringList told[2];
    for (const TextMaking making : {TextMaking::atOnce, TextMaking::whenNeeded}) {
        QStringList &lines = told[making == TextMaking::atOnce ? 0 : 1];
        Node node(0, making);
        const auto tell = [&] {
            lines << node.description() << QString::number(node.boundingRect().height());
        };
        QObject::connect(&node, &Node::s_changed, &node, tell);
        const auto read = [&](const QString &text) {
            Record record;
            record.description = text;
            const QByteArray bytes = SceneBytes::nodeRecord(record);
            QDataStream in(bytes);
            node.openFromStream(in);
        };
        read(u"Enter description"_s);
        read(u"Dawn\nand\nmore"_s);
        node.setDescription(u"Noon"_s);
        read(u"Dawn\nand\nmore"_s);
        read(u"Dusk"_s);
        QCOMPARE(node.isLate(), making == TextMaking::whenNeeded);
        node.setDescription(u"Noon"_s);
        typeDescription(&node, u"Dusk"_s);
        typeDescription(&node, u"Night"_s);
    }
    QCOMPARE(told[1], told[0]);
    QCOMPARE(told[0].size(), 6);
}

void tst_LateEvents::randomEditsAreAsWithEverythingMade_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 6; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_LateEvents::randomEditsAreAsWithEverythingMade()
{
    QFETCH(const unsigned, seed);
    const QByteArray bytes = file(seed);
    QStringList state[2];
    QStringList log[2];
    QList<QImage> frames[2];
    for (const int made : {0, 1}) {
        Tab tab(bytes);
        if (made == 1)
            tab.makeAll();
        QCOMPARE(tab.lateCount() > 0, made == 0); // in the end too few may be left to be anything but whole
        const LogCapture lines;
        std::mt19937 random(seed);
        for (int step = 0; step < 60; ++step) {
            const auto any = [&] { return tab.scene.nodes().at(random() % tab.scene.nodes().size()); };
            Node *node = any();
            const int right = int(random() % 480); // one after the other, or compilers would differ
            const int down = int(random() % 250) - 20;
            const QPointF place = node->pos() + QPointF(right, down);
            switch (random() % 16) {
            case 0:
                tab.scene.deleteSelectedNodes(node);
                break;
            case 1:
                tab.view->undoStack()->undo();
                break;
            case 2:
                tab.view->undoStack()->redo();
                break;
            case 3:
                tab.scene.toggleImportance(node);
                break;
            case 4:
                tab.scene.setEndOfStory(node);
                break;
            case 5:
                tab.scene.connectNodes(node, any());
                break;
            case 6:
                tab.scene.disconnectNode(node);
                break;
            case 7:
                tab.mouse.press(place);
                tab.mouse.release(place);
                break;
            case 8:
                tab.mouse.drag(place, place + QPointF(30, 40));
                break;
            case 9:
                node->setDescription(randomText(random));
                break;
            case 10:
                node->setNodeName(randomText(random));
                break;
            case 11:
                tab.scene.sl_selectCurrentNode(node);
                tab.scene.cutNodes();
                break;
            case 12:
                tab.scene.sl_lastMousePos(place);
                tab.scene.pasteNodes();
                break;
            case 13:
                tab.scene.sl_selectCurrentNode(node);
                tab.scene.sl_addEventNode();
                break;
            case 14:
                typeTitle(node, randomText(random));
                break;
            default:
                frames[made] << tab.frame(random() % 2 ? 0.04 : 0.3, place);
                break;
            }
            flushDeferredDeletes();
            state[made] << tab.state();
        }
        log[made] = lines.lines();
        for (const Node *node : tab.scene.nodes()) {
            node->payload();
            state[made] << itemsOf(node);
        }
    }
    QCOMPARE(state[0], state[1]);
    QCOMPARE(log[0], log[1]);
    QCOMPARE(frames[0], frames[1]);
}

QTEST_MAIN(tst_LateEvents)
#include "tst_lateevents.moc"
