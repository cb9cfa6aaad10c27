#include "app/newcontent.h"

#include "app/filemoves.h"
#include "app/fileproperties.h"
#include "app/storing.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

namespace {

QString inFolderOf(const QString &path, const QString &name)
{
    return QFileInfo(path).path() + QLatin1Char('/') + name;
}

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
    QString trouble = Storing::putOnDisk(file.handle());
    written = FileStamp::of(file);
    return trouble;
}

FileStamp NewContent::stamp() const
{
    const FileStamp now = FileStamp::of(file);
    return now.holdsTheSameAs(written) ? now : FileStamp();
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

void NewContent::takePropertiesOfNewFiles()
{
    FileProperties::beNew(file, QFileInfo(file.fileTemplate()).path());
}

int NewContent::replace(const QString &path)
{
    const QString name = present();
    const int error = name.isEmpty() ? errno : FileMoves::over(name, path);
    if (error == 0)
        isInPlace(path);
    return error;
}

int NewContent::replace(const QString &path, const Former &former, QString &old)
{
    if (former.name.isEmpty())
        return replace(path);
    const QString name = present();
    if (name.isEmpty())
        return errno;
    int error = FileMoves::exchange(name, path);
    if (error == ENOENT) { // nothing stands there, unless somebody is quick
        error = FileMoves::toFreeName(name, path);
        if (error == 0) {
            isInPlace(path);
            return 0;
        }
        if (error == EEXIST)
            error = FileMoves::exchange(name, path);
    }
    if (FileMoves::isUnknownHere(error))
        return replaceWithoutExchange(name, path, former, old);
    if (error != 0)
        return error;
    // What stood there has the name of the new content now. It goes when the new content is in its place on
    // the disk as well: without power the disk could else know of the removal alone.
    isInPlace(path);
    if (former.known && FileStamp::of(name).holdsTheSameAs(*former.known)) {
        QFile::remove(name);
    } else {
        old = inFolderOf(path, former.name);
        if (FileMoves::toFreeName(name, old) != 0)
            old = name;
        Storing::putNamesOnDisk(path);
    }
    return 0;
}

int NewContent::replaceWithoutExchange(const QString &name, const QString &path, const Former &former,
                                       QString &old)
{
    const QString second = former.known ? QString() : inFolderOf(path, former.name);
    int error = second.isEmpty() ? 0 : FileMoves::addName(path, second);
    if (error != 0)
        return error;
    error = FileMoves::over(name, path);
    if (error == 0) {
        old = second;
        isInPlace(path);
    } else if (!second.isEmpty()) {
        QFile::remove(second);
    }
    return error;
}

void NewContent::isInPlace(const QString &path)
{
    file.setAutoRemove(false);
    Storing::putNamesOnDisk(path);
}

QString NewContent::stay()
{
    file.setAutoRemove(false);
    QString name = present();
    if (!name.isEmpty())
        Storing::putNamesOnDisk(name);
    return name;
}

NewContent::Naming NewContent::takeFreeName(const QString &path)
{
    const QString name = present();
    const int error = name.isEmpty() ? errno : FileMoves::toFreeName(name, path);
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
