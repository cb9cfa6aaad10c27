#pragma once

#include "app/keptcopies.h"

class QString;
class SceneDocument;

/// Saves and opens a window's document, and keeps a copy of what would be lost when it leaves the window.
/// Owned by the window, which asks the questions.
class WorkKeeper
{
public:
    /// `sceneDocument` must outlive this object.
    explicit WorkKeeper(SceneDocument &sceneDocument) : document(sceneDocument) {}

    /// Writes all tabs to that path; false if they could not be written.
    bool saveTo(const QString &path);
    /// Replaces all tabs by those of the file.
    void loadFrom(const QString &path);
    /// Discards all tabs, and forgets the path.
    void startAnew();
    /// To be called before something of the document leaves the window without being saved.
    void keep(KeptCopies::Occasion occasion);

private:
    SceneDocument &document;
};
