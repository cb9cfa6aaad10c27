#include "app/workkeeper.h"

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

using Subject = Notices::Subject;

namespace {

/// It never got so far as to have a name.
KeptCopies::Kept notKept(const QString &why) { return {KeptCopies::usualFolder() + QLatin1Char('/'), why}; }

template <typename Keeping>
KeptCopies::Kept asFarAsMemoryLasts(const Keeping &keeping)
{
    try {
        return keeping();
    } catch (const std::bad_alloc &) {
        KeptCopies::Kept none = notKept(Storing::reason(ENOMEM));
        qWarning() << "Failed to keep a copy:" << none.path << none.trouble;
        return none;
    }
}

} // namespace

bool WorkKeeper::saveTo(const QString &path)
{
    const KeptCopies::Kept other = keepWhatStandsThere(path);
    const Saving saving = document.saveTo(path);
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
    if (!other.trouble.isEmpty()) {
        notices.fail(Subject::keeping, text);
        return true;
    }
    if (!other.path.isEmpty())
        notices.succeed(Subject::keeping);
    notices.tell(text);
    return true;
}

void WorkKeeper::loadFrom(const QString &path)
{
    KeptCopies::Kept kept;
    const Opening opening =
        document.loadFrom(path, [this, &kept] { kept = copyUnsaved(KeptCopies::Occasion::open); });
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

KeptCopies::Kept WorkKeeper::keepCopy(KeptCopies::Occasion occasion) const
{
    return asFarAsMemoryLasts([this, occasion] { return copyUnsaved(occasion); });
}

KeptCopies::Kept WorkKeeper::copyUnsaved(KeptCopies::Occasion occasion) const
{
    const QByteArray unsaved = document.unsavedBytes();
    return unsaved.isEmpty() ? KeptCopies::Kept() : KeptCopies().keep(unsaved, occasion);
}

/// Another window or program may have saved into that file since this one has read it or written to it, or
/// the user may have chosen it to save over. Without a path if nothing stands there that this window does not
/// know.
KeptCopies::Kept WorkKeeper::keepWhatStandsThere(const QString &path) const
{
    if (!QFileInfo(path).isFile())
        return {};
    return asFarAsMemoryLasts([this, &path]() -> KeptCopies::Kept {
        const WholeFile there(path);
        if (!there.trouble().isEmpty())
            return notKept(there.trouble());
        if (there.content().isEmpty() || document.isOnDisk(there.content()))
            return {};
        return KeptCopies().keep(there.content(), KeptCopies::Occasion::other);
    });
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
