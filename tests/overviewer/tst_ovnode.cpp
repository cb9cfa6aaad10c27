#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/ovnode.h"

#include <QImage>
#include <QMetaMethod>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionGraphicsItem>
#include <QTextCursor>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

EventData *contentOf(OvNode &entry) { return dynamic_cast<EventData *>(entry.eventData()); }

STLineEdit *textOf(const Node &node) { return node.payload()->eventContent()->descriptionItem(); }

/// What an entry leaves on a transparent image whose pixel (20, 20) is the entry's origin.
QImage painted(OvNode &entry, const QPen &pen, const QBrush &brush)
{
    QImage image(460, 260, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(20, 20);
    painter.setPen(pen);
    painter.setBrush(brush);
    const QStyleOptionGraphicsItem option;
    entry.paint(&painter, &option, nullptr);
    return image;
}

/// The panel as it looks; scene point (-20, -20) is the image's first pixel.
QImage shown(QGraphicsScene &scene)
{
    QImage image(460, 260, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene.render(&painter, QRectF(image.rect()), QRectF(-20, -20, 460, 260));
    return image;
}

} // namespace

class tst_OvNode : public TestCase
{
    Q_OBJECT

private slots:
    void hasExactlyItsMethods();
    void copiesTheNode();
    void keepsWhatItCopied();
    void outlineIsThatOfItsContent();
    void longerDescriptionMakesATallerEntry();
    void wideWordIsBroken();
    void typingIsReportedOncePerChange();
    void refreshReportsNothing();
    void refreshTakesTheNodesText();
    void contentGoesWithTheEntry();
    void nodeWithoutContentGivesAnEmptyEntry_data();
    void nodeWithoutContentGivesAnEmptyEntry();

    void unimportantEntryPaintsNothing();
    void importantEntryPaintsAnOutline();
    void outlineIsThatOfTheNodesContent();
    void painterIsLeftBlue();
    void panelShowsTheOutline_data();
    void panelShowsTheOutline();
};

void tst_OvNode::hasExactlyItsMethods()
{
    const QMetaObject &meta = OvNode::staticMetaObject;
    QCOMPARE(ownMethods(meta), QStringList({u"s_nodeChanged(OvNode*)"_s, u"sl_nodeChanged()"_s}));
    const QMetaMethod changed = meta.method(meta.methodOffset());
    QCOMPARE(changed.methodType(), QMetaMethod::Signal);
    QCOMPARE(changed.parameterNames(), QByteArrayList({"node"}));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_OvNode::copiesTheNode()
{
    Node node(0);
    node.setIndex(4);
    textOf(node)->setText(u"He leaves"_s);
    OvNode entry(&node);
    QCOMPARE(entry.getIndex(), 4);
    QCOMPARE(entry.parent(), nullptr);
    QCOMPARE(entry.parentItem(), nullptr);
    QVERIFY(contentOf(entry));
    QVERIFY(contentOf(entry) != node.payload()->eventContent());
    QCOMPARE(contentOf(entry)->getDescription(), u"He leaves"_s);
    QCOMPARE(contentOf(entry)->parentItem(), static_cast<const QGraphicsItem *>(&entry));
    QCOMPARE(contentOf(entry)->pos(), QPointF(0, 0));
    QCOMPARE(contentOf(entry)->descriptionItem()->textInteractionFlags(), Qt::TextEditorInteraction);
}

void tst_OvNode::keepsWhatItCopied()
{
    Node node(0);
    OvNode entry(&node);
    node.setIndex(6);
    node.setImportant(true);
    textOf(node)->setText(u"later"_s);
    QCOMPARE(entry.getIndex(), 0);
    QCOMPARE(contentOf(entry)->getDescription(), u"Enter description"_s);
    QCOMPARE(painted(entry, QPen(Qt::red), Qt::green), painted(entry, Qt::NoPen, Qt::NoBrush));
    entry.setIndex(9);
    QCOMPARE(entry.getIndex(), 9);
    QCOMPARE(node.getIndex(), 6);
}

void tst_OvNode::outlineIsThatOfItsContent()
{
    Node node(0);
    OvNode entry(&node);
    QCOMPARE(entry.boundingRect(), contentOf(entry)->boundingRect());
    QCOMPARE(entry.boundingRect().left(), -10.0);
    QCOMPARE(entry.boundingRect().top(), -10.0);
    QCOMPARE(entry.boundingRect().width(), 420.0);
    QCOMPARE(entry.boundingRect().height(),
             contentOf(entry)->descriptionItem()->boundingRect().height() + 20);
    QCOMPARE(entry.boundingRect(), node.payload()->eventContent()->boundingRect());
}

void tst_OvNode::longerDescriptionMakesATallerEntry()
{
    Node node(0);
    OvNode entry(&node);
    const double before = entry.boundingRect().height();
    textOf(node)->setText(u"one\ntwo\nthree"_s);
    QCOMPARE(entry.boundingRect().height(), before);
    entry.updateFromNode();
    QVERIFY(entry.boundingRect().height() > before);
    QCOMPARE(entry.boundingRect(), node.payload()->eventContent()->boundingRect());
    textOf(node)->setText(u"one"_s);
    entry.updateFromNode();
    QCOMPARE(entry.boundingRect().height(), before);
}

void tst_OvNode::wideWordIsBroken()
{
    Node node(0);
    OvNode entry(&node);
    const double before = entry.boundingRect().height();
    textOf(node)->setText(QString(120, u'w'));
    entry.updateFromNode();
    QCOMPARE(entry.boundingRect().width(), 420.0);
    QVERIFY(entry.boundingRect().height() > before);
    QCOMPARE(entry.boundingRect(), node.payload()->eventContent()->boundingRect());
}

void tst_OvNode::typingIsReportedOncePerChange()
{
    Node node(0);
    OvNode entry(&node);
    QSignalSpy changes(&entry, SIGNAL(s_nodeChanged(OvNode*)));
    QTextCursor cursor(contentOf(entry)->descriptionItem()->document());
    cursor.insertText(u"a"_s);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).value<OvNode *>(), &entry);
    cursor.insertText(u"b"_s);
    QCOMPARE(changes.count(), 2);
    cursor.deletePreviousChar();
    QCOMPARE(changes.count(), 3);
    QCOMPARE(contentOf(entry)->getDescription(), u"aEnter description"_s);
    QCOMPARE(node.payload()->eventContent()->getDescription(), u"Enter description"_s);
}

