#include "app/durablefile.h"

#include <QFileInfo>

#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

QString systemReason(int error) { return QString::fromStdString(std::generic_category().message(error)); }

#ifdef Q_OS_WIN
int duplicated(int handle) { return _dup(handle); }
int synced(int handle) { return _commit(handle); }
int closed(int handle) { return _close(handle); }
#else
int duplicated(int handle) { return dup(handle); }
int synced(int handle) { return fsync(handle); }
int closed(int handle) { return close(handle); }
#endif

/// Qt's files sync and close too, but do not look at the outcome. A duplicate of the handle tells.
QString putOnDisk(int handle)
{
    const int duplicate = duplicated(handle);
    if (duplicate < 0)
        return systemReason(errno);
    QString trouble;
    // What cannot be synced at all, a pipe for one, says EINVAL.
    if (synced(duplicate) != 0 && errno != EINVAL)
        trouble = systemReason(errno);
    if (closed(duplicate) != 0 && trouble.isEmpty())
        trouble = systemReason(errno);
    return trouble;
}

bool saysWhy(const QFileDevice &file)
{
    return file.error() != QFileDevice::NoError && file.errorString() != QFile().errorString();
}

/// What the file says of its last failure, or else what the system said.
QString reasonOf(const QFileDevice &file, int systemError)
{
    if (saysWhy(file))
        return file.errorString();
    return systemError != 0 ? systemReason(systemError) : QStringLiteral("only a part could be written");
}

/// Writes it all; returns why that failed, empty if it did not.
QString write(QFileDevice &file, const QByteArray &content)
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

/// The name of the temporary is that of the file and seven characters.
bool leavesNoRoomForATemporary(const QFileInfo &file)
{
    constexpr int longestName = 255; // bytes, on every usual file system
    return QFile::encodeName(file.fileName()).size() + 7 > longestName;
}

bool isCircularLink(const QString &path)
{
    std::error_code trouble;
    const std::filesystem::file_status end =
        std::filesystem::status(QFileInfo(path).filesystemFilePath(), trouble);
    return !std::filesystem::exists(end) && trouble == std::errc::too_many_symbolic_link_levels;
}

} // namespace

DurableFile::DurableFile(const QString &path) : temporary(path), inPlace(path) {}

bool DurableFile::open()
{
    const QFileInfo before(temporary.fileName());
    if (isCircularLink(temporary.fileName()))
        return false;
    if (leavesNoRoomForATemporary(before))
        return openInPlace();
    errno = 0;
    if (temporary.open(QIODevice::WriteOnly)) {
        // What this user may do is no permission of the file; root may write what nobody may.
        constexpr QFileDevice::Permissions thisUser =
            QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
        if (before.exists())
            temporary.setPermissions(before.permissions() & ~thisUser);
        return true;
    }
    const bool mayNotMakeFiles = errno == EACCES;
    return mayNotMakeFiles && openInPlace();
}

bool DurableFile::openInPlace()
{
    madeInPlace = !inPlace.exists();
    return inPlace.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
}

QString DurableFile::replaceBy(const QByteArray &content)
{
    return inPlace.isOpen() ? replaceInPlace(content) : replaceThroughTemporary(content);
}

QString DurableFile::replaceThroughTemporary(const QByteArray &content)
{
    if (QString trouble = write(temporary, content); !trouble.isEmpty())
        return trouble;
    if (QString trouble = putOnDisk(temporary.handle()); !trouble.isEmpty())
        return trouble;
    errno = 0;
    return temporary.commit() ? QString() : reasonOf(temporary, errno);
}

QString DurableFile::replaceInPlace(const QByteArray &content)
{
    // Over the old bytes, whose room on the disk the file has already, and cut to length at the end.
    const QByteArray old = inPlace.readAll();
    const auto overwrite = [this](const QByteArray &bytes) -> QString {
        if (!inPlace.seek(0))
            return reasonOf(inPlace, errno);
        if (QString trouble = write(inPlace, bytes); !trouble.isEmpty())
            return trouble;
        return inPlace.resize(bytes.size()) ? putOnDisk(inPlace.handle()) : reasonOf(inPlace, errno);
    };
    QString trouble = overwrite(content);
    if (!trouble.isEmpty()) {
        inPlace.unsetError();
        if (madeInPlace)
            inPlace.remove();
        else
            overwrite(old);
    }
    return trouble;
}
