#pragma once

#include "app/documentformat.h"
#include "app/filestamp.h"
#include "app/former.h"

#include <QString>

#include <functional>

class DurableFile;
class StoryTabs;

/// What came of writing a file.
struct Saving
{
    QString trouble;          // why it could not be written, empty if it was
    QString rescue;           // another file that holds all of it all the same, else empty
    QString old;              // where what stood there was put, if it was put by
    bool hasBegun = false;    // the file could be opened
    bool isOvertaken = false; // another program has written to the file after it was looked at
};

/// What is to become of the file and what stands in it.
struct Replacing
{
    QString trouble; // why it must not be replaced, empty if it may
    Former former;
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
    /// Whether those are the bytes that were last read from a file or written to one. Those of a damaged
    /// file never are, for the tabs do not hold all of it.
    bool isOnDisk(const QByteArray &content) const;
    /// Whether that is of the file that was last read as a whole or written, and nobody has changed it since.
    bool isUntouched(const FileStamp &stamp) const { return stamp == stampOnDisk; }
    /// Writes all tabs to that file, whole or not at all. The document's own path stays what it is.
    /// `replacing` is called when it is certain that the file can be written, and once more if another
    /// program writes to it afterwards.
    Saving saveTo(const QString &file, const std::function<Replacing()> &replacing = {});
    /// Replaces all tabs by those of the file, which becomes the document; `leaving` is called before the
    /// tabs go. A damaged file gives what is in it, and one that cannot be read to its end changes nothing.
    Opening loadFrom(const QString &file, const std::function<void()> &leaving = {});
    /// Discards all tabs, and forgets the path.
    void clear();

private:
    Opening read(const QString &file, const QByteArray &content);
    Saving trySaveTo(const QString &file, const std::function<Replacing()> &replacing);
    Saving writeTo(DurableFile &file);
    void remember(const QByteArray &content, const FileStamp &stamp);
    void forget();

    StoryTabs &tabs;
    QString keptAt;
    QByteArray onDisk; // the hash of what was last read as a whole or written; empty for none
    FileStamp stampOnDisk;
};
