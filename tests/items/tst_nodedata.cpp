#include "items/nodedata.h"

#include "items/eventdata.h"
#include "items/itemtest.h"
#include "items/stlineedit.h"
#include "support/testsupport.h"

#include <QDataStream>

#include <memory>

namespace {

const QString placeholder = QStringLiteral("Enter description");

/// What a request to save writes.
QString savedBy(NodeData &data)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    emit data.s_saveToFile(out);
    QDataStream in(bytes);
    QString text;
    in >> text;
    return in.atEnd() && in.status() == QDataStream::Ok ? text : QStringLiteral("not one string");
}

void load(NodeData &data, const QString &text)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << text;
    QDataStream in(bytes);
    data.sl_openFromFile(in);
}

} // namespace

class tst_NodeData : public TestCase
{
    Q_OBJECT

private slots:
    void metaObjectListsTheMethodsInOrder();
    void eventHoldsEventDataAsItsChild();
    void otherTypesHaveNoContent();
    void outlineIsThatOfTheContentAtOnce();
    void paintsNothingItself();
    void typingReportsOncePerChange();
    void freshPayloadSavesThePlaceholder();
    void savingAndLoadingReachTheContent();
    void slotsPassTheRequestOn();
    void loadingReportsADifference_data();
    void loadingReportsADifference();
    void cloneHasTheTypeAndTheDescription();
    void cloneKeepsItsFirstContentUnchanged();
    void contentOfACloneReportsAndSavesNothing();
    void cloneOfACloneHasTheDescriptionToo();
    void cloneOfAnotherTypeIsEmpty();
    void copyingSetsTheDescriptionWithoutAReport();
    void copyingNeedsTwoEvents();
};

