#pragma once

#include "app/filestamp.h"

#include <QString>

#include <optional>

class QDateTime;
class SceneDocument;

/// Where a window's document is put by once a minute, each time as a new file that is named after the second.
///
/// A name is taken only if nobody has it: another instance of the program may have been started in the same
/// second, and an hour may come twice. What this very object has written under the name of the same second
/// is replaced, unless somebody else has been at it.
class AutosaveFolder
{
public:
    struct Copy
    {
        QString path;
        QString trouble; // why it could not be written, else empty
        FileStamp stamp;
    };

    /// The one below the user's documents.
    static QString usualFolder();
    /// Writes one more copy, and says in the log what came of it.
    Copy keep(const SceneDocument &document);
    /// As above, at another moment than now; local time.
    Copy keepAt(const QDateTime &moment, const SceneDocument &document);

private:
    std::optional<Copy> replaceLast(const QString &nameOfOthers, const SceneDocument &document) const;

    QString last; // the path of the last copy, empty if there is none
    FileStamp lastStamp;
};
