#include "app/storing.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <system_error>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

#ifdef Q_OS_WIN
int duplicated(int handle) { return _dup(handle); }
int synced(int handle) { return _commit(handle); }
int closed(int handle) { return _close(handle); }
#else
int duplicated(int handle) { return dup(handle); }
int synced(int handle) { return fsync(handle); }
int closed(int handle) { return close(handle); }
#endif

bool saysWhy(const QFileDevice &file)
{
    return file.error() != QFileDevice::NoError && file.errorString() != QFile().errorString();
}

} // namespace

QString Storing::reason(int error) { return QString::fromStdString(std::generic_category().message(error)); }

QString Storing::reasonOf(const QFileDevice &file, int systemError)
{
    if (saysWhy(file))
        return file.errorString();
    return systemError != 0 ? reason(systemError) : QStringLiteral("only a part could be written");
}

QString Storing::write(QFileDevice &file, const QByteArray &content)
{
    errno = 0;
    if (file.write(content) == content.size() && file.flush())
        return {};
    if (!saysWhy(file)) {
        // A write that was cut short fails without a reason. The next one gets it.
        errno = 0;
        file.write(" ");
        file.flush();
    }
    return reasonOf(file, errno);
}

// Qt's files sync and close too, but do not look at the outcome. A duplicate of the handle tells.
QString Storing::putOnDisk(int handle)
{
    const int duplicate = duplicated(handle);
    if (duplicate < 0)
        return reason(errno);
    QString trouble;
    // What cannot be synced at all, a pipe for one, says EINVAL.
    if (synced(duplicate) != 0 && errno != EINVAL)
        trouble = reason(errno);
    if (closed(duplicate) != 0 && trouble.isEmpty())
        trouble = reason(errno);
    return trouble;
}

void Storing::putNamesOnDisk(const QString &path)
{
#ifdef Q_OS_WIN
    Q_UNUSED(path) // the system does not let a folder be opened for that
#else
    const QByteArray folder = QFile::encodeName(QFileInfo(path).path());
    const int handle = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    fsync(handle);
    close(handle);
#endif
}
