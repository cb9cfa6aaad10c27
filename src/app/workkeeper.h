#pragma once

#include "app/autosavefolder.h"
#include "app/keptcopies.h"

#include <QString>

class Notices;
class SceneDocument;

/// Saves and opens a window's document, keeps a copy of what would be lost when it leaves the window, and
/// lets the user know what came of it. Owned by the window, which asks the questions.
class WorkKeeper
{
public:
    /// Both must outlive this object.
    WorkKeeper(SceneDocument &sceneDocument, Notices &windowNotices)
        : document(sceneDocument), notices(windowNotices)
    {}

    /// Writes all tabs to that path; false if they could not be written.
    bool saveTo(const QString &path);
    /// Replaces all tabs by those of the file.
    void loadFrom(const QString &path);
    /// Discards all tabs, and forgets the path.
    void startAnew();
    /// To be called before something of the document leaves the window without being saved.
    void keep(KeptCopies::Occasion occasion);
    void autosave();

private:
    /// Both without a path if there was nothing to keep; the second lets a lack of memory pass.
    KeptCopies::Kept keepCopy(KeptCopies::Occasion occasion) const;
    KeptCopies::Kept copyUnsaved(KeptCopies::Occasion occasion) const;
    KeptCopies::Kept keepWhatStandsThere(const QString &path) const;
    void tell(const KeptCopies::Kept &kept);

    SceneDocument &document;
    Notices &notices;
    AutosaveFolder autosaves;
    QString failedPath; // of the last save that failed
    QString failedWhy;
};
