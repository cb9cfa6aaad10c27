#include "app/autosavefolder.h"

#include "app/durablefile.h"
#include "app/newcontent.h"
#include "app/scenedocument.h"
#include "app/storing.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <new>

namespace {

using Copy = AutosaveFolder::Copy;

constexpr int mostTries = 1000; // names of one copy, a second apart

/// The folder's path up to the file's name; makes the folder if there is none.
QString preparedFolder()
{
    const QString folder = AutosaveFolder::usualFolder();
    if (!QDir().exists(folder))
        QDir().mkpath(folder);
    return folder + QDir::separator();
}

QString nameOf(const QDateTime &moment)
{
    const QString stamp = moment.toString(QStringLiteral("yyyyMMdd_hhmmss"));
    return QStringLiteral("Yarnsmith_") + stamp + QStringLiteral("_autosaveVersion.scene");
}

Copy notOpened(const QString &path, const QString &why)
{
    qWarning() << "Failed to open autosave file for writing:" << path;
    return {path, why, {}};
}

Copy notWritten(const QString &path, const QString &why)
{
    qWarning() << "Failed to write autosave file:" << path << why;
    return {path, why, {}};
}

/// Takes the name of that moment, or that of the next second that nobody has.
Copy makeNew(const QString &folder, QDateTime moment, const SceneDocument &document)
{
    const QString path = folder + nameOf(moment);
    NewContent content(path);
    if (!content.open())
        return notOpened(path, Storing::reason(errno));
    if (const QString trouble = content.write(document.bytes()); !trouble.isEmpty())
        return notWritten(path, trouble);
    content.takePropertiesOfNewFiles();
    for (int i = 0; i < mostTries; ++i, moment = moment.addSecs(1)) {
        const QString free = folder + nameOf(moment);
        switch (content.takeFreeName(free)) {
        case NewContent::Naming::done:
            return {free, {}, content.stamp()};
        case NewContent::Naming::failed:
            return notWritten(path, content.trouble());
        case NewContent::Naming::taken:
            break;
        }
    }
    return notWritten(path, Storing::reason(EEXIST));
}

} // namespace

QString AutosaveFolder::usualFolder()
{
    return QDir::toNativeSeparators(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)) +
           QStringLiteral("/Fablegrid/Autosavedir");
}

AutosaveFolder::Copy AutosaveFolder::keep(const SceneDocument &document)
{
    return keepAt(QDateTime::currentDateTime(), document);
}

AutosaveFolder::Copy AutosaveFolder::keepAt(const QDateTime &moment, const SceneDocument &document)
{
    const QString folder = preparedFolder();
    const bool isOwn =
        last == folder + nameOf(moment) && !QFileInfo(last).isSymLink() && FileStamp::of(last) == lastStamp;
    Copy copy;
    try {
        std::optional<Copy> replaced;
        if (isOwn)
            replaced = replaceLast(nameOf(moment.addSecs(1)), document);
        copy = replaced ? *replaced : makeNew(folder, moment, document);
    } catch (const std::bad_alloc &) {
        copy = notWritten(folder + nameOf(moment), Storing::reason(ENOMEM));
    }
    if (copy.trouble.isEmpty()) {
        last = copy.path;
        lastStamp = copy.stamp;
        qInfo() << "Autosaved scene to:" << copy.path;
    }
    return copy;
}

/// Nothing if somebody has been at the copy since it was looked at, and it is left alone. Who comes in the
/// very moment at which it is replaced gets that other name.
std::optional<Copy> AutosaveFolder::replaceLast(const QString &nameOfOthers,
                                                const SceneDocument &document) const
{
    DurableFile file(last);
    if (!file.open())
        return notOpened(last, file.trouble());
    file.setFormer({nameOfOthers, lastStamp});
    const QString trouble = file.replaceBy(document.bytes());
    if (file.isOvertaken())
        return {};
    return trouble.isEmpty() ? Copy{last, {}, file.stamp()} : notWritten(last, trouble);
}
