#pragma once

#include <QString>

class SceneDocument;

/// Where a document is put by once a minute, each time as a new file that is named after the second.
namespace AutosaveFolder {

/// The one below the user's documents.
QString usualFolder();

struct Copy
{
    QString path;
    QString trouble; // why it could not be written, else empty
};

/// Writes one more copy, and says in the log what came of it.
Copy keep(const SceneDocument &document);

} // namespace AutosaveFolder