void tst_OvNode::refreshReportsNothing()
{
    Node node(0);
    OvNode entry(&node);
    QSignalSpy changes(&entry, &OvNode::s_nodeChanged);
    textOf(node)->setText(u"from the graph"_s);
    entry.updateFromNode();
    entry.updateFromNode();
    QCOMPARE(changes.count(), 0);
    entry.sl_nodeChanged();
    QCOMPARE(changes.count(), 1);
}

void tst_OvNode::refreshTakesTheNodesText()
{
    Node node(0);
    OvNode entry(&node);
    for (const QString &text : {u"first"_s, QString(), u"two\nlines"_s}) {
        textOf(node)->setText(text);
        entry.updateFromNode();
        QCOMPARE(contentOf(entry)->getDescription(), text);
    }
}

void tst_OvNode::contentGoesWithTheEntry()
{
    Node node(0);
    auto entry = std::make_unique<OvNode>(&node);
    const QPointer<EventData> content = contentOf(*entry);
    entry.reset();
    QVERIFY(!content);
    QVERIFY(node.payload()->eventContent());
}

void tst_OvNode::nodeWithoutContentGivesAnEmptyEntry_data()
{
    QTest::addColumn<bool>("event");
    QTest::newRow("event without a description") << true;
    QTest::newRow("no event") << false;
}

void tst_OvNode::nodeWithoutContentGivesAnEmptyEntry()
{
    QFETCH(bool, event);
    Node node(1);
    if (event) {
        const NodeData source(0, nullptr);
        node.copyDataFrom(&source);
    }
    QCOMPARE(node.getType(), event ? 0 : 1);
    OvNode entry(&node);
    QVERIFY(entry.childItems().isEmpty());
    QCOMPARE(entry.eventData() != nullptr, event);
    entry.updateFromNode();
    QVERIFY(entry.childItems().isEmpty());
    entry.setImportant(true);
    const QImage image = painted(entry, QPen(Qt::red), Qt::green);
    QImage untouched(image.size(), image.format());
    untouched.fill(Qt::transparent);
    QCOMPARE(image, untouched);
}

