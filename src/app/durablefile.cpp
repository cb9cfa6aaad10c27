#include "app/durablefile.h"

#include "app/storing.h"

#include <QFileInfo>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace {

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
    if (isCircularLink(temporary.fileName())) {
        whyNot = Storing::reason(ELOOP);
        return false;
    }
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
    const int error = errno;
    whyNot = Storing::reasonOf(temporary, error);
    return error == EACCES && openInPlace();
}

bool DurableFile::openInPlace()
{
    madeInPlace = !inPlace.exists();
    errno = 0;
    if (inPlace.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return true;
    whyNot = Storing::reasonOf(inPlace, errno);
    return false;
}

QString DurableFile::replaceBy(const QByteArray &content)
{
    return inPlace.isOpen() ? replaceInPlace(content) : replaceThroughTemporary(content);
}

QString DurableFile::replaceThroughTemporary(const QByteArray &content)
{
    if (QString trouble = Storing::write(temporary, content); !trouble.isEmpty())
        return trouble;
    if (QString trouble = Storing::putOnDisk(temporary.handle()); !trouble.isEmpty())
        return trouble;
    errno = 0;
    return temporary.commit() ? QString() : Storing::reasonOf(temporary, errno);
}

QString DurableFile::replaceInPlace(const QByteArray &content)
{
    // Over the old bytes, whose room on the disk the file has already, and cut to length at the end.
    const QByteArray old = inPlace.readAll();
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
            inPlace.remove();
        else
            overwrite(old);
    }
    return trouble;
}
