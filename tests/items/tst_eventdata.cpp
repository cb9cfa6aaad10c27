#include "items/eventdata.h"

#include "items/itemtest.h"
#include "items/stlineedit.h"
#include "support/testsupport.h"

#include <QDataStream>
#include <QTextDocument>

namespace {

const QString placeholder = QStringLiteral("Enter description");
const QString manyLines = QStringLiteral("One\ntwo\nthree\nfour");

/// An event's content in a window.
struct EventDesk : Desk
{
    EventData *event = new EventData(nullptr);
    QSignalSpy changed{event, &EventData::s_isChanged};

    EventDesk()
    {
        scene.addItem(event);
        event->setPos(100, 100);
        edit(event->descriptionItem());
    }
};

QByteArray record(const QString &text)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << text;
    return bytes;
}

void load(EventData &event, const QByteArray &bytes)
{
    QDataStream in(bytes);
    event.sl_openFromFile(in);
}

} // namespace

class tst_EventData : public TestCase
{
    Q_OBJECT

private slots:
    void metaObjectListsTheMethodsInOrder();
    void startsWithThePlaceholder();
    void outlineIsTheDescriptionsGrownByTen_data();
    void outlineIsTheDescriptionsGrownByTen();
    void outlineFollowsTheTextAtOnce_data();
    void outlineFollowsTheTextAtOnce();
    void paintsNothingItself();
    void typingReportsOncePerChange();
    void clickThatRemovesThePlaceholderIsReported();
    void changeBackToTheLastReportedTextIsNotReported();
    void comparisonIsCaseSensitive();
    void settingTheDescriptionReportsNothing_data();
    void settingTheDescriptionReportsNothing();
    void editAfterASetIsComparedWithTheOlderText();
    void undoInsideTheTextIsReported();
    void savesTheTextAsOneString_data();
    void savesTheTextAsOneString();
    void loadingSetsTheTextAndReportsADifference_data();
    void loadingSetsTheTextAndReportsADifference();
    void loadingReadsNothingButItsOwnString();
    void shortStreamGivesAnEmptyText();
};

void tst_EventData::metaObjectListsTheMethodsInOrder()
{
    const QMetaObject &meta = EventData::staticMetaObject;
    QCOMPARE(ownMethods(meta), QStringList({"s_isChanged()", "sl_isChanged()", "sl_saveToFile(QDataStream&)",
                                            "sl_openFromFile(QDataStream&)"}));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_EventData::startsWithThePlaceholder()
{
    QGraphicsRectItem parent;
    const auto *event = new EventData(&parent);
    QCOMPARE(event->parentItem(), &parent);
    QCOMPARE(event->parent(), nullptr);
    QCOMPARE(event->getDescription(), placeholder);
    QCOMPARE(event->descriptionItem()->parentItem(), event);
    QCOMPARE(event->descriptionItem()->document()->textWidth(), 400.0);
    QCOMPARE(event->childItems().size(), 1);
}

void tst_EventData::outlineIsTheDescriptionsGrownByTen_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("placeholder") << placeholder;
    QTest::newRow("empty") << QString();
    QTest::newRow("several lines") << manyLines;
}

void tst_EventData::outlineIsTheDescriptionsGrownByTen()
{
    QFETCH(QString, text);
    EventData event(nullptr);
    event.setDescription(text);
    const QTextDocument *document = event.descriptionItem()->document();
    QCOMPARE(event.boundingRect(), QRectF(-10, -10, 420, document->size().height() + 20));
}

void tst_EventData::outlineFollowsTheTextAtOnce_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"set", "typed", "loaded", "undone", "set on the item"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_EventData::outlineFollowsTheTextAtOnce()
{
    QFETCH(QString, way);
    EventDesk desk;
    STLineEdit *text = desk.event->descriptionItem();
    if (way == QLatin1String("undone"))
        desk.key(Qt::Key_Return);
    const double before = desk.event->boundingRect().height();
    // A listener of the change itself must not see an old outline.
    double seen = 0;
    connect(text->document(), &QTextDocument::contentsChanged, desk.event,
            [&] { seen = desk.event->boundingRect().height(); });

    if (way == QLatin1String("set"))
        desk.event->setDescription(manyLines);
    else if (way == QLatin1String("typed"))
        desk.key(Qt::Key_Return);
    else if (way == QLatin1String("loaded"))
        load(*desk.event, record(manyLines));
    else if (way == QLatin1String("undone"))
        text->document()->undo();
    else
        text->setText(manyLines);

    const double expected = text->document()->size().height() + 20;
    QVERIFY(expected != before);
    QCOMPARE(seen, expected);
    QCOMPARE(desk.event->boundingRect(), QRectF(-10, -10, 420, expected));
    const QPointF lowest = desk.event->sceneBoundingRect().bottomLeft() + QPointF(3, -3);
    QCOMPARE(desk.scene.itemAt(lowest, QTransform()), desk.event);
}

void tst_EventData::paintsNothingItself()
{
    QGraphicsScene scene;
    auto *event = new EventData(nullptr);
    scene.addItem(event);
    event->descriptionItem()->hide();
    const QImage image = painted(scene, event->sceneBoundingRect());
    QImage nothing(image.size(), image.format());
    nothing.fill(Qt::transparent);
    QCOMPARE(image, nothing);
}

