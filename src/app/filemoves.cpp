#include "app/filemoves.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cerrno>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#endif

bool FileMoves::isUnknownHere(int error)
{
    return error == EINVAL || error == ENOSYS || error == EPERM || error == EOPNOTSUPP || error == ENOTSUP;
}

#ifdef Q_OS_WIN
namespace {

int moved(const QString &from, const QString &to, DWORD how)
{
    const auto wide = [](const QString &path) { return reinterpret_cast<const wchar_t *>(path.utf16()); };
    if (MoveFileExW(wide(from), wide(to), MOVEFILE_WRITE_THROUGH | how))
        return 0;
    return GetLastError() == ERROR_ALREADY_EXISTS || GetLastError() == ERROR_FILE_EXISTS ? EEXIST : EIO;
}

} // namespace

int FileMoves::over(const QString &from, const QString &to)
{
    return moved(from, to, MOVEFILE_REPLACE_EXISTING);
}

int FileMoves::toFreeName(const QString &from, const QString &to) { return moved(from, to, 0); }

int FileMoves::exchange(const QString &, const QString &) { return ENOSYS; }

int FileMoves::addName(const QString &, const QString &) { return ENOSYS; }
#else
int FileMoves::over(const QString &from, const QString &to)
{
    return rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0 ? 0 : errno;
}

int FileMoves::toFreeName(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (!isUnknownHere(errno))
        return errno;
#endif
    // Not every file system knows that; a second name is refused as well if somebody has it.
    if (link(source.constData(), target.constData()) == 0) {
        unlink(source.constData());
        return 0;
    }
    if (!isUnknownHere(errno))
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

int FileMoves::exchange(const QString &one, const QString &other)
{
#ifdef RENAME_EXCHANGE
    const QByteArray first = QFile::encodeName(one);
    const QByteArray second = QFile::encodeName(other);
    return renameat2(AT_FDCWD, first.constData(), AT_FDCWD, second.constData(), RENAME_EXCHANGE) == 0 ? 0
                                                                                                      : errno;
#else
    Q_UNUSED(one)
    Q_UNUSED(other)
    return ENOSYS;
#endif
}

int FileMoves::addName(const QString &file, const QString &name)
{
    return link(QFile::encodeName(file).constData(), QFile::encodeName(name).constData()) == 0 ? 0 : errno;
}
#endif
