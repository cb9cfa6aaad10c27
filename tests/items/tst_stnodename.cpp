#include "items/stnodename.h"

#include "items/itemtest.h"
#include "support/testsupport.h"

#include <QTextDocument>
#include <QTextDocumentFragment>

namespace {

const QString longTitle = QStringLiteral("The morning on which nobody came to the harbour");
const QColor titleColor("#F5F5F5");

/// A title in a window, on black.
struct TitleDesk : Desk
{
    STNodeName *title;

    explicit TitleDesk(const QString &text)
    {
        scene.setBackgroundBrush(Qt::black);
        title = new STNodeName(nullptr);
        scene.addItem(title);
        title->setPos(100, 100);
        title->setPlainText(text);
    }

    QPointF middle() const { return title->sceneBoundingRect().center(); }
    QImage image(double width = 800) { return painted(scene, QRectF(100, 100, width, 120)); }
};

/// The columns of the image in which anything but black is painted: first and one past the last.
std::pair<int, int> paintedColumns(const QImage &image)
{
    int first = image.width();
    int end = 0;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) == QColor(Qt::black))
                continue;
            first = qMin(first, x);
            end = x + 1;
        }
    }
    return {first, end};
}

/// What is shown of a title that is given 200 units.
QString shownIn200(const QString &text, const STNodeName &title)
{
    const double room = 200 - 2 * title.document()->documentMargin();
    return QFontMetricsF(title.font()).elidedText(text, Qt::ElideRight, room);
}

} // namespace

class tst_STNodeName : public TestCase
{
    Q_OBJECT

private slots:
    void hasNoMethodsOfItsOwn();
    void isABoldLightTextToEditInPlace();
    void paintsItsTextLight();
    void clickSelectsAll_data();
    void clickSelectsAll();
    void typingAfterAClickReplacesTheTitle();
    void clickOnAnEmptyTitleSelectsNothing();
    void leavingClearsTheSelection();
    void panelIsPaintedOnlyWhileEditing();
    void panelHasRoundedCornersAndNoFrame();
    void titleThatFitsIsShownWhole_data();
    void titleThatFitsIsShownWhole();
    void longTitleShowsItsBeginningAndAnEllipsis_data();
    void longTitleShowsItsBeginningAndAnEllipsis();
    void longTitleIsShownWholeWhileEdited();
    void toolTipFollowsTheHiddenEnd();
    void moreWidthShowsMore();
    void shorteningATitleEndsTheEllipsis();
    void shortenedTitleIsHitOnlyWhereItIsShown();
    void canvasIsRepaintedWhereATitleIsCutOff_data();
    void canvasIsRepaintedWhereATitleIsCutOff();
    void toolTipShowsMarkupAsTyped_data();
    void toolTipShowsMarkupAsTyped();
};

void tst_STNodeName::hasNoMethodsOfItsOwn()
{
    QCOMPARE(ownMethods(STNodeName::staticMetaObject), QStringList());
    QCOMPARE(STNodeName::staticMetaObject.superClass(), &QGraphicsTextItem::staticMetaObject);
}

void tst_STNodeName::isABoldLightTextToEditInPlace()
{
    QGraphicsRectItem parent;
    const auto *title = new STNodeName(&parent);
    QCOMPARE(title->parentItem(), &parent);
    QCOMPARE(title->toPlainText(), QString());
    QCOMPARE(int(title->textInteractionFlags()), 19);
    QCOMPARE(title->font().family(), QStringLiteral("Inria Sans"));
    QCOMPARE(title->font().pointSize(), 13);
    QCOMPARE(title->font().weight(), QFont::Bold);
    QCOMPARE(title->font().italic(), false);
    QCOMPARE(title->defaultTextColor(), titleColor);
}

void tst_STNodeName::paintsItsTextLight()
{
    TitleDesk desk(QStringLiteral("Event"));
    QVERIFY(hasColor(desk.image(), titleColor));
}

void tst_STNodeName::clickSelectsAll_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one word") << QStringLiteral("Event");
    QTest::newRow("several lines") << QStringLiteral("Two\nlines");
}

void tst_STNodeName::clickSelectsAll()
{
    QFETCH(QString, text);
    TitleDesk desk(text);
    desk.click(desk.middle());
    QVERIFY(desk.title->hasFocus());
    QCOMPARE(desk.title->textCursor().selection().toPlainText(), text);
}

void tst_STNodeName::typingAfterAClickReplacesTheTitle()
{
    TitleDesk desk(QStringLiteral("Event"));
    desk.click(desk.middle());
    desk.type(QStringLiteral("Storm"));
    QCOMPARE(desk.title->toPlainText(), QStringLiteral("Storm"));
}

