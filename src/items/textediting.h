#pragma once

#include <QStyleOptionGraphicsItem>

class QEvent;
class QGraphicsTextItem;
class QKeyEvent;

/// What all texts that are edited in place have in common.
namespace TextEditing {

/// Makes an item that has no document yet get the focus and the keys, as every text that can be edited.
void takeKeys(QGraphicsTextItem &item);
/// Whether an item that gets the event has to have its document.
bool needsDocument(const QEvent &event);
/// Whether somebody is about to edit the item that gets the event: it is pressed or gets the keyboard or a
/// drop.
bool beginsEditing(const QEvent &event);
/// Whether the key edits a text wherever one has the keyboard: undo, copy, delete and the like.
bool isEditingKey(const QKeyEvent &key);
/// Keeps the keys that edit a text from the shortcuts of the window, which would change the graph instead.
/// True if the event was such a key; it is then accepted and needs no more handling.
bool claimKeys(QEvent *event);
/// Carries out Ctrl+Y, which the text itself knows only on some systems. True if the event was that key.
bool redoByKey(QGraphicsTextItem &item, QKeyEvent *event);
/// The text of an item, unit for unit, with a line feed between paragraphs. The item's own toPlainText()
/// would turn no-break spaces into spaces and line separators into line feeds.
QString exactText(const QGraphicsTextItem &item);
/// Ends the selection and leaves the cursor where it is.
void clearSelection(QGraphicsTextItem &item);
/// The option without the focus, so that no dashed frame is drawn around the text.
QStyleOptionGraphicsItem withoutFocusFrame(const QStyleOptionGraphicsItem &option);

} // namespace TextEditing
