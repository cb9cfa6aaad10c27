#include "app/worststage.h"

#include <QDragEnterEvent>
#include <QMimeData>

namespace {

/// Carries a text from somewhere else into a view; it is moved, so that whoever takes it has to keep it.
class Carried
{
public:
    explicit Carried(QGraphicsView *where, const QString &text) : viewport(where->viewport())
    {
        mime.setText(text);
    }

    /// Whether somebody would take it there.
    bool isWelcomeAt(QPoint pos)
    {
        QDragEnterEvent enter(pos, Qt::MoveAction | Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(pos, Qt::MoveAction | Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &move);
        return enter.isAccepted() && move.isAccepted() && move.dropAction() != Qt::IgnoreAction;
    }
    /// Whether it was taken.
    bool drop(QPoint pos)
    {
        if (!isWelcomeAt(pos)) {
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(viewport, &leave);
            return false;
        }
        QDropEvent event(pos, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
        return event.isAccepted();
    }

private:
    QWidget *viewport;
    QMimeData mime;
};

QPoint middleOf(const QGraphicsView *view, const QGraphicsItem *item)
{
    return view->mapFromScene(item->mapToScene(item->boundingRect().center()));
}

const QString carriedText = QStringLiteral("dropped text");
const QString untouched = QStringLiteral("Enter description");

} // namespace

/// What becomes of a text that is dropped: it arrives somewhere, or stays where it was.
class tst_Drops : public ProgramTest
{
    Q_OBJECT

private slots:
    void whatTakesNoTextRefusesIt_data();
    void whatTakesNoTextRefusesIt();
    void textBelowASocketTakesIt();
    void socketStillShowsThatItTakesDrops();
    void untouchedDescriptionIsReplaced();
    void untouchedEntryOfThePanelIsReplaced();
    void writtenDescriptionIsKept();
    void refusedDropLeavesThePlaceholder();
};

void tst_Drops::whatTakesNoTextRefusesIt_data()
{
    QTest::addColumn<QString>("place");
    for (const char *place : {"input", "output", "fed input", "body", "header", "line", "canvas"})
        QTest::newRow(place) << QString::fromLatin1(place);
}

// A socket took the text, whose source then deleted it, and did nothing with it.
void tst_Drops::whatTakesNoTextRefusesIt()
{
    QFETCH(QString, place);
    const WorstStage stage;
    const QHash<QString, QPointF> places{
        {QStringLiteral("input"), inputOf(stage.dusk)},
        {QStringLiteral("output"), outputOf(stage.dusk)},
        {QStringLiteral("fed input"), inputOf(stage.noon)},
        {QStringLiteral("body"), bodyOf(stage.dusk)},
        {QStringLiteral("header"), stage.dusk->mapToScene(stage.dusk->boundingRect().width() - 20, 17)},
        {QStringLiteral("line"), nearEnd(stage.noon->inLine(), SocketType::input)},
        {QStringLiteral("canvas"), QPointF(520, 20)}};
    const QPoint pos = stage.view()->mapFromScene(places.value(place));
    Carried carried(stage.view(), carriedText);
    QVERIFY(!carried.drop(pos));
    // Also when it comes over a text that would have taken it.
    QVERIFY(carried.isWelcomeAt(middleOf(stage.view(), descriptionOf(stage.dusk))));
    QVERIFY(!carried.drop(pos));
}

void tst_Drops::textBelowASocketTakesIt()
{
    const WorstStage stage;
    stage.dusk->stackBefore(stage.dawn);
    const QGraphicsTextItem *text = descriptionOf(stage.dusk);
    stage.dawn->setPos(stage.dusk->pos() + QPointF(100, 0));
    QVERIFY(Carried(stage.view(), carriedText).drop(stage.view()->mapFromScene(inputOf(stage.dawn))));
    QVERIFY(text->toPlainText().contains(carriedText));
}

void tst_Drops::socketStillShowsThatItTakesDrops()
{
    const WorstStage stage;
    QVERIFY(stage.dusk->inSocket()->acceptDrops() && stage.dusk->outSocket()->acceptDrops());
}

// It landed in the midst of what asks for a description: "Edropped textnter description".
void tst_Drops::untouchedDescriptionIsReplaced()
{
    const WorstStage stage;
    stage.trigger("actionAdd_Event");
    const Node *added = stage.scene()->nodes().back();
    QCOMPARE(descriptionOf(added)->toPlainText(), untouched);
    QVERIFY(Carried(stage.view(), carriedText).drop(middleOf(stage.view(), descriptionOf(added))));
    QCOMPARE(descriptionOf(added)->toPlainText(), carriedText);
    QCOMPARE(added->payload()->eventContent()->getDescription(), carriedText);
    // A press into it later does not take it for what asks for a description.
    stage.edit(descriptionOf(added));
    QVERIFY(descriptionOf(added)->toPlainText().startsWith(carriedText));
}

void tst_Drops::untouchedEntryOfThePanelIsReplaced()
{
    WorstStage stage;
    stage.press(bodyOf(stage.noon));
    stage.release(bodyOf(stage.noon));
    stage.trigger("actionSet_End_of_Story");
    stage.trigger("actionAdd_Event");
    const Node *added = stage.scene()->nodes().back();
    QGraphicsView *panel = stage.panel()->views().constFirst();
    const auto entry = [&stage, added] {
        return descriptionOf(stage.panel()->findOvNode(added->getIndex()));
    };
    QCOMPARE(entry()->toPlainText(), untouched);
    panel->ensureVisible(entry());
    QVERIFY(Carried(panel, carriedText).drop(middleOf(panel, entry())));
    QCOMPARE(entry()->toPlainText(), carriedText);
    QCOMPARE(descriptionOf(added)->toPlainText(), carriedText);
}

void tst_Drops::writtenDescriptionIsKept()
{
    const WorstStage stage;
    const QString before = descriptionOf(stage.dusk)->toPlainText();
    QVERIFY(Carried(stage.view(), carriedText).drop(middleOf(stage.view(), descriptionOf(stage.dusk))));
    const QString after = descriptionOf(stage.dusk)->toPlainText();
    QCOMPARE(after.size(), before.size() + carriedText.size());
    QCOMPARE(QString(after).remove(carriedText), before);
}

void tst_Drops::refusedDropLeavesThePlaceholder()
{
    const WorstStage stage;
    stage.trigger("actionAdd_Event");
    const Node *added = stage.scene()->nodes().back();
    const QPoint pos = middleOf(stage.view(), descriptionOf(added));
    QMimeData picture;
    picture.setData(QStringLiteral("image/png"), QByteArrayLiteral("no picture"));
    QVERIFY(Carried(stage.view(), carriedText).isWelcomeAt(pos));
    QDropEvent event(pos, Qt::MoveAction, &picture, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(stage.view()->viewport(), &event);
    QCOMPARE(descriptionOf(added)->toPlainText(), untouched);
}

QTEST_MAIN(tst_Drops)
#include "tst_drops.moc"
