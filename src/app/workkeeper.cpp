#include "app/workkeeper.h"

#include "app/notices.h"
#include "app/scenedocument.h"
#include "app/wording.h"

#include <QByteArray>

using Subject = Notices::Subject;

bool WorkKeeper::saveTo(const QString &path)
{
    const Saving saving = document.saveTo(path);
    if (!saving.trouble.isEmpty()) {
        failedPath = path;
        failedWhy = saving.trouble;
        notices.fail(Subject::save, Wording::notSaved(path, saving.trouble, saving.rescue));
        return false;
    }
    notices.succeed(Subject::save);
    notices.tell(Wording::saved(path, document.tabCount(), document.eventCount()));
    return true;
}

void WorkKeeper::loadFrom(const QString &path)
{
    KeptCopies::Kept kept;
    const Opening opening =
        document.loadFrom(path, [this, &kept] { kept = keepCopy(KeptCopies::Occasion::open); });
    if (!opening.trouble.isEmpty()) {
        notices.fail(Subject::opening, Wording::notOpened(path, opening.trouble));
        return;
    }
    notices.succeed(Subject::opening);
    notices.succeed(Subject::damage);
    if (opening.isWhole()) {
        tell(kept);
        return;
    }
    QString text = Wording::damaged(path, opening);
    if (!kept.path.isEmpty())
        text += QLatin1Char(' ') + Wording::of(kept);
    notices.fail(Subject::damage, text);
}

void WorkKeeper::startAnew()
{
    const KeptCopies::Kept kept = keepCopy(KeptCopies::Occasion::anew);
    document.clear();
    notices.succeed(Subject::damage);
    tell(kept);
}

void WorkKeeper::keep(KeptCopies::Occasion occasion) { tell(keepCopy(occasion)); }

void WorkKeeper::autosave()
{
    const AutosaveFolder::Copy copy = autosaves.keep(document);
    if (copy.trouble.isEmpty())
        notices.succeed(Subject::autosave);
    else
        notices.fail(Subject::autosave, Wording::notAutosaved(copy.path, copy.trouble));
}

/// Without a path if there was nothing to keep.
KeptCopies::Kept WorkKeeper::keepCopy(KeptCopies::Occasion occasion) const
{
    const QByteArray unsaved = document.unsavedBytes();
    return unsaved.isEmpty() ? KeptCopies::Kept() : KeptCopies().keep(unsaved, occasion);
}

void WorkKeeper::tell(const KeptCopies::Kept &kept)
{
    if (kept.path.isEmpty())
        return;
    if (!kept.trouble.isEmpty()) {
        notices.fail(Subject::keeping, Wording::of(kept));
        return;
    }
    notices.succeed(Subject::keeping);
    // What failed to be saved is not in this window any more, and one notice says it all.
    if (notices.hasFailed(Subject::save))
        notices.fail(Subject::save, Wording::notSaved(failedPath, failedWhy, kept.path));
    else
        notices.tell(Wording::of(kept));
}
