#include "items/stnodename.h"

#include "items/qtinternals.h"
#include "items/textediting.h"
#include "items/textmeasure.h"

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace {
constexpr int focusAlpha = 38;
constexpr double focusRadius = 5.0;
constexpr int placeAlpha = 200; // of the line where a title could be
constexpr double placeWidth = 1.5;
constexpr double documentMargin = 4.0; // what a document has by itself
constexpr double unlimited = -1.0;     // a title is not wrapped

const QFont &titleFont()
{
    static const QFont font = [] {
        QFont bold(QStringLiteral("Inria Sans"), 13, QFont::Bold);
        bold.setItalic(false);
        return bold;
    }();
    return font;
}

/// A tool tip that looks like markup would be shown as such; any other is shown as it stands.
QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}
} // namespace

STNodeName::STNodeName(QGraphicsItem *parent, TextMaking making) : QGraphicsTextItem(parent)
{
    if (making == TextMaking::atOnce)
        make();
    else
        TextEditing::takeKeys(*this);
}

void STNodeName::make()
{
    if (!late.isLate())
        return;
    const QString title = late.take();
    if (LongText::isLong(title))
        whole = title;
    setFont(titleFont());
    setDefaultTextColor(textColor);
    setTextInteractionFlags(Qt::TextEditorInteraction);
    QtInternals::takePlainTextOnly(*this);
    if (!title.isEmpty())
        setPlainText(LongText::shown(title));
    connect(document(), &QTextDocument::contentsChanged, this, &STNodeName::updateShortText);
}

void STNodeName::makeWhole()
{
    make();
    if (!whole.isNull())
        setPlainText(std::exchange(whole, QString()));
}

void STNodeName::setTitle(const QString &text)
{
    if (!late.canKeep(text)) {
        make();
        whole = LongText::isLong(text) ? text : QString();
        setPlainText(LongText::shown(text));
        return;
    }
    prepareGeometryChange();
    const QSizeF size =
        TextMeasure::documentSize(LongText::shown(text), titleFont(), unlimited, documentMargin);
    late.keep(text, QRectF(QPointF(), size));
    updateShortText();
}

QString STNodeName::title() const
{
    if (late.isLate())
        return late.text();
    return whole.isNull() ? TextEditing::exactText(*this) : whole;
}

/// That of the whole title.
QSizeF STNodeName::textSize() const { return late.isLate() ? late.place().size() : document()->size(); }

void STNodeName::setAvailableWidth(double width)
{
    if (width == availableWidth)
        return;
    prepareGeometryChange(); // a shortened title is as wide as it may be
    availableWidth = width;
    updateShortText();
}

void STNodeName::updateShortText()
{
    bars.forget();
    const QString text = LongText::shown(title());
    const double room = availableWidth - 2 * documentMargin;
    const QFontMetricsF metrics(titleFont());
    const auto endsLine = [](QChar unit) {
        return unit == QLatin1Char('\n') || unit == QChar::LineSeparator;
    };
    const QString firstLine(text.cbegin(),
                            std::find_if(text.cbegin(), text.cend(), endsLine) - text.cbegin());
    QString shortened;
    if (room > 0 && firstLine.size() < text.size())
        shortened = metrics.elidedText(firstLine + QChar(0x2026), Qt::ElideRight, room);
    else if (room > 0 && textSize().width() > availableWidth)
        shortened = metrics.elidedText(text, Qt::ElideRight, room);
    setToolTip(shortened.isNull() ? QString() : asToolTip(text)); // the hidden end may have changed alone
    const bool blank = room > 0 && shortened.isNull() && text.trimmed().isEmpty();
    if (shortened == shortText && shortened.isNull() == shortText.isNull() && blank == isBlank)
        return;
    prepareGeometryChange();
    shortText = shortened;
    isBlank = blank;
    update();
}

QRectF STNodeName::boundingRect() const
{
    if (isShortened())
        return headerPlace();
    const QRectF text = late.isLate() ? late.place() : QGraphicsTextItem::boundingRect();
    return isBlank ? text | headerPlace() : text;
}

/// One line over all the width that the header has for a title.
QRectF STNodeName::headerPlace() const
{
    return {0, 0, availableWidth, QFontMetricsF(titleFont()).height() + 2 * documentMargin};
}

QPainterPath STNodeName::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

bool STNodeName::contains(const QPointF &point) const { return boundingRect().contains(point); }

void STNodeName::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    make();
    const QStyleOptionGraphicsItem unframed = TextEditing::withoutFocusFrame(*option);
    paintBelow(painter);
    if (!isShortened()) {
        QGraphicsTextItem::paint(painter, &unframed, widget);
        return;
    }
    painter->setFont(titleFont());
    painter->setPen(defaultTextColor());
    painter->drawText(QPointF(documentMargin, documentMargin + QFontMetricsF(titleFont()).ascent()),
                      shortText);
}

void STNodeName::paintGreeked(QPainter &painter)
{
    bars.paint(painter, isShortened() ? shortText : LongText::shown(title()), titleFont(),
               boundingRect().adjusted(documentMargin, documentMargin, -documentMargin, -documentMargin),
               textColor);
}

/// While it is being edited, the panel; all of a title that is too long for the header is shown then,
/// whatever lies below it.
void STNodeName::paintBelow(QPainter *painter)
{
    if (hasFocus()) {
        focusColor.setAlpha(focusAlpha);
        painter->setPen(Qt::NoPen);
        painter->setBrush(shortText.isNull() ? focusColor : groundColor);
        painter->drawRoundedRect(boundingRect(), focusRadius, focusRadius);
    } else if (isBlank) {
        QColor lineColor = textColor;
        lineColor.setAlpha(placeAlpha);
        painter->setPen(QPen(lineColor, placeWidth));
        const QRectF place = headerPlace().adjusted(0, 0, 0, -documentMargin);
        painter->drawLine(place.bottomLeft(), place.bottomRight());
    }
}

void STNodeName::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    hand.begin();
    dragStart = QTextCursor();
    QGraphicsTextItem::mousePressEvent(event);
    if (toPlainText().isEmpty())
        return;
    QTextCursor all = textCursor();
    dragStart = all;
    all.select(QTextCursor::Document);
    setTextCursor(all);
}

// The framework takes every move for a drag, which would end the selection of all.
void STNodeName::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        if (!hand.isDragged(*event))
            return;
        if (!dragStart.isNull())
            setTextCursor(dragStart);
        dragStart = QTextCursor();
    }
    QGraphicsTextItem::mouseMoveEvent(event);
}

// The second of two quick presses: the framework has selected a word.
void STNodeName::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    hand.begin();
    dragStart = QTextCursor();
    QGraphicsTextItem::mouseDoubleClickEvent(event);
}

bool STNodeName::sceneEvent(QEvent *event)
{
    if (TextEditing::needsDocument(*event))
        make();
    if (TextEditing::beginsEditing(*event))
        makeWhole();
    return TextEditing::claimKeys(event) || QGraphicsTextItem::sceneEvent(event);
}

void STNodeName::keyPressEvent(QKeyEvent *event)
{
    if (!TextEditing::redoByKey(*this, event))
        QGraphicsTextItem::keyPressEvent(event);
}

void STNodeName::focusInEvent(QFocusEvent *event)
{
    prepareGeometryChange();
    editing = true;
    QGraphicsTextItem::focusInEvent(event);
}

void STNodeName::focusOutEvent(QFocusEvent *event)
{
    TextEditing::clearSelection(*this);
    QGraphicsTextItem::focusOutEvent(event);
    prepareGeometryChange();
    editing = false;
    update();
}
