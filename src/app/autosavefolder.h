#pragma once

class SceneDocument;

/// Where a document is put by once a minute, each time as a new file that is named after the second.
namespace AutosaveFolder {

/// Writes one more copy, and says in the log what came of it.
void keep(const SceneDocument &document);

} // namespace AutosaveFolder
