#pragma once

#include "app/keptcopies.h"

#include <QString>

struct Opening;

/// What the notices say of files, in the words of somebody who writes stories.
namespace Wording {

QString saved(const QString &path, int tabs, int events);
/// `kept` is the path of a copy, empty if the work is nowhere but in the window.
QString notSaved(const QString &path, const QString &why, const QString &kept);
QString notAutosaved(const QString &path, const QString &why);
QString notOpened(const QString &path, const QString &why);
QString damaged(const QString &path, const Opening &opening);
QString notPasted();
/// Of a copy that was kept, or could not be.
QString of(const KeptCopies::Kept &kept);
/// The same of what was in the file before a save, and was not of this window.
QString ofOther(const KeptCopies::Kept &kept);

/// Why a file is not replaced whose content would be lost then.
QString wouldBeLost(const KeptCopies::Kept &kept);

} // namespace Wording
