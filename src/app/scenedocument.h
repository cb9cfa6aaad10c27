#pragma once

#include "app/documentformat.h"

#include <QString>

#include <functional>

class StoryTabs;

/// What came of writing a file.
struct Saving
{
    QString trouble; // why it could not be written, empty if it was
    QString rescue;  // another file that holds all of it all the same, else empty
};

/// What is in the tabs of a window as one file: its bytes, where it is kept, and reading and writing it.
///
/// Owned by the window, which asks the user for paths; says in the log what came of each. There is no
/// modified flag.
class SceneDocument
{
public:
    /// `storyTabs` must outlive this object.
    explicit SceneDocument(StoryTabs &storyTabs) : tabs(storyTabs) {}

    /// Where the document is kept, empty while it has no place yet.
    const QString &path() const { return keptAt; }
    void setPath(const QString &path) { keptAt = path; }

    int tabCount() const;
    /// In all tabs.
    int eventCount() const;
    /// All tabs as a file holds them.
    QByteArray bytes() const;
    /// As bytes(), without a line in the log, if they would be lost with the tabs: some tab holds an event,
    /// and they are not what was last read from a file or written to one. Else empty.
    QByteArray unsavedBytes() const;
    /// Whether those are the bytes that were last read from a file or written to one.
    bool isOnDisk(const QByteArray &content) const;
    /// Writes all tabs to that file, whole or not at all. The document's own path stays what it is.
    Saving saveTo(const QString &file);
    /// Replaces all tabs by those of the file, which becomes the document; `leaving` is called before the
    /// tabs go. A damaged file gives what is in it, and one that cannot be read to its end changes nothing.
    Opening loadFrom(const QString &file, const std::function<void()> &leaving = {});
    /// Discards all tabs, and forgets the path.
    void clear();

private:
    Opening read(const QString &file, const QByteArray &content);

    StoryTabs &tabs;
    QString keptAt;
    QByteArray onDisk; // the hash of what was last read or written
};
