#include "items/stlineedit.h"

#include "items/detail.h"
#include "items/qtinternals.h"
#include "items/resizeobserver.h"
#include "items/textediting.h"
#include "items/textmeasure.h"

#include <QFocusEvent>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextDocument>

#include <utility>

namespace {
constexpr double documentMargin = 15.0;
constexpr double panelRadius = 5.0;
constexpr QColor backgroundColor(0xf5, 0xf5, 0xf5);
constexpr QColor textColor(0x34, 0x34, 0x34);
} // namespace

STLineEdit::STLineEdit(const QString &text, double textWidth, QGraphicsItem *parent, TextMaking making)
    : QGraphicsTextItem(parent), width(textWidth)
{
    if (making == TextMaking::atOnce)
        make();
    else
        TextEditing::takeKeys(*this);
    setText(text);
    placeholder = text;
    placeholderShown = true;
}

const QFont &STLineEdit::textFont()
{
    static const QFont font = [] {
        QFont regular(QStringLiteral("Titillium Web"), 14);
        regular.setItalic(false);
        regular.setLetterSpacing(QFont::AbsoluteSpacing, 1.4);
        return regular;
    }();
    return font;
}

void STLineEdit::make()
{
    if (!late.isLate())
        return;
    const QString text = late.take();
    setTextInteractionFlags(Qt::TextEditorInteraction);
    QtInternals::takePlainTextOnly(*this);
    setFont(textFont());
    setDefaultTextColor(placeholderColor);
    document()->setTextWidth(width);
    document()->setDocumentMargin(documentMargin);
    if (!text.isNull()) {
        setDefaultTextColor(textColor);
        if (LongText::isLong(text))
            whole = text;
        setPlainText(LongText::shown(text));
    }
    updateRect();
    // Made first of all listeners: whoever hears of a change after this already sees the new outline.
    connect(document(), &QTextDocument::contentsChanged, this, &STLineEdit::textChanged);
}

void STLineEdit::makeWhole()
{
    make();
    if (whole.isNull())
        return;
    const std::function<void()> listener = std::exchange(textListener, nullptr); // the text stays what it is
    setPlainText(std::exchange(whole, QString()));
    textListener = listener;
}

void STLineEdit::setText(const QString &text)
{
    if (text != placeholder)
        placeholderShown = false;
    if (!late.canKeep(text)) {
        make();
        if (text != placeholder)
            setDefaultTextColor(textColor);
        whole = LongText::isLong(text) ? text : QString();
        setPlainText(LongText::shown(text));
        return;
    }
    keepLate(text, QRectF(QPointF(), sizeOf(text, width)));
}

QSizeF STLineEdit::sizeOf(const QString &text, double width)
{
    return TextMeasure::documentSize(LongText::shown(text), textFont(), width, documentMargin);
}

void STLineEdit::removePlaceholder()
{
    setDefaultTextColor(textColor);
    placeholderShown = false;
    if (text() == placeholder)
        setText(QString());
}

void STLineEdit::setMeasuredText(const QString &text, const QRectF &place)
{
    if (late.canKeep(text))
        keepLate(text, place);
    else
        setText(text);
}

void STLineEdit::keepLate(const QString &text, const QRectF &place)
{
    late.keep(text.isNull() ? QStringLiteral("") : text, place);
    bars.forget();
    setRect(place);
    if (textListener)
        textListener();
}

QString STLineEdit::text() const
{
    if (late.isLate())
        return late.text();
    return whole.isNull() ? TextEditing::exactText(*this) : whole;
}

void STLineEdit::textChanged()
{
    bars.forget();
    updateRect();
    if (textListener)
        textListener();
}

void STLineEdit::setTextWidth(double newWidth)
{
    make();
    width = newWidth;
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
    if (late.isLate()) // it was measured when the text was set
        return;
    const QTextDocument *text = document();
    setRect(QRectF(0, 0, qMax(text->textWidth(), text->idealWidth()), text->size().height()));
}

QRectF STLineEdit::boundingRect() const
{
    return rect.width() > 0 && rect.height() > 0 ? rect : QGraphicsTextItem::boundingRect();
}

// Until there is a document the base knows of no place that the text takes.
QPainterPath STLineEdit::shape() const
{
    if (!late.isLate())
        return QGraphicsTextItem::shape();
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

bool STLineEdit::contains(const QPointF &point) const
{
    return late.isLate() ? boundingRect().contains(point) : QGraphicsTextItem::contains(point);
}

void STLineEdit::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    make();
    const QStyleOptionGraphicsItem unframed = TextEditing::withoutFocusFrame(*option);
    Detail::fillRoundedRect(*painter, boundingRect(), panelRadius, backgroundColor);
    QGraphicsTextItem::paint(painter, &unframed, widget);
}

void STLineEdit::paintGreeked(QPainter &painter, GreekedText &bars, const QString &text, const QRectF &place,
                              double ground)
{
    QColor color = backgroundColor;
    color.setAlphaF(float(ground));
    painter.fillRect(place, color);
    bars.paint(painter, text, textFont(),
               place.adjusted(documentMargin, documentMargin, -documentMargin, -documentMargin), textColor);
}

void STLineEdit::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsTextItem::mousePressEvent(event);
    removePlaceholder();
}

bool STLineEdit::sceneEvent(QEvent *event)
{
    if (TextEditing::needsDocument(*event))
        make();
    if (TextEditing::beginsEditing(*event))
        makeWhole();
    return TextEditing::claimKeys(event) || QGraphicsTextItem::sceneEvent(event);
}

void STLineEdit::keyPressEvent(QKeyEvent *event)
{
    if (!TextEditing::redoByKey(*this, event))
        QGraphicsTextItem::keyPressEvent(event);
    updateRect();
}

void STLineEdit::dropEvent(QGraphicsSceneDragDropEvent *event)
{
    if (event->mimeData() && !event->mimeData()->text().isEmpty())
        removePlaceholder();
    QGraphicsTextItem::dropEvent(event);
}

void STLineEdit::focusOutEvent(QFocusEvent *event)
{
    TextEditing::clearSelection(*this);
    QGraphicsTextItem::focusOutEvent(event);
    updateRect();
}
