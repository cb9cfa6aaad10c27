#include "story/savedcopies.h"

#include "app/autosavefolder.h"
#include "app/keptcopies.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>

namespace {

/// The name's first part is the time, a second one the occasion.
void findIn(const QString &folder, const QRegularExpression &name, const QString &timeFormat,
            SavedCopy::Kind kind, std::vector<SavedCopy> &found)
{
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.scene")}, QDir::Files);
    for (const QFileInfo &file : files) {
        const QRegularExpressionMatch match = name.match(file.fileName());
        if (!match.hasMatch())
            continue;
        const QDateTime time = QDateTime::fromString(match.captured(1), timeFormat);
        if (time.isValid())
            found.push_back({file.filePath(), time, kind, match.captured(2)});
    }
}

} // namespace

std::vector<SavedCopy> savedCopies()
{
    static const QRegularExpression autosave(
        QStringLiteral("^Yarnsmith_(\\d{8}_\\d{6})_autosaveVersion\\.scene$"));
    static const QRegularExpression kept(
        QStringLiteral("^(\\d{8}_\\d{6}_\\d{3})_(new|open|tab|close|end|other)\\.scene$"));
    std::vector<SavedCopy> found;
    findIn(AutosaveFolder::usualFolder(), autosave, QStringLiteral("yyyyMMdd_HHmmss"), SavedCopy::autosave,
           found);
    findIn(KeptCopies::usualFolder(), kept, QStringLiteral("yyyyMMdd_HHmmss_zzz"), SavedCopy::kept, found);
    const auto isNewer = [](const SavedCopy &one, const SavedCopy &other) {
        return std::pair(one.time, one.path) > std::pair(other.time, other.path);
    };
    std::sort(found.begin(), found.end(), isNewer);
    return found;
}
