#pragma once

class QGraphicsTextItem;

/// What Qt can do and offers to nobody: each is reached by its name, and may be gone with the next version.
namespace QtInternals {

/// Makes whatever is pasted or dropped into an item that can be edited arrive as plain text. False if Qt
/// knows no such thing any more; formats are then shown until the text is made anew, and still not saved.
///
/// The property belongs to the item's control, which has no public class. A paste can be caught by key and by
/// drop, but that of the text's own menu goes straight to the control (tst_qtinternals), and to strip the
/// formats afterwards would be one more step to undo.
bool takePlainTextOnly(QGraphicsTextItem &item);

} // namespace QtInternals