void tst_EventData::typingReportsOncePerChange()
{
    EventDesk desk;
    desk.type(QStringLiteral("!"));
    QCOMPARE(desk.changed.count(), 1);
    desk.type(QStringLiteral("abc"));
    QCOMPARE(desk.changed.count(), 4);
    desk.key(Qt::Key_Return);
    QCOMPARE(desk.changed.count(), 5);
    desk.key(Qt::Key_Left);
    QCOMPARE(desk.changed.count(), 5);
    QCOMPARE(desk.event->getDescription(), placeholder + QStringLiteral("!abc\n"));
}

void tst_EventData::clickThatRemovesThePlaceholderIsReported()
{
    EventDesk desk;
    desk.click(desk.event->descriptionItem()->sceneBoundingRect().center());
    QCOMPARE(desk.event->getDescription(), QString());
    QCOMPARE(desk.changed.count(), 1);
}

void tst_EventData::changeBackToTheLastReportedTextIsNotReported()
{
    EventDesk desk;
    desk.event->setDescription(QStringLiteral("Enter descriptio"));
    desk.edit(desk.event->descriptionItem());
    desk.type(QStringLiteral("n"));
    QCOMPARE(desk.event->getDescription(), placeholder);
    QCOMPARE(desk.changed.count(), 0);
    desk.type(QStringLiteral("s"));
    QCOMPARE(desk.changed.count(), 1);
}

void tst_EventData::comparisonIsCaseSensitive()
{
    EventDesk desk;
    desk.event->setDescription(QStringLiteral("Enter descriptio"));
    desk.edit(desk.event->descriptionItem());
    desk.type(QStringLiteral("N"));
    QCOMPARE(desk.changed.count(), 1);
}

void tst_EventData::settingTheDescriptionReportsNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("other text") << QStringLiteral("Rain");
    QTest::newRow("empty") << QString();
    QTest::newRow("placeholder") << placeholder;
}

void tst_EventData::settingTheDescriptionReportsNothing()
{
    QFETCH(QString, text);
    EventDesk desk;
    desk.event->setDescription(text);
    QCOMPARE(desk.event->getDescription(), text);
    QCOMPARE(desk.changed.count(), 0);
}

void tst_EventData::editAfterASetIsComparedWithTheOlderText()
{
    EventDesk desk;
    desk.type(QStringLiteral("s")); // reported
    desk.event->setDescription(QStringLiteral("Rain"));
    desk.edit(desk.event->descriptionItem());
    desk.type(QStringLiteral("s"));
    QCOMPARE(desk.changed.count(), 2);
    desk.event->setDescription(QStringLiteral("Rain")); // not reported, so "Rains" still is the last text
    desk.edit(desk.event->descriptionItem());
    desk.type(QStringLiteral("s"));
    QCOMPARE(desk.changed.count(), 2);
}

void tst_EventData::undoInsideTheTextIsReported()
{
    EventDesk desk;
    desk.type(QStringLiteral("!"));
    desk.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(desk.event->getDescription(), placeholder);
    QCOMPARE(desk.changed.count(), 2);
}

void tst_EventData::savesTheTextAsOneString_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("untouched") << placeholder;
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("lines and other scripts") << QStringLiteral("Rain\n\u96e8 \U0001F327");
}

void tst_EventData::savesTheTextAsOneString()
{
    QFETCH(QString, text);
    EventData event(nullptr);
    if (text != placeholder)
        event.setDescription(text);
    const LogCapture log;
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    event.sl_saveToFile(out);
    QCOMPARE(log.lines(), QStringList({"Saving event data"}));
    QCOMPARE(bytes, record(text));
}

void tst_EventData::loadingSetsTheTextAndReportsADifference_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("reports");
    QTest::newRow("other text") << QStringLiteral("Rain") << 1;
    QTest::newRow("placeholder") << placeholder << 0;
    QTest::newRow("other case") << QStringLiteral("ENTER DESCRIPTION") << 1;
    QTest::newRow("empty") << QString() << 1;
    QTest::newRow("several lines") << manyLines << 1;
}

void tst_EventData::loadingSetsTheTextAndReportsADifference()
{
    QFETCH(QString, text);
    EventDesk desk;
    const LogCapture log;
    load(*desk.event, record(text));
    QCOMPARE(desk.event->getDescription(), text);
    QTEST(int(desk.changed.count()), "reports");
    QCOMPARE(log.lines(), QStringList({"Opening event data", "SetEventData"}));
}

void tst_EventData::loadingReadsNothingButItsOwnString()
{
    EventData event(nullptr);
    QByteArray bytes = record(QStringLiteral("Rain")) + record(QStringLiteral("next"));
    QDataStream in(bytes);
    event.sl_openFromFile(in);
    QString next;
    in >> next;
    QCOMPARE(event.getDescription(), QStringLiteral("Rain"));
    QCOMPARE(next, QStringLiteral("next"));
}

void tst_EventData::shortStreamGivesAnEmptyText()
{
    EventData event(nullptr);
    QByteArray bytes = record(QStringLiteral("Rain"));
    bytes.chop(3);
    QDataStream in(bytes);
    event.sl_openFromFile(in);
    QCOMPARE(in.status(), QDataStream::ReadPastEnd);
    QCOMPARE(event.getDescription(), QString());
}

QTEST_MAIN(tst_EventData)
#include "tst_eventdata.moc"
