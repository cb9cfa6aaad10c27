#include "app/workkeeper.h"

#include "app/memoryspare.h"
#include "app/notices.h"
#include "app/scenedocument.h"
#include "app/storing.h"
#include "app/wholefile.h"
#include "app/wording.h"

#include <QByteArray>
#include <QDebug>
#include <QFileInfo>

#include <cerrno>
#include <new>
#include <utility>

using Subject = Notices::Subject;

namespace {

/// What leaves a window is a last copy, too.
template <typename Keeping>
KeptCopies::Kept withSpareMemory(const Keeping &keeping)
{
    try {
        return keeping();
    } catch (const std::bad_alloc &) {
        const MemorySpare::Loan loan;
        return keeping();
    }
}

} // namespace

bool WorkKeeper::saveTo(const QString &path)
{
    Others others;
    const KeptCopies::Kept &other = others.kept;
    const Saving saving = document.saveTo(path, [&] {
        Others now = keepWhatStandsThere(path);
        if (now.kept.path.isEmpty())
            now.kept = others.kept; // of the look before
        others = now;
        return Replacing{others.wouldBeLost ? Wording::wouldBeLost(other) : QString(), others.former};
    });
    if (!saving.trouble.isEmpty()) {
        failedPath = path;
        failedWhy = saving.trouble;
        notices.fail(Subject::save, Wording::notSaved(path, saving.trouble, saving.rescue));
        return false;
    }
    notices.succeed(Subject::save);
    QString text = Wording::saved(path, document.tabCount(), document.eventCount());
    if (!other.path.isEmpty())
        text += QStringLiteral(". ") + Wording::ofOther(other);
    if (!saving.old.isEmpty())
        text += QStringLiteral(". ") + Wording::ofOther({saving.old, {}});
    if (!other.trouble.isEmpty()) {
        notices.fail(Subject::keeping, text);
        return true;
    }
    if (!other.path.isEmpty() || !saving.old.isEmpty())
        notices.succeed(Subject::keeping);
    notices.tell(text);
    return true;
}

void WorkKeeper::loadFrom(const QString &path)
{
    KeptCopies::Kept kept;
    const Opening opening = document.loadFrom(path, [this, &kept] {
        kept = withSpareMemory([this] { return copyUnsaved(KeptCopies::Occasion::open); });
    });
    if (!kept.path.isEmpty() && kept.trouble.isEmpty())
        notices.succeed(Subject::keeping);
    if (!opening.trouble.isEmpty()) {
        QString text = Wording::notOpened(path, opening.trouble);
        if (!kept.path.isEmpty())
            text += QLatin1Char(' ') + Wording::of(kept);
        notices.fail(Subject::opening, text);
        return;
    }
    notices.succeed(Subject::opening);
    notices.succeed(Subject::damage);
    if (opening.isWhole()) {
        tell(kept);
        return;
    }
    failedPath.clear(); // that work has left the window
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

template <typename Keeping>
KeptCopies::Kept WorkKeeper::asFarAsMemoryLasts(const Keeping &keeping) const
{
    try {
        return withSpareMemory(keeping);
    } catch (const std::bad_alloc &) {
        // It never got so far as to have a name.
        KeptCopies::Kept none{copies.folderPath() + QLatin1Char('/'), Storing::reason(ENOMEM)};
        qWarning() << "Failed to keep a copy:" << none.path << none.trouble;
        return none;
    }
}

KeptCopies::Kept WorkKeeper::keepCopy(KeptCopies::Occasion occasion) const
{
    return asFarAsMemoryLasts([this, occasion] { return copyUnsaved(occasion); });
}

KeptCopies::Kept WorkKeeper::copyUnsaved(KeptCopies::Occasion occasion) const
{
    const QByteArray unsaved = document.unsavedBytes();
    return unsaved.isEmpty() ? KeptCopies::Kept() : copies.keep(unsaved, occasion);
}

/// Another window or program may have saved into that file since this one has read it or written to it, or
/// the user may have chosen it to save over.
WorkKeeper::Others WorkKeeper::keepWhatStandsThere(const QString &path) const
{
    const FileStamp stamp = FileStamp::of(path);
    Others others;
    others.former = {KeptCopies::nameNow(KeptCopies::Occasion::other), stamp};
    if (document.isUntouched(stamp))
        return others;
    if (!QFileInfo(path).isFile()) {
        // Where something is the system does not always tell what.
        if (stamp.isKnown())
            others.former.known.reset();
        return others;
    }
    const WholeFile there(path);
    if (!there.trouble().isEmpty()) {
        others.former.known.reset();
        return others;
    }
    others.former.known = there.stamp();
    if (there.content().isEmpty() || document.isOnDisk(there.content()))
        return others;
    others.kept = asFarAsMemoryLasts(
        [this, &there] { return copies.keep(there.content(), KeptCopies::Occasion::other); });
    if (!others.kept.trouble.isEmpty()) {
        // The folder of the copies may be on another disk, or may not be written to.
        const KeptCopies::Kept beside = KeptCopies::keepBeside(path, there.content());
        others.wouldBeLost = !beside.trouble.isEmpty();
        if (!others.wouldBeLost)
            others.kept = beside;
    }
    return others;
}

void WorkKeeper::tell(const KeptCopies::Kept &kept)
{
    // Of this copy only: the next one is of other work, however long the notice stays.
    const QString failed = std::exchange(failedPath, {});
    if (kept.path.isEmpty())
        return;
    if (!kept.trouble.isEmpty()) {
        notices.fail(Subject::keeping, Wording::of(kept));
        return;
    }
    notices.succeed(Subject::keeping);
    // What failed to be saved is not in this window any more, and one notice says it all.
    if (!failed.isEmpty() && notices.hasFailed(Subject::save))
        notices.fail(Subject::save, Wording::notSaved(failed, failedWhy, kept.path));
    else
        notices.tell(Wording::of(kept));
}
