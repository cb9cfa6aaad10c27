#include "items/stnodename.h"

#include "items/textediting.h"

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTextCursor>
#include <QTextDocument>

namespace {
constexpr int focusAlpha = 38;
constexpr double focusRadius = 5.0;

/// A tool tip that looks like markup would be shown as such; any other is shown as it stands.
QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}
} // namespace

STNodeName::STNodeName(QGraphicsItem *parent) : QGraphicsTextItem(parent)
{
    QFont titleFont(QStringLiteral("Inria Sans"), 13, QFont::Bold);
    titleFont.setItalic(false);
    setFont(titleFont);
    setDefaultTextColor(textColor);
    setTextInteractionFlags(Qt::TextEditorInteraction);
    TextEditing::takePlainTextOnly(*this);
    connect(document(), &QTextDocument::contentsChanged, this, &STNodeName::updateShortText);
}

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
    const QString text = toPlainText();
    const double room = availableWidth - 2 * document()->documentMargin();
    const QFontMetricsF metrics(font());
    const QString firstLine = text.section(QLatin1Char('\n'), 0, 0);
    QString shortened;
    if (room > 0 && firstLine.size() < text.size())
        shortened = metrics.elidedText(firstLine + QChar(0x2026), Qt::ElideRight, room);
    else if (room > 0 && document()->idealWidth() > availableWidth)
        shortened = metrics.elidedText(text, Qt::ElideRight, room);
    setToolTip(shortened.isNull() ? QString() : asToolTip(text)); // the hidden end may have changed alone
    if (shortened == shortText && shortened.isNull() == shortText.isNull())
        return;
    prepareGeometryChange();
    shortText = shortened;
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
    const QStyleOptionGraphicsItem unframed = TextEditing::withoutFocusFrame(*option);
    if (hasFocus()) {
        focusColor.setAlpha(focusAlpha);
        painter->setPen(Qt::NoPen);
        painter->setBrush(focusColor);
        painter->drawRoundedRect(boundingRect(), focusRadius, focusRadius);
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

bool STNodeName::sceneEvent(QEvent *event)
{
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
