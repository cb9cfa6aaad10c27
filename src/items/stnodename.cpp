#include "items/stnodename.h"

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTextCursor>
#include <QTextDocument>

STNodeName::STNodeName(QGraphicsItem *parent) : QGraphicsTextItem(parent)
{
    QFont titleFont(QStringLiteral("Inria Sans"), 13, QFont::Bold);
    titleFont.setItalic(false);
    setFont(titleFont);
    setDefaultTextColor(QColor(QStringLiteral("#F5F5F5")));
    setTextInteractionFlags(Qt::TextEditorInteraction);
    connect(document(), &QTextDocument::contentsChanged, this, &STNodeName::updateShortText);
}

void STNodeName::setAvailableWidth(double width)
{
    if (width == availableWidth)
        return;
    availableWidth = width;
    updateShortText();
}

void STNodeName::updateShortText()
{
    const QString text = toPlainText();
    const double room = availableWidth - 2 * document()->documentMargin();
    const QFontMetricsF metrics(font());
    const QString firstLine = text.section(QLatin1Char('\n'), 0, 0);
    QString shortened;
    if (room > 0 && firstLine.size() < text.size())
        shortened = metrics.elidedText(firstLine + QChar(0x2026), Qt::ElideRight, room);
    else if (room > 0 && metrics.horizontalAdvance(text) > room)
        shortened = metrics.elidedText(text, Qt::ElideRight, room);
    if (shortened == shortText && shortened.isNull() == shortText.isNull())
        return;
    prepareGeometryChange();
    shortText = shortened;
    setToolTip(shortText.isNull() ? QString() : text);
    update();
}

QRectF STNodeName::boundingRect() const
{
    if (!isShortened())
        return QGraphicsTextItem::boundingRect();
    return {0, 0, availableWidth, QFontMetricsF(font()).height() + 2 * document()->documentMargin()};
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
    QStyleOptionGraphicsItem unframed(*option);
    unframed.state &= ~QStyle::State_HasFocus; // no dashed frame around the text
    if (hasFocus()) {
        focusColor.setAlpha(38);
        painter->setPen(Qt::NoPen);
        painter->setBrush(focusColor);
        painter->drawRoundedRect(boundingRect(), 5.0, 5.0);
    }
    if (!isShortened()) {
        QGraphicsTextItem::paint(painter, &unframed, widget);
        return;
    }
    const double inset = document()->documentMargin();
    painter->setFont(font());
    painter->setPen(defaultTextColor());
    painter->drawText(QPointF(inset, inset + QFontMetricsF(font()).ascent()), shortText);
}

void STNodeName::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsTextItem::mousePressEvent(event);
    if (toPlainText().isEmpty())
        return;
    QTextCursor all = textCursor();
    all.select(QTextCursor::Document);
    setTextCursor(all);
}

void STNodeName::focusInEvent(QFocusEvent *event)
{
    prepareGeometryChange();
    editing = true;
    QGraphicsTextItem::focusInEvent(event);
}

void STNodeName::focusOutEvent(QFocusEvent *event)
{
    QTextCursor plain = textCursor();
    plain.clearSelection();
    setTextCursor(plain);
    QGraphicsTextItem::focusOutEvent(event);
    prepareGeometryChange();
    editing = false;
    update();
}
