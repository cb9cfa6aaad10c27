#include "app/newcontent.h"

#include "app/fileproperties.h"
#include "app/storing.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

// Both move a file in its folder; 0, or what the system says of it.
#ifdef Q_OS_WIN
int moved(const QString &from, const QString &to, DWORD how)
{
    const auto wide = [](const QString &path) { return reinterpret_cast<const wchar_t *>(path.utf16()); };
    if (MoveFileExW(wide(from), wide(to), MOVEFILE_WRITE_THROUGH | how))
        return 0;
    return GetLastError() == ERROR_ALREADY_EXISTS || GetLastError() == ERROR_FILE_EXISTS ? EEXIST : EIO;
}

int movedToFreeName(const QString &from, const QString &to) { return moved(from, to, 0); }

int movedOver(const QString &from, const QString &to) { return moved(from, to, MOVEFILE_REPLACE_EXISTING); }
#else
int movedOver(const QString &from, const QString &to)
{
    return rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0 ? 0 : errno;
}

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

/// The name that it has beside the file. It may get it only now, and not at all if the disk is broken; errno
/// tells why.
QString NewContent::present()
{
    errno = 0;
    QString name = file.fileName();
    if (name.isEmpty() && errno == 0)
        errno = EIO;
    return name;
}

void NewContent::takePropertiesOf(const QString &path)
{
    if (QFileInfo::exists(path))
        FileProperties::takeOver(path, file);
    else
        takePropertiesOfNewFiles();
}

void NewContent::takePropertiesOfNewFiles() { FileProperties::beNew(file); }

int NewContent::replace(const QString &path)
{
    const QString name = present();
    const int error = name.isEmpty() ? errno : movedOver(name, path);
    if (error == 0) {
        file.setAutoRemove(false);
        Storing::putNamesOnDisk(path);
    }
    return error;
}

QString NewContent::stay()
{
    file.setAutoRemove(false);
    return present();
}

NewContent::Naming NewContent::takeFreeName(const QString &path)
{
    const QString name = present();
    const int error = name.isEmpty() ? errno : movedToFreeName(name, path);
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
