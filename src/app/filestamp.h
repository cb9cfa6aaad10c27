#pragma once

#include <QtGlobal>

#include <array>
#include <optional>

class QFileDevice;
class QString;

/// Which file it is and when it was last changed, as the system tells without reading it. A file with an
/// equal stamp holds the same, unless somebody wrote as many bytes into it within one tick of the file
/// system's clock; where the system tells too little no two are equal.
class FileStamp
{
public:
    FileStamp() = default; // of no file
    /// Of the file at the end of all links.
    static FileStamp of(const QString &path);
    static FileStamp of(const QFileDevice &openFile);

    /// Whether the system has told of a file at all.
    bool isKnown() const { return told.has_value(); }
    /// Whether it is the same file and has not been written to since. Unlike the comparison of all it does
    /// not look at when its properties were changed, as its name is by being moved.
    bool holdsTheSameAs(const FileStamp &other) const;
    bool operator==(const FileStamp &other) const { return told && told == other.told; }

private:
    // Device, inode, size, and the last changes of content and properties in seconds and nanoseconds.
    std::optional<std::array<qint64, 7>> told;
};
