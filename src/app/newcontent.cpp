#include "app/newcontent.h"

#include "app/storing.h"

#include <QFile>

#include <cerrno>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

/// Moves a file to a name that nobody has; 0, or what the system says of it.
#ifdef Q_OS_WIN
int movedToFreeName(const QString &from, const QString &to)
{
    const auto wide = [](const QString &path) { return reinterpret_cast<const wchar_t *>(path.utf16()); };
    if (MoveFileExW(wide(from), wide(to), MOVEFILE_WRITE_THROUGH))
        return 0;
    return GetLastError() == ERROR_ALREADY_EXISTS || GetLastError() == ERROR_FILE_EXISTS ? EEXIST : EIO;
}
#else
int movedToFreeName(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
#endif
    // Not every file system knows that; a second name is refused as well if somebody has it.
    if (link(source.constData(), target.constData()) == 0) {
        unlink(source.constData());
        return 0;
    }
    if (errno != EPERM && errno != ENOSYS && errno != EOPNOTSUPP)
        return errno;
    // Some know no second names either. An empty file holds the name, and is then replaced.
    const int holder = ::open(target.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (holder < 0)
        return errno;
    close(holder);
    if (rename(source.constData(), target.constData()) == 0)
        return 0;
    const int error = errno;
    unlink(target.constData());
    return error;
}
#endif

} // namespace

NewContent::NewContent(const QString &path) : file(path + QStringLiteral(".XXXXXX")) {}

bool NewContent::open()
{
    errno = 0;
    return file.open();
}

QString NewContent::write(const QByteArray &content)
{
    if (QString trouble = Storing::write(file, content); !trouble.isEmpty())
        return trouble;
    return Storing::putOnDisk(file.handle());
}

NewContent::Naming NewContent::takeFreeName(const QString &path)
{
    errno = 0;
    const QString present =
        file.fileName(); // which it may get only now, and not at all if the disk is broken
    const int error = present.isEmpty() ? (errno != 0 ? errno : EIO) : movedToFreeName(present, path);
    if (error == EEXIST)
        return Naming::taken;
    if (error != 0) {
        whyNot = Storing::reason(error);
        return Naming::failed;
    }
    file.setAutoRemove(false);
    Storing::putNamesOnDisk(path);
    return Naming::done;
}
