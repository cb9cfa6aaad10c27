#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QFile;
class StoryTabs;

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

    /// All tabs as a file holds them.
    QByteArray bytes() const;
    /// As bytes(), without a line in the log, if they would be lost with the tabs: some tab holds an event,
    /// and they are not what was last read from a file or written to one. Else empty.
    QByteArray unsavedBytes() const;
    /// Writes all tabs to that file, whole or not at all; returns why it did not, empty if it did. The
    /// document's own path stays what it is.
    QString saveTo(const QString &file);
    /// Replaces all tabs by those of the file, which becomes the document. A file that cannot be opened
    /// changes nothing; a damaged one gives what can be read of it. `leaving` is called before the tabs go.
    void loadFrom(const QString &file, const std::function<void()> &leaving = {});
    /// Discards all tabs, and forgets the path.
    void clear();

private:
    void read(QFile &file);

    StoryTabs &tabs;
    QString keptAt;
    QByteArray onDisk; // the hash of what was last read or written
};