void tst_STNodeName::clickOnAnEmptyTitleSelectsNothing()
{
    TitleDesk desk{QString()};
    desk.click(desk.middle());
    QVERIFY(desk.title->hasFocus());
    QCOMPARE(desk.title->textCursor().hasSelection(), false);
    desk.type(QStringLiteral("New"));
    QCOMPARE(desk.title->toPlainText(), QStringLiteral("New"));
}

void tst_STNodeName::leavingClearsTheSelection()
{
    TitleDesk desk(QStringLiteral("Event"));
    desk.click(desk.middle());
    const int position = desk.title->textCursor().position();
    desk.title->clearFocus();
    QCOMPARE(desk.title->textCursor().hasSelection(), false);
    QCOMPARE(desk.title->textCursor().position(), position);
    QCOMPARE(desk.title->toPlainText(), QStringLiteral("Event"));
}

void tst_STNodeName::panelIsPaintedOnlyWhileEditing()
{
    TitleDesk desk(QStringLiteral("Event"));
    const QPointF beside = desk.title->sceneBoundingRect().topLeft() + QPointF(1, 12); // in the margin
    QCOMPARE(colorAt(desk.scene, beside), QColor(0, 0, 0));
    desk.edit(desk.title);
    QCOMPARE(colorAt(desk.scene, beside), QColor(38, 38, 38)); // white with an alpha of 38, on black
    desk.title->clearFocus();
    QCOMPARE(colorAt(desk.scene, beside), QColor(0, 0, 0));
}

void tst_STNodeName::panelHasRoundedCornersAndNoFrame()
{
    TitleDesk desk(QStringLiteral("Event"));
    desk.edit(desk.title);
    const QImage image = desk.image();
    QCOMPARE(image.pixelColor(0, 0), QColor(0, 0, 0));
    const int right = int(desk.title->boundingRect().width()) - 8;
    for (int x = 8; x < right; ++x)
        QCOMPARE(image.pixelColor(x, 0), QColor(38, 38, 38));
}

void tst_STNodeName::titleThatFitsIsShownWhole_data()
{
    QTest::addColumn<double>("width");
    QTest::newRow("no limit yet") << 0.0;
    QTest::newRow("room for all") << 2000.0;
}

void tst_STNodeName::titleThatFitsIsShownWhole()
{
    QFETCH(double, width);
    STNodeName title(nullptr);
    title.setAvailableWidth(width);
    title.setPlainText(longTitle);
    QCOMPARE(title.boundingRect().size(), title.document()->size());
    QCOMPARE(title.toolTip(), QString());
}

void tst_STNodeName::longTitleShowsItsBeginningAndAnEllipsis_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hasToBeCut");
    QTest::newRow("long line") << longTitle << longTitle;
    QTest::newRow("one long word") << QString(100, QLatin1Char('m')) << QString(100, QLatin1Char('m'));
    QTest::newRow("several lines") << QStringLiteral("First\nsecond") << QStringLiteral("First\u2026");
    QTest::newRow("several long lines") << longTitle + QLatin1Char('\n') + longTitle << longTitle;
    QTest::newRow("line break at the end") << QStringLiteral("First\n") << QStringLiteral("First\u2026");
    QTest::newRow("first line empty") << QStringLiteral("\nsecond") << QStringLiteral("\u2026");
}

void tst_STNodeName::longTitleShowsItsBeginningAndAnEllipsis()
{
    QFETCH(QString, text);
    QFETCH(QString, hasToBeCut);
    TitleDesk desk(text);
    desk.title->setAvailableWidth(200);
    const QRectF outline = desk.title->boundingRect();
    QCOMPARE(outline.topLeft(), QPointF(0, 0));
    QCOMPARE(outline.width(), 200.0);
    QVERIFY(outline.height() < 34 - 3); // it stays inside the header
    QCOMPARE(desk.title->toolTip(), text);
    QCOMPARE(desk.title->toPlainText(), text);
    const QImage shown = desk.image();
    QVERIFY(paintedColumns(shown).second <= 200);

    // It looks like a title that has the shortened text and room for it.
    const QString shortened = shownIn200(hasToBeCut, *desk.title);
    QVERIFY(shortened.endsWith(QChar(0x2026)));
    TitleDesk reference(shortened);
    const QImage expected = reference.image();
    QVERIFY(hasColor(expected, titleColor));
    const auto shownColumns = paintedColumns(shown);
    const auto expectedColumns = paintedColumns(expected);
    QCOMPARE(shownColumns, expectedColumns);
}

void tst_STNodeName::longTitleIsShownWholeWhileEdited()
{
    TitleDesk desk(longTitle);
    const QImage whole = desk.image();
    desk.title->setAvailableWidth(200);
    const QImage shortened = desk.image();
    QVERIFY(shortened != whole);
    desk.edit(desk.title);
    QCOMPARE(desk.title->boundingRect().size(), desk.title->document()->size());
    QVERIFY(paintedColumns(desk.image()).second > 300);
    desk.title->clearFocus();
    QCOMPARE(desk.title->boundingRect().width(), 200.0);
    QCOMPARE(desk.image(), shortened);
    desk.title->setAvailableWidth(0);
    QCOMPARE(desk.image(), whole);
}

