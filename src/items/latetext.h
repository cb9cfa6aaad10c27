#pragma once

#include <QRectF>
#include <QString>

/// When a text item makes its document and the control that edits it.
///
/// They cost many times what the rest of a node costs, in time and in memory, and most texts of a large graph
/// are never on screen. A text that is made when needed answers for its size and its text all the same.
enum class TextMaking {
    atOnce,
    whenNeeded, // when it is painted, gets an event or is asked for by whoever wants to edit it
};

/// Texts that take a document too long: one of a megabyte keeps it busy for half a minute. Until somebody is
/// about to edit such a text, its beginning is shown in its place.
namespace LongText {

/// Whether the text is one of those.
bool isLong(const QString &text);
/// What is shown of it, with an ellipsis at its end; the text itself if it is not long.
QString shown(const QString &text);

} // namespace LongText

/// A text that is known and measured but has no document yet.
///
/// Whoever shows it asks here while isLate(), makes the document of what take() gives, and asks the document
/// from then on.
class LateText
{
public:
    /// Whether there is no document yet: at first, and until take().
    bool isLate() const { return late; }
    /// Whether that text can wait for a document: one would hold it unchanged, or it is long.
    static bool canWait(const QString &text);
    /// Whether that text can wait here.
    bool canKeep(const QString &text) const { return late && canWait(text); }
    /// Keeps a text and the place that its document would take; it is late again if it was not.
    void keep(const QString &text, const QRectF &place);
    /// What was kept; null and empty if nothing was, and after take().
    const QString &text() const { return keptText; }
    const QRectF &place() const { return keptPlace; }
    /// The text, for the document that is made now: it is not late any more, and nothing stays here.
    QString take();

private:
    bool late = true;
    QString keptText;
    QRectF keptPlace;
};