void tst_OvNode::unimportantEntryPaintsNothing()
{
    Node node(0);
    OvNode entry(&node);
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QImage before = image;
    QPainter painter(&image);
    painter.setPen(QPen(Qt::red, 3));
    painter.setBrush(Qt::green);
    const QStyleOptionGraphicsItem option;
    entry.paint(&painter, &option, nullptr);
    QCOMPARE(painter.pen(), QPen(Qt::red, 3));
    QCOMPARE(painter.brush(), QBrush(Qt::green));
    painter.end();
    QCOMPARE(image, before);
}

void tst_OvNode::importantEntryPaintsAnOutline()
{
    Node node(0);
    node.setImportant(true);
    OvNode entry(&node);
    const QImage image = painted(entry, QPen(Qt::red, 2), Qt::green);
    const int bottom = 20 + int(entry.boundingRect().bottom());
    // The edges in the painter's own pen, the inside in its brush.
    QCOMPARE(image.pixelColor(200, 10), QColor(Qt::red));
    QCOMPARE(image.pixelColor(10, 40), QColor(Qt::red));
    QCOMPARE(image.pixelColor(429, 40), QColor(Qt::red));
    QCOMPARE(image.pixelColor(200, bottom), QColor(Qt::red));
    QCOMPARE(image.pixelColor(200, 40), QColor(Qt::green));
    QCOMPARE(image.pixelColor(200, bottom + 4), QColor(Qt::transparent));
    // A corner of radius 15 leaves its outermost 4 pixels, and reaches the diagonal between 4 and 6.
    QCOMPARE(image.pixelColor(12, 12), QColor(Qt::transparent));
    QCOMPARE(image.pixelColor(17, 17), QColor(Qt::green));

    entry.setImportant(false);
    QCOMPARE(painted(entry, QPen(Qt::red, 2), Qt::green).pixelColor(200, 10), QColor(Qt::transparent));
}

void tst_OvNode::outlineIsThatOfTheNodesContent()
{
    Node node(0);
    node.setImportant(true);
    textOf(node)->setText(u"one\ntwo\nthree"_s);
    OvNode entry(&node);
    textOf(node)->setRect(QRectF(0, 0, 300, 50));
    const QImage image = painted(entry, QPen(Qt::red, 2), Qt::green);
    QCOMPARE(image.pixelColor(100, 10), QColor(Qt::red));
    QCOMPARE(image.pixelColor(100, 80), QColor(Qt::red)); // 20 + 50 + 10
    QCOMPARE(image.pixelColor(330, 40), QColor(Qt::red)); // 20 + 300 + 10
    QCOMPARE(image.pixelColor(100, 84), QColor(Qt::transparent));
    QCOMPARE(image.pixelColor(334, 40), QColor(Qt::transparent));
}

void tst_OvNode::painterIsLeftBlue()
{
    Node node(0);
    node.setImportant(true);
    OvNode entry(&node);
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    const QStyleOptionGraphicsItem option;
    entry.paint(&painter, &option, nullptr);
    QCOMPARE(painter.pen(), QPen(QBrush(Qt::blue), 10.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    QCOMPARE(painter.brush(), QBrush(Qt::blue));
    QCOMPARE(painter.background(), QBrush(Qt::blue));
}

void tst_OvNode::panelShowsTheOutline_data()
{
    QTest::addColumn<bool>("important");
    QTest::newRow("important") << true;
    QTest::newRow("unimportant") << false;
}

void tst_OvNode::panelShowsTheOutline()
{
    QFETCH(bool, important);
    Node node(0);
    node.setImportant(important);
    OverViewerScene panel;
    panel.sl_recieveNodes({&node});
    const QImage image = shown(panel);
    const QColor background(u"#EAEAEA"_s);
    const QColor outline = important ? QColor(Qt::black) : background;
    const int bottom = 20 + int(panel.ovNodes()[0]->boundingRect().bottom());
    QCOMPARE(image.pixelColor(200, 10), outline);
    QCOMPARE(image.pixelColor(10, 40), outline);
    QCOMPARE(image.pixelColor(430, 40), outline);
    QCOMPARE(image.pixelColor(200, bottom), outline);
    QCOMPARE(image.pixelColor(200, 14), background); // between the outline and the text's panel
    QCOMPARE(image.pixelColor(200, 22), QColor(u"#F5F5F5"_s));
    QCOMPARE(image.pixelColor(2, 2), background);
    panel.sl_recieveNodes({});
}

QTEST_MAIN(tst_OvNode)
#include "tst_ovnode.moc"
