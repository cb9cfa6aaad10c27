#include "app/contrast.h"
#include "items/itemtest.h"
#include "items/stnodename.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QTextCursor>

namespace {

/// An event in a window, with an index fine enough to miss an item that moved unannounced.
struct TitleStage : ShownScene
{
    Node *node = nullptr;
    STNodeName *title = nullptr;

    explicit TitleStage(const QString &text)
    {
        scene.setBspTreeDepth(12);
        view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        node = addLoose(scene, QPointF(100, 100));
        title = node->nameItem();
        node->setNodeName(text);
    }

    void edit() const
    {
        title->setFocus();
        QTextCursor end = title->textCursor();
        end.movePosition(QTextCursor::End);
        title->setTextCursor(end);
    }
    void click(QPointF pos)
    {
        press(pos);
        release(pos);
    }
    /// A place in the header close to its right edge.
    QPointF headerEnd() const { return node->mapToScene(node->boundingRect().width() - 20, 17); }
    Painted look(const QRectF &part) { return ::painted(::painted(scene, part)); }
    /// What the header is painted in where no title stands.
    QColor header() { return colorAt(scene, node->mapToScene(QPointF(5, 20))); }
};

} // namespace

/// What a title stands on, and where it is when there is none.
class tst_TitleGround : public TestCase
{
    Q_OBJECT

private slots:
    void editedTitleIsReadable_data();
    void editedTitleIsReadable();
    void groundIsPaintedOnlyWhileEditing();
    void groundComesAndGoesWithTheText();
    void emptyTitleIsClickedAnywhereInTheHeader_data();
    void emptyTitleIsClickedAnywhereInTheHeader();
    void placeOfAnEmptyTitleIsSeen_data();
    void placeOfAnEmptyTitleIsSeen();
    void titleWithATextIsHitWhereItStands();
    void emptiedTitleIsHitAtOnce();
};

void tst_TitleGround::editedTitleIsReadable_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isSelected");
    const QString lines = QStringLiteral("The storm\nand what came\nafter it");
    const QString lengthy = QStringLiteral("The morning on which nobody came to the harbour at all");
    QTest::newRow("several lines") << lines << false;
    QTest::newRow("several lines, selected") << lines << true;
    QTest::newRow("longer than the header") << lengthy << false;
    QTest::newRow("longer than the header, selected") << lengthy << true;
    QTest::newRow("several long lines, selected") << lengthy + QLatin1Char('\n') + lengthy << true;
}

// Nearly white text hung over the header's edge, on the yellow of a selected event.
void tst_TitleGround::editedTitleIsReadable()
{
    QFETCH(QString, text);
    QFETCH(bool, isSelected);
    TitleStage stage(text);
    stage.node->setSelected(isSelected);
    stage.edit();
    const QRectF whole = stage.title->sceneBoundingRect();
    const int lines = int(text.count(QLatin1Char('\n'))) + 1;
    const double height = (whole.height() - 8) / lines;
    QVERIFY(lines > 1 || whole.right() > stage.node->sceneBoundingRect().right());
    for (int line = 0; line < lines; ++line) {
        const QRectF strip(whole.left() + 1, whole.top() + 4 + line * height, whole.width() - 3, height - 1);
        const Painted seen = stage.look(strip);
        QVERIFY2(contrast(seen.text, seen.background) >= readable,
                 qPrintable(seen.text.name() + QLatin1String(" on ") + seen.background.name()));
        // All of it stands on the same ground.
        const QImage picture = ::painted(stage.scene, strip);
        for (const int x : {0, picture.width() - 1}) // in the margins, beside the cursor
            QVERIFY(contrast(seen.text, picture.pixelColor(x, 0)) >= readable);
    }
}

void tst_TitleGround::groundIsPaintedOnlyWhileEditing()
{
    TitleStage stage(QStringLiteral("The storm\nand what came"));
    const QRectF around = stage.node->sceneBoundingRect();
    const QImage before = ::painted(stage.scene, around);
    stage.edit();
    QVERIFY(::painted(stage.scene, around) != before);
    stage.title->clearFocus();
    QCOMPARE(::painted(stage.scene, around), before);
}

