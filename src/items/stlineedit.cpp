#include "items/stlineedit.h"

#include "items/resizeobserver.h"
#include "items/textediting.h"

#include <QFocusEvent>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QTextDocument>

namespace {
constexpr double documentMargin = 15.0;
constexpr double panelRadius = 5.0;
} // namespace

STLineEdit::STLineEdit(const QString &text, double textWidth, QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
{
    setTextInteractionFlags(Qt::TextEditorInteraction);
    TextEditing::takePlainTextOnly(*this);
    QFont textFont(QStringLiteral("Titillium Web"), 14);
    textFont.setItalic(false);
    textFont.setLetterSpacing(QFont::AbsoluteSpacing, 1.4);
    setFont(textFont);
    setDefaultTextColor(placeholderColor);
    setTextWidth(textWidth);
    // Made first of all listeners: whoever hears of a change after this already sees the new outline.
    connect(document(), &QTextDocument::contentsChanged, this, &STLineEdit::updateRect);
    setText(text);
    placeholder = text;
    placeholderShown = true;
}

void STLineEdit::setText(const QString &text)
{
    if (text != placeholder) {
        setDefaultTextColor(textColor);
        placeholderShown = false;
    }
    setPlainText(text);
}

void STLineEdit::setTextWidth(double width)
{
    document()->setTextWidth(width);
    document()->setDocumentMargin(documentMargin);
    updateRect();
}

void STLineEdit::setRect(const QRectF &newRect)
{
    if (newRect != rect) {
        ResizeObserver::tellAboutToResize(parentItem());
        prepareGeometryChange();
        rect = newRect;
        ResizeObserver::tellResized(parentItem());
    }
    update();
}

void STLineEdit::updateRect()
{
    const QTextDocument *text = document();
    setRect(QRectF(0, 0, qMax(text->textWidth(), text->idealWidth()), text->size().height()));
}

QRectF STLineEdit::boundingRect() const
{
    return rect.width() > 0 && rect.height() > 0 ? rect : QGraphicsTextItem::boundingRect();
}

void STLineEdit::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    const QStyleOptionGraphicsItem unframed = TextEditing::withoutFocusFrame(*option);
    painter->setPen(Qt::NoPen);
    painter->setBrush(backgroundColor);
    painter->drawRoundedRect(boundingRect(), panelRadius, panelRadius);
    QGraphicsTextItem::paint(painter, &unframed, widget);
}

void STLineEdit::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsTextItem::mousePressEvent(event);
    setDefaultTextColor(textColor);
    placeholderShown = false;
    if (toPlainText() == placeholder)
        setText(QString());
}

bool STLineEdit::sceneEvent(QEvent *event)
{
    return TextEditing::claimKeys(event) || QGraphicsTextItem::sceneEvent(event);
}

void STLineEdit::keyPressEvent(QKeyEvent *event)
{
    if (!TextEditing::redoByKey(*this, event))
        QGraphicsTextItem::keyPressEvent(event);
    updateRect();
}

void STLineEdit::focusOutEvent(QFocusEvent *event)
{
    TextEditing::clearSelection(*this);
    QGraphicsTextItem::focusOutEvent(event);
    updateRect();
}
