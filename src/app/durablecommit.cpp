#include "app/durablecommit.h"

#include <QSaveFile>

#include <cerrno>
#include <system_error>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

QString reasonOf(int error) { return QString::fromStdString(std::generic_category().message(error)); }

#ifdef Q_OS_WIN
int duplicated(int handle) { return _dup(handle); }
int synced(int handle) { return _commit(handle); }
int closed(int handle) { return _close(handle); }
#else
int duplicated(int handle) { return dup(handle); }
int synced(int handle) { return fsync(handle); }
int closed(int handle) { return close(handle); }
#endif

/// QSaveFile syncs and closes too, but does not look at the outcome. A duplicate of its handle tells.
QString putOnDisk(int handle)
{
    const int duplicate = duplicated(handle);
    if (duplicate < 0)
        return reasonOf(errno);
    QString trouble;
    // What cannot be synced at all, a pipe for one, says EINVAL.
    if (synced(duplicate) != 0 && errno != EINVAL)
        trouble = reasonOf(errno);
    if (closed(duplicate) != 0 && trouble.isEmpty())
        trouble = reasonOf(errno);
    return trouble;
}

} // namespace

QString commitDurably(QSaveFile &file)
{
    // Flushed here: QSaveFile::commit() would not notice that its last buffer found no room.
    if (!file.flush())
        return file.errorString();
    if (const QString trouble = putOnDisk(file.handle()); !trouble.isEmpty())
        return trouble;
    return file.commit() ? QString() : file.errorString();
}
