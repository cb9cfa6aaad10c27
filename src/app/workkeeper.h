#pragma once

#include "app/autosavefolder.h"
#include "app/former.h"
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
    {
        KeptCopies::beReady();
    }

    /// Writes all tabs to that path; false if they could not be written.
    bool saveTo(const QString &path);
    /// Replaces all tabs by those of the file.
    void loadFrom(const QString &path);
    /// Discards all tabs, and forgets the path.
    void startAnew();
    /// To be called before something of the document leaves the window without being saved.
    void keep(KeptCopies::Occasion occasion);
    /// The same, without a notice and its widget.
    void keepWithoutWords(KeptCopies::Occasion occasion) const { keepCopy(occasion); }
    void autosave();

private:
    /// Both without a path if there was nothing to keep; the second lets a lack of memory pass.
    KeptCopies::Kept keepCopy(KeptCopies::Occasion occasion) const;
    KeptCopies::Kept copyUnsaved(KeptCopies::Occasion occasion) const;
    /// What comes of it, also if that is nothing.
    template <typename Keeping>
    KeptCopies::Kept asFarAsMemoryLasts(const Keeping &keeping) const;
    /// What stands in that file and is not of this window; without a path if there is nothing like that.
    struct Others
    {
        KeptCopies::Kept kept;
        bool wouldBeLost = false; // it is nowhere else
        Former former;            // what may be done with it as it is
    };
    Others keepWhatStandsThere(const QString &path) const;
    void tell(const KeptCopies::Kept &kept);

    SceneDocument &document;
    Notices &notices;
    KeptCopies copies; // whose folder is asked for once: later may be as the program exits
    AutosaveFolder autosaves;
    QString failedPath; // of the last save that failed, until its work has left the window
    QString failedWhy;
};
