#include "items/textediting.h"

#include <QGraphicsTextItem>
#include <QKeyEvent>
#include <QTextCursor>
#include <QTextDocument>

namespace TextEditing {

void takeKeys(QGraphicsTextItem &item)
{
    item.setFlags(item.flags() | QGraphicsItem::ItemIsFocusable | QGraphicsItem::ItemAcceptsInputMethod);
}

bool needsDocument(const QEvent &event)
{
    // Every item of a scene hears when its window comes to the front or leaves it.
    return event.type() != QEvent::WindowActivate && event.type() != QEvent::WindowDeactivate;
}

bool beginsEditing(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::FocusIn:
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::GraphicsSceneMousePress:
    case QEvent::GraphicsSceneMouseDoubleClick:
    case QEvent::GraphicsSceneContextMenu:
    case QEvent::GraphicsSceneDrop:
        return true;
    default:
        return false;
    }
}

bool isEditingKey(const QKeyEvent &key)
{
    constexpr QKeySequence::StandardKey editing[] = {
        QKeySequence::Undo,  QKeySequence::Redo,      QKeySequence::Copy,   QKeySequence::Cut,
        QKeySequence::Paste, QKeySequence::SelectAll, QKeySequence::Delete, QKeySequence::Backspace};
    bool edits = key.modifiers() == Qt::ControlModifier && key.key() == Qt::Key_Y;
    for (const QKeySequence::StandardKey sequence : editing)
        edits = edits || key.matches(sequence);
    return edits;
}

bool claimKeys(QEvent *event)
{
    if (event->type() != QEvent::ShortcutOverride || !isEditingKey(*static_cast<QKeyEvent *>(event)))
        return false;
    event->accept();
    return true;
}

bool redoByKey(QGraphicsTextItem &item, QKeyEvent *event)
{
    if (event->modifiers() != Qt::ControlModifier || event->key() != Qt::Key_Y)
        return false;
    QTextCursor cursor = item.textCursor();
    item.document()->redo(&cursor);
    item.setTextCursor(cursor);
    event->accept();
    return true;
}

QString exactText(const QGraphicsTextItem &item)
{
    return item.document()->toRawText().replace(QChar(QChar::ParagraphSeparator), QLatin1Char('\n'));
}

void clearSelection(QGraphicsTextItem &item)
{
    QTextCursor cursor = item.textCursor();
    cursor.clearSelection();
    item.setTextCursor(cursor);
}

QStyleOptionGraphicsItem withoutFocusFrame(const QStyleOptionGraphicsItem &option)
{
    QStyleOptionGraphicsItem unframed(option);
    unframed.state &= ~QStyle::State_HasFocus;
    return unframed;
}

} // namespace TextEditing