void tst_TitleGround::groundComesAndGoesWithTheText()
{
    TitleStage stage(QStringLiteral("The storm"));
    stage.edit();
    const QPointF inMargin = stage.title->scenePos() + QPointF(1, 12);
    const QColor veiled = colorAt(stage.scene, inMargin);
    QTest::keyClick(&stage.view, Qt::Key_Return);
    const QColor ground = colorAt(stage.scene, inMargin);
    QVERIFY(ground != veiled);
    QVERIFY(contrast(QColor("#F5F5F5"), ground) >= readable);
    QTest::keyClick(&stage.view, Qt::Key_Backspace);
    QCOMPARE(colorAt(stage.scene, inMargin), veiled);
}

void tst_TitleGround::emptyTitleIsClickedAnywhereInTheHeader_data()
{
    QTest::addColumn<double>("along"); // part of the title's room
    QTest::newRow("left") << 0.01;
    QTest::newRow("middle") << 0.5;
    QTest::newRow("right") << 0.99;
}

// Without a letter the title was as wide as a cursor, and could no longer be found.
void tst_TitleGround::emptyTitleIsClickedAnywhereInTheHeader()
{
    QFETCH(double, along);
    TitleStage stage{QString()};
    const double room = stage.node->boundingRect().width() - 30;
    stage.click(stage.title->mapToScene(QPointF(along * room, 14)));
    QVERIFY(stage.title->hasFocus());
    QTest::keyClicks(&stage.view, QStringLiteral("Rain"));
    QCOMPARE(stage.node->title(), QStringLiteral("Rain"));
}

void tst_TitleGround::placeOfAnEmptyTitleIsSeen_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isSeen");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("nothing but spaces") << QStringLiteral("   ") << true;
    QTest::newRow("a title") << QStringLiteral("Rain") << false;
}

void tst_TitleGround::placeOfAnEmptyTitleIsSeen()
{
    QFETCH(QString, text);
    QFETCH(bool, isSeen);
    TitleStage stage(text);
    const auto signAt = [&stage](double along) {
        const double x = along * (stage.node->boundingRect().width() - 30);
        return contrast(stage.look(QRectF(stage.title->mapToScene(QPointF(x, 1)), QSizeF(3, 29))).text,
                        stage.header()) >= discernible;
    };
    for (const double along : {0.3, 0.6, 0.95}) // a title of a word ends before
        QCOMPARE(signAt(along), isSeen);
    stage.edit();
    QVERIFY(!signAt(0.6)); // the panel of a title that is being edited shows it then
    const QRectF end(stage.headerEnd(), QSizeF(2, 2));
    QCOMPARE(stage.look(end).background != stage.header(), isSeen);
}

void tst_TitleGround::titleWithATextIsHitWhereItStands()
{
    TitleStage stage(QStringLiteral("Rain"));
    stage.click(stage.headerEnd());
    QVERIFY(!stage.title->hasFocus());
    QCOMPARE(stage.scene.currentNode(), stage.node);
}

void tst_TitleGround::emptiedTitleIsHitAtOnce()
{
    TitleStage stage(QStringLiteral("Rain"));
    const auto hit = [&stage] { return stage.scene.itemAt(stage.headerEnd(), QTransform()); };
    QVERIFY(hit() != stage.title);
    stage.edit();
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(&stage.view, Qt::Key_Backspace);
    QCOMPARE(hit(), stage.title);
    QTest::keyClicks(&stage.view, QStringLiteral("R"));
    QVERIFY(hit() != stage.title);
    stage.node->setNodeName(QString());
    QCOMPARE(hit(), stage.title);
    // The same for one that has no document yet.
    Node unmade(0, TextMaking::whenNeeded);
    unmade.setNodeName(QString());
    unmade.make();
    stage.title->clearFocus();
    const QRectF place = stage.title->boundingRect();
    QCOMPARE(unmade.childrenBoundingRect(), stage.node->childrenBoundingRect());
    QCOMPARE(unmade.nameItem()->boundingRect(), place);
}

QTEST_MAIN(tst_TitleGround)
#include "tst_titleground.moc"