void tst_NodeData::metaObjectListsTheMethodsInOrder()
{
    const QMetaObject &meta = NodeData::staticMetaObject;
    QCOMPARE(ownMethods(meta), QStringList({"s_dataChanged()", "s_saveToFile(QDataStream&)",
                                            "s_openFromFile(QDataStream&)", "sl_dataChanged()",
                                            "sl_saveToFile(QDataStream&)", "sl_openFromFile(QDataStream&)"}));
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(meta.method(meta.methodOffset() + i).methodType(),
                 i < 3 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_NodeData::eventHoldsEventDataAsItsChild()
{
    QGraphicsRectItem parent;
    const auto *data = new NodeData(0, &parent);
    QCOMPARE(data->parentItem(), &parent);
    QCOMPARE(data->parent(), nullptr);
    QCOMPARE(data->getType(), 0);
    QVERIFY(data->eventContent());
    QCOMPARE(data->content(), data->eventContent());
    QCOMPARE(data->content()->parentItem(), data);
    QCOMPARE(data->childItems().size(), 1);
}

void tst_NodeData::otherTypesHaveNoContent()
{
    const NodeData data(3, nullptr);
    QCOMPARE(data.getType(), 3);
    QCOMPARE(data.content(), nullptr);
    QCOMPARE(data.eventContent(), nullptr);
    QCOMPARE(data.childItems().size(), 0);
}

void tst_NodeData::outlineIsThatOfTheContentAtOnce()
{
    QGraphicsScene scene(-100, -100, 1000, 1000);
    scene.setBspTreeDepth(12); // fine enough to miss an item that moved unannounced
    auto *data = new NodeData(0, nullptr);
    scene.addItem(data);
    QCOMPARE(data->boundingRect(), data->eventContent()->boundingRect());
    QCOMPARE(data->boundingRect().width(), 420.0);
    const double before = data->boundingRect().height();
    QVERIFY(scene.items(QPointF(-5, before + 5)).isEmpty());
    data->eventContent()->setDescription(QStringLiteral("One\ntwo\nthree"));
    QVERIFY(data->boundingRect().height() > before + 20);
    QCOMPARE(data->boundingRect(), data->eventContent()->boundingRect());
    QVERIFY(scene.items(QPointF(-5, before + 5)).contains(data));
}

void tst_NodeData::paintsNothingItself()
{
    QGraphicsScene scene;
    auto *data = new NodeData(0, nullptr);
    scene.addItem(data);
    data->content()->hide();
    const QImage image = painted(scene, data->sceneBoundingRect());
    QImage nothing(image.size(), image.format());
    nothing.fill(Qt::transparent);
    QCOMPARE(image, nothing);
}

void tst_NodeData::typingReportsOncePerChange()
{
    Desk desk;
    auto *data = new NodeData(0, nullptr);
    desk.scene.addItem(data);
    QStringList order;
    connect(data->eventContent(), &EventData::s_isChanged, data, [&] { order << QStringLiteral("content"); });
    connect(data, &NodeData::s_dataChanged, data, [&] { order << QStringLiteral("payload"); });
    desk.edit(data->eventContent()->descriptionItem());
    desk.type(QStringLiteral("!"));
    QCOMPARE(order.count(QStringLiteral("content")), 1);
    QCOMPARE(order.count(QStringLiteral("payload")), 1);
    desk.type(QStringLiteral("?"));
    QCOMPARE(order.count(QStringLiteral("payload")), 2);
}

void tst_NodeData::freshPayloadSavesThePlaceholder()
{
    NodeData data(0, nullptr);
    QCOMPARE(savedBy(data), placeholder);
}

void tst_NodeData::savingAndLoadingReachTheContent()
{
    NodeData data(0, nullptr);
    load(data, QStringLiteral("Rain"));
    QCOMPARE(data.eventContent()->getDescription(), QStringLiteral("Rain"));
    QCOMPARE(savedBy(data), QStringLiteral("Rain"));
}

void tst_NodeData::slotsPassTheRequestOn()
{
    NodeData data(7, nullptr); // nothing there that could use the stream
    int changed = 0;
    QDataStream *saving = nullptr;
    QDataStream *opening = nullptr;
    connect(&data, &NodeData::s_dataChanged, &data, [&] { ++changed; });
    connect(&data, &NodeData::s_saveToFile, &data, [&](QDataStream &stream) { saving = &stream; });
    connect(&data, &NodeData::s_openFromFile, &data, [&](QDataStream &stream) { opening = &stream; });
    QDataStream stream;
    data.sl_dataChanged();
    QCOMPARE(changed, 1);
    data.sl_saveToFile(stream);
    QCOMPARE(saving, &stream);
    QCOMPARE(opening, nullptr);
    data.sl_openFromFile(stream);
    QCOMPARE(opening, &stream);
    QCOMPARE(changed, 1);
}

void tst_NodeData::loadingReportsADifference_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("reports");
    QTest::newRow("other text") << QStringLiteral("Rain") << 1;
    QTest::newRow("placeholder") << placeholder << 0;
}

void tst_NodeData::loadingReportsADifference()
{
    QFETCH(QString, text);
    NodeData data(0, nullptr);
    const QSignalSpy changed(&data, &NodeData::s_dataChanged);
    load(data, text);
    QTEST(int(changed.count()), "reports");
}

void tst_NodeData::cloneHasTheTypeAndTheDescription()
{
    QGraphicsRectItem parent;
    auto *data = new NodeData(0, &parent);
    data->eventContent()->setDescription(QStringLiteral("Rain"));
    const std::unique_ptr<NodeData> copy(data->clone());
    QCOMPARE(copy->getType(), 0);
    QCOMPARE(copy->parentItem(), nullptr);
    QCOMPARE(copy->eventContent()->getDescription(), QStringLiteral("Rain"));
    QVERIFY(copy->eventContent() != data->eventContent());

    data->eventContent()->setDescription(QStringLiteral("Wind"));
    QCOMPARE(copy->eventContent()->getDescription(), QStringLiteral("Rain"));
}

void tst_NodeData::cloneKeepsItsFirstContentUnchanged()
{
    NodeData data(0, nullptr);
    data.eventContent()->setDescription(QStringLiteral("Rain"));
    const std::unique_ptr<NodeData> copy(data.clone());
    const QList<QGraphicsItem *> children = copy->childItems();
    QCOMPARE(children.size(), 2);
    QCOMPARE(dynamic_cast<EventData *>(children.at(0))->getDescription(), placeholder);
    QCOMPARE(children.at(1), copy->content());
}

void tst_NodeData::contentOfACloneReportsAndSavesNothing()
{
    NodeData data(0, nullptr);
    data.eventContent()->setDescription(QStringLiteral("Rain"));
    const std::unique_ptr<NodeData> copy(data.clone());
    const QSignalSpy changed(copy.get(), &NodeData::s_dataChanged);
    copy->eventContent()->descriptionItem()->setText(QStringLiteral("Wind"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(savedBy(*copy), placeholder);
}

void tst_NodeData::cloneOfACloneHasTheDescriptionToo()
{
    NodeData data(0, nullptr);
    data.eventContent()->setDescription(QStringLiteral("Rain"));
    const std::unique_ptr<NodeData> copy(data.clone());
    const std::unique_ptr<NodeData> second(copy->clone());
    QCOMPARE(second->eventContent()->getDescription(), QStringLiteral("Rain"));
}

void tst_NodeData::cloneOfAnotherTypeIsEmpty()
{
    const NodeData data(4, nullptr);
    const std::unique_ptr<NodeData> copy(data.clone());
    QCOMPARE(copy->getType(), 4);
    QCOMPARE(copy->content(), nullptr);
}

void tst_NodeData::copyingSetsTheDescriptionWithoutAReport()
{
    NodeData from(0, nullptr);
    from.eventContent()->setDescription(QStringLiteral("Rain"));
    NodeData to(0, nullptr);
    const QSignalSpy changed(&to, &NodeData::s_dataChanged);
    from.copyTo(&to);
    QCOMPARE(to.eventContent()->getDescription(), QStringLiteral("Rain"));
    QCOMPARE(from.eventContent()->getDescription(), QStringLiteral("Rain"));
    QCOMPARE(changed.count(), 0);
}

void tst_NodeData::copyingNeedsTwoEvents()
{
    NodeData event(0, nullptr);
    event.eventContent()->setDescription(QStringLiteral("Rain"));
    NodeData other(2, nullptr);
    event.copyTo(&other);
    QCOMPARE(other.content(), nullptr);
    other.copyTo(&event);
    QCOMPARE(event.eventContent()->getDescription(), QStringLiteral("Rain"));
    event.copyTo(nullptr);
    QCOMPARE(event.eventContent()->getDescription(), QStringLiteral("Rain"));
}

QTEST_MAIN(tst_NodeData)
#include "tst_nodedata.moc"
