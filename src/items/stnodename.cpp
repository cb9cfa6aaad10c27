#include "items/stnodename.h"

#include "items/qtinternals.h"
#include "items/textediting.h"

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTextCursor>
#include <QTextDocument>

#include <utility>

namespace {
constexpr int focusAlpha = 38;
constexpr double focusRadius = 5.0;
constexpr int placeAlpha = 200; // of the line where a title could be
constexpr double placeWidth = 1.5;

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
    setFont(TitleLook::font());
    setDefaultTextColor(TitleLook::ink);
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
    late.keep(text, QRectF(QPointF(), TitleLook::sizeOf(text)));
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
    const QString text = title();
    const TitleLook present(text, textSize(), availableWidth);
    // The hidden end may have changed alone.
    setToolTip(present.isShortened() ? asToolTip(LongText::shown(text)) : QString());
    if (present == look)
        return;
    prepareGeometryChange();
    look = present;
    update();
}

QRectF STNodeName::boundingRect() const
{
    const QRectF text = late.isLate() ? late.place() : QGraphicsTextItem::boundingRect();
    return editing && look.isShortened() ? text : look.place(text, availableWidth);
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
    painter->setFont(TitleLook::font());
    painter->setPen(defaultTextColor());
    const double baseline = TitleLook::margin + QFontMetricsF(TitleLook::font()).ascent();
    painter->drawText(QPointF(TitleLook::margin, baseline), look.shortText);
}

void STNodeName::paintGreeked(QPainter &painter)
{
    look.paintGreeked(painter, bars, title(), boundingRect());
}

/// While it is being edited, the panel; all of a title that is too long for the header is shown then,
/// whatever lies below it.
void STNodeName::paintBelow(QPainter *painter)
{
    if (hasFocus()) {
        focusColor.setAlpha(focusAlpha);
        painter->setPen(Qt::NoPen);
        painter->setBrush(look.isShortened() ? groundColor : focusColor);
        painter->drawRoundedRect(boundingRect(), focusRadius, focusRadius);
    } else if (look.isBlank) {
        QColor lineColor = TitleLook::ink;
        lineColor.setAlpha(placeAlpha);
        painter->setPen(QPen(lineColor, placeWidth));
        const QRectF place = TitleLook::headerPlace(availableWidth).adjusted(0, 0, 0, -TitleLook::margin);
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
