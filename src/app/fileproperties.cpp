#include "app/fileproperties.h"

#include <QByteArray>
#include <QFile>
#include <QFileDevice>
#include <QFileInfo>
#include <QtEndian>

#ifdef Q_OS_UNIX
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/xattr.h>
#endif

#ifdef Q_OS_LINUX
namespace {

constexpr const char *accessList = "system.posix_acl_access";

QByteArray attributeOf(const QByteArray &path, const char *name)
{
    QByteArray value(4096, '\0');
    for (;;) {
        const ssize_t size = getxattr(path.constData(), name, value.data(), std::size_t(value.size()));
        if (size >= 0)
            return value.first(size);
        if (errno != ERANGE || value.size() >= 65536)
            return {};
        value.resize(65536);
    }
}

/// Not those that are about the content, which is another one now.
bool staysWithTheFile(const QByteArray &name)
{
    return name != accessList && name != "security.ima" && name != "security.evm" &&
           name != "security.capability";
}

void copyAttributes(const QByteArray &path, int handle)
{
    QByteArray names(65536, '\0');
    const ssize_t size = listxattr(path.constData(), names.data(), std::size_t(names.size()));
    if (size <= 0)
        return;
    const QByteArrayList all = names.first(size).split('\0');
    for (const QByteArray &name : all) {
        if (name.isEmpty() || !staysWithTheFile(name))
            continue;
        const QByteArray value = attributeOf(path, name.constData());
        if (value.isNull())
            continue; // it may not be read
        fsetxattr(handle, name.constData(), value.constData(), std::size_t(value.size()), 0);
    }
}

/// The access list of a file that is made there, as the system derives it; empty if the folder has none to
/// give. A file without a name yet does not get it on every disk, and one that was made for the user alone
/// gets it with nothing for all others.
QByteArray listOfNewFilesIn(const QByteArray &folder)
{
    constexpr qsizetype head = 4; // bytes, of the version
    constexpr qsizetype entry = 8;
    constexpr quint16 user = 0x01;
    constexpr quint16 group = 0x04;
    constexpr quint16 most = 0x10; // what any entry gives at most but those of the user and of all others
    constexpr quint16 others = 0x20;
    constexpr quint16 readAndWrite = 6;
    QByteArray list = attributeOf(folder, "system.posix_acl_default");
    const auto at = [&list](qsizetype place) { return qFromLittleEndian<quint16>(list.constData() + place); };
    bool hasMost = false;
    for (qsizetype i = head; i + entry <= list.size(); i += entry)
        hasMost = hasMost || at(i) == most;
    for (qsizetype i = head; i + entry <= list.size(); i += entry) {
        const quint16 tag = at(i);
        if (tag == user || tag == others || tag == (hasMost ? most : group))
            qToLittleEndian<quint16>(at(i + 2) & readAndWrite, list.data() + i + 2);
    }
    return list;
}

} // namespace
#endif

#ifdef Q_OS_UNIX
void FileProperties::takeOver(const QString &path, QFileDevice &file)
{
    const QByteArray old = QFile::encodeName(path);
    const int handle = file.handle();
    struct stat before = {};
    struct stat now = {};
    if (stat(old.constData(), &before) != 0)
        return;
    // Only a superuser gives files away; a group that the user belongs to can be kept.
    if (fchown(handle, before.st_uid, before.st_gid) != 0 && fchown(handle, uid_t(-1), before.st_gid) != 0) {
        // The mode below makes up for it.
    }
    if (fstat(handle, &now) != 0)
        return;
    mode_t mode = before.st_mode & 0777U;
    const bool isOfTheGroup = now.st_gid == before.st_gid;
    if (!isOfTheGroup) {
        // Who was of the group is one of the others now, and the other way round.
        const mode_t both = mode & (mode >> 3U) & 7U;
        mode = (mode & 0700U) | (both << 3U) | both;
    }
#ifdef Q_OS_LINUX
    copyAttributes(old, handle);
    const QByteArray list = attributeOf(old, accessList);
    fremovexattr(handle, accessList); // which a file may get from its folder
    if (!list.isEmpty()) {
        // The list holds the mode as well. Without it the mode would give to the group what the list gives at
        // most to anybody.
        if (isOfTheGroup && fsetxattr(handle, accessList, list.constData(), std::size_t(list.size()), 0) == 0)
            return;
        mode &= 0700U;
    }
#endif
    [[maybe_unused]] const int outcome = fchmod(handle, mode); // a failure leaves it to the user alone
}

void FileProperties::beNew(QFileDevice &file, const QString &folder)
{
#ifdef Q_OS_LINUX
    // Where a folder has a list for its new files the user's own mask does not count.
    if (const QByteArray list = listOfNewFilesIn(QFile::encodeName(folder)); !list.isEmpty()) {
        // A failure leaves it to the user alone.
        fsetxattr(file.handle(), accessList, list.constData(), std::size_t(list.size()), 0);
        return;
    }
#endif
    const mode_t mask = umask(077); // it can only be asked by being set
    umask(mask);
    [[maybe_unused]] const int outcome = fchmod(file.handle(), 0666U & ~mask);
}
#else
void FileProperties::takeOver(const QString &path, QFileDevice &file)
{
    file.setPermissions(QFileInfo(path).permissions());
}

void FileProperties::beNew(QFileDevice &, const QString &) {}
#endif
