#include "app/autosavefolder.h"

#include "app/durablefile.h"
#include "app/scenedocument.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QStandardPaths>

namespace {

/// Where the next copy goes; makes the folder if there is none.
QString pathOfNextCopy()
{
    const QString folder = AutosaveFolder::usualFolder();
    if (!QDir().exists(folder))
        QDir().mkpath(folder);
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss"));
    return folder + QDir::separator() + QStringLiteral("Yarnsmith_") + stamp +
           QStringLiteral("_autosaveVersion.scene");
}

} // namespace

QString AutosaveFolder::usualFolder()
{
    return QDir::toNativeSeparators(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)) +
           QStringLiteral("/Fablegrid/Autosavedir");
}

AutosaveFolder::Copy AutosaveFolder::keep(const SceneDocument &document)
{
    const QString path = pathOfNextCopy();
    DurableFile file(path);
    if (!file.open()) {
        qWarning() << "Failed to open autosave file for writing:" << path;
        return {path, file.trouble()};
    }
    if (const QString trouble = file.replaceBy(document.bytes()); !trouble.isEmpty()) {
        qWarning() << "Failed to write autosave file:" << path << trouble;
        return {path, trouble};
    }
    qInfo() << "Autosaved scene to:" << path;
    return {path, {}};
}