// Titles that differ only in what is cut off look alike, yet the tool tip has to tell them apart.
void tst_STNodeName::toolTipFollowsTheHiddenEnd()
{
    STNodeName title(nullptr);
    title.setAvailableWidth(200);
    title.setPlainText(longTitle);
    QCOMPARE(title.toolTip(), longTitle);
    title.setPlainText(longTitle + QStringLiteral(" at all"));
    QCOMPARE(title.toolTip(), longTitle + QStringLiteral(" at all"));
}

void tst_STNodeName::moreWidthShowsMore()
{
    TitleDesk desk(longTitle);
    desk.title->setAvailableWidth(150);
    const int narrow = paintedColumns(desk.image()).second;
    desk.title->setAvailableWidth(300);
    const int wide = paintedColumns(desk.image()).second;
    QVERIFY(narrow <= 150);
    QVERIFY(wide > 200 && wide <= 300);
    desk.title->setAvailableWidth(2000);
    QCOMPARE(desk.title->toolTip(), QString());
}

void tst_STNodeName::shorteningATitleEndsTheEllipsis()
{
    STNodeName title(nullptr);
    title.setAvailableWidth(200);
    title.setPlainText(longTitle);
    title.setPlainText(QStringLiteral("Short"));
    QCOMPARE(title.boundingRect().size(), title.document()->size());
    QCOMPARE(title.toolTip(), QString());
}

void tst_STNodeName::shortenedTitleIsHitOnlyWhereItIsShown()
{
    TitleDesk desk(longTitle);
    const QPointF inside = desk.title->scenePos() + QPointF(190, 10);
    const QPointF outside = desk.title->scenePos() + QPointF(300, 10);
    QCOMPARE(desk.scene.itemAt(outside, QTransform()), desk.title);
    desk.title->setAvailableWidth(200);
    QCOMPARE(desk.scene.itemAt(inside, QTransform()), desk.title);
    QCOMPARE(desk.scene.itemAt(outside, QTransform()), nullptr);
    desk.edit(desk.title);
    QCOMPARE(desk.scene.itemAt(outside, QTransform()), desk.title);
    desk.title->clearFocus();
    QCOMPARE(desk.scene.itemAt(outside, QTransform()), nullptr);
}

void tst_STNodeName::canvasIsRepaintedWhereATitleIsCutOff_data()
{
    QTest::addColumn<bool>("edited");
    QTest::newRow("when it is left") << true;
    QTest::newRow("when it gets less room") << false;
}

void tst_STNodeName::canvasIsRepaintedWhereATitleIsCutOff()
{
    QFETCH(bool, edited);
    TitleDesk desk(longTitle);
    if (edited) {
        desk.title->setAvailableWidth(200);
        desk.edit(desk.title);
    }
    const QPointF end = desk.title->sceneBoundingRect().center() + QPointF(120, 0);
    bool repainted = false;
    connect(&desk.scene, &QGraphicsScene::changed, &desk.view, [&](const QList<QRectF> &areas) {
        for (const QRectF &area : areas)
            repainted = repainted || area.contains(end);
    });
    // What the text looked like before is on the screen and told.
    desk.title->update();
    QTRY_VERIFY(repainted);
    repainted = false;
    if (edited)
        desk.title->clearFocus();
    else
        desk.title->setAvailableWidth(200);
    QTRY_VERIFY(repainted);
}

// A title is no markup, although a tool tip may be.
void tst_STNodeName::toolTipShowsMarkupAsTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("looksLikeMarkup");
    QTest::newRow("tag") << QStringLiteral("<b>Storm</b> ") + longTitle << true;
    QTest::newRow("entity") << QStringLiteral("a &lt; b ") + longTitle << true;
    QTest::newRow("ampersand") << QStringLiteral("Rain & \"wind\" ") + longTitle << false;
    QTest::newRow("less than") << QStringLiteral("1 < 2 ") + longTitle << false;
}

void tst_STNodeName::toolTipShowsMarkupAsTyped()
{
    QFETCH(QString, text);
    QFETCH(bool, looksLikeMarkup);
    STNodeName title(nullptr);
    title.setAvailableWidth(200);
    title.setPlainText(text);
    QCOMPARE(Qt::mightBeRichText(title.toolTip()), looksLikeMarkup); // how a tool tip takes its text
    QString shown = title.toolTip();
    if (looksLikeMarkup)
        shown = QTextDocumentFragment::fromHtml(shown).toPlainText();
    QCOMPARE(shown, text);
}

QTEST_MAIN(tst_STNodeName)
#include "tst_stnodename.moc"
