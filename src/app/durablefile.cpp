#include "app/durablefile.h"

#include "app/storing.h"

#include <QFileInfo>

#include <cerrno>
#include <utility>

namespace {

/// The name of the temporary is that of the file and seven characters.
bool leavesNoRoomForATemporary(const QString &path)
{
    constexpr int longestName = 255; // bytes, on every usual file system
    return QFile::encodeName(QFileInfo(path).fileName()).size() + 7 > longestName;
}

/// Where the links from that path lead, whether or not there is a file; a link if they lead in a circle.
QString endOfLinks(const QString &path)
{
    constexpr int mostLinks = 128;
    QFileInfo end(path);
    if (!end.isSymLink())
        return path;
    if (QString real = end.canonicalFilePath(); !real.isEmpty())
        return real;
    // ".." in a link means the folder above the one that the link is in, wherever that was reached from.
    for (int i = 0; i < mostLinks && end.isSymLink(); ++i) {
        const QString folder = QFileInfo(end.path()).canonicalFilePath();
        end = QFileInfo(QFileInfo(folder + QLatin1Char('/') + end.fileName()).symLinkTarget());
    }
    return end.filePath();
}

/// No file may be made beside this one, but it may be one that is mounted by itself.
bool isOfTheFolder(int error) { return error == EACCES || error == EPERM || error == EROFS; }

/// The folder is another user's and sticky, or the file is one that is mounted by itself.
bool forbidsReplacing(int error) { return error == EPERM || error == EBUSY || error == EACCES; }

} // namespace

DurableFile::DurableFile(const QString &file) : path(endOfLinks(file)), temporary(path), inPlace(path) {}

DurableFile::~DurableFile() { removeWhatWasMade(); }

/// Nothing if the file was there before, or holds what it is to hold.
void DurableFile::removeWhatWasMade()
{
    if (std::exchange(madeInPlace, false))
        inPlace.remove();
}

bool DurableFile::open()
{
    if (!isWritable())
        return false;
    if (leavesNoRoomForATemporary(path))
        return openInPlace();
    if (temporary.open())
        return true;
    const int error = errno;
    whyNot = error != 0 ? Storing::reason(error) : tr("no file can be made there");
    return isOfTheFolder(error) && openInPlace();
}

/// What is there must be a file that may be written to, or nothing. A pipe, a socket or a device would be
/// replaced by a file.
bool DurableFile::isWritable()
{
    const QFileInfo before(path);
    if (before.isSymLink())
        whyNot = Storing::reason(ELOOP);
    else if (before.exists() && !before.isFile())
        whyNot = tr("there is something that is no file");
    else if (before.exists() && !before.isWritable())
        whyNot = tr("the file may not be written to");
    return whyNot.isEmpty();
}

bool DurableFile::openInPlace()
{
    const bool isNew = !inPlace.exists();
    errno = 0;
    if (inPlace.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
        madeInPlace = isNew;
        return true;
    }
    whyNot = Storing::reasonOf(inPlace, errno);
    return false;
}

QString DurableFile::replaceBy(const QByteArray &content)
{
    if (inPlace.isOpen() && former.mustStay())
        return tr("what is in the file could not be kept: it can only be written over in place");
    QString trouble = inPlace.isOpen() ? replaceInPlace(content) : replaceThroughTemporary(content);
    if (trouble.isEmpty())
        stored = inPlace.isOpen() ? FileStamp::of(inPlace) : temporary.stamp();
    return trouble;
}

QString DurableFile::replaceThroughTemporary(const QByteArray &content)
{
    if (QString trouble = temporary.write(content); !trouble.isEmpty())
        return trouble;
    temporary.takePropertiesOf(path);
    const int error = temporary.replace(path, former, oldAt);
    if (error == 0)
        return {};
    if (former.mustStay())
        return tr("what is in the file could not be kept: %1").arg(Storing::reason(error));
    if (!forbidsReplacing(error) || !QFileInfo::exists(path) || !openInPlace())
        return Storing::reason(error);
    // Complete and on the disk as it is, the temporary is better than half a file.
    QString trouble = replaceInPlace(content);
    if (!trouble.isEmpty() && !overtaken)
        rescuedTo = temporary.stay();
    return trouble;
}

/// Even if it could not be written: the new content may not have got that far.
bool DurableFile::holds(const QByteArray &content)
{
    inPlace.unsetError();
    return inPlace.seek(0) && inPlace.readAll() == content;
}

QString DurableFile::replaceInPlace(const QByteArray &content)
{
    // Over the old bytes, whose room on the disk the file has already, and cut to length at the end.
    errno = 0;
    const QByteArray old = inPlace.readAll();
    // Nothing lies between this look and the first byte: the system knows no write on a condition.
    const FileStamp now = FileStamp::of(inPlace);
    overtaken = former.known && now.isKnown() && !now.holdsTheSameAs(*former.known);
    if (overtaken)
        return tr("another program has written to the file meanwhile");
    if (inPlace.error() != QFileDevice::NoError || old.size() != inPlace.size())
        return Storing::reasonOf(inPlace, errno); // as it was, for it could not be brought back
    const auto overwrite = [this](const QByteArray &bytes) -> QString {
        if (!inPlace.seek(0))
            return Storing::reasonOf(inPlace, errno);
        if (QString trouble = Storing::write(inPlace, bytes); !trouble.isEmpty())
            return trouble;
        return inPlace.resize(bytes.size()) ? Storing::putOnDisk(inPlace.handle())
                                            : Storing::reasonOf(inPlace, errno);
    };
    QString trouble = overwrite(content);
    if (!trouble.isEmpty()) {
        inPlace.unsetError();
        if (madeInPlace)
            removeWhatWasMade();
        else if (!overwrite(old).isEmpty() && !holds(old)) {
            lostOld = true;
            trouble = tr("%1; what was in the file before could not be brought back").arg(trouble);
        }
    } else if (std::exchange(madeInPlace, false)) {
        Storing::putNamesOnDisk(path);
    }
    return trouble;
}
