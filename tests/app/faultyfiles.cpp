#include "app/faultyfiles.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

using Call = FaultyFiles::Call;

constexpr std::size_t kindsOfCall = std::size_t(Call::setAttribute) + 1;

struct ArmedFault
{
    FaultyFiles::Fault fault;
    int hits = 0;
};

struct Armed
{
    std::string folder;          // as the program names it
    std::string canonicalFolder; // as the system names an open file
    std::array<int, kindsOfCall> calls{};
    std::vector<ArmedFault> faults;
};

std::atomic<bool> isArmed = false;
std::mutex guard; // dialogs read folders in threads of their own
Armed armed;

bool isBelow(std::string_view path, std::string_view folder)
{
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

bool concerns(const char *path)
{
    return path && (isBelow(path, armed.folder) || isBelow(path, armed.canonicalFolder));
}

bool concerns(int descriptor)
{
    std::array<char, 32> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(link.data(), target.data(), target.size() - 1);
    return length > 0 && (target.data() == armed.canonicalFolder || concerns(target.data()));
}

/// Counts the call. What it is to fail with, 0 for half a success; nothing if it is left alone.
template <typename File>
std::optional<int> faultOf(Call call, File file)
{
    if (!isArmed)
        return {};
    const int before = errno;
    std::unique_lock lock(guard);
    std::optional<int> found;
    std::function<void()> meanwhile;
    if (concerns(file)) {
        const int number = ++armed.calls[std::size_t(call)];
        for (ArmedFault &each : armed.faults) {
            const FaultyFiles::Fault &fault = each.fault;
            if (fault.call == call && (fault.lasting ? number >= fault.first : number == fault.first)) {
                ++each.hits;
                found = fault.error;
                meanwhile = fault.meanwhile;
            }
        }
    }
    lock.unlock();
    if (meanwhile) {
        isArmed = false;
        meanwhile();
        isArmed = true;
    }
    errno = before;
    return found;
}

int failed(int error)
{
    errno = error;
    return -1;
}

template <typename Function>
Function *next(Function *, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

int failedOpen(const char *path, int flags)
{
    Call call = Call::openForWriting;
    if ((flags & O_TMPFILE) == O_TMPFILE)
        call = Call::createUnnamed;
    else if ((flags & O_EXCL) != 0)
        call = Call::create;
    else if ((flags & O_ACCMODE) == O_RDONLY)
        return 0;
    // An unnamed file is opened by its folder, which may be the armed one itself.
    const std::string file = call == Call::createUnnamed && path ? std::string(path) + "/" : std::string();
    return faultOf(call, file.empty() ? path : file.c_str()).value_or(0);
}

mode_t modeOf(int flags, std::va_list arguments)
{
    const bool given = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return given ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

} // namespace

FaultyFiles::FaultyFiles(const QString &folder, std::vector<Fault> faults)
{
    const std::lock_guard lock(guard);
    armed = {};
    armed.folder = QFile::encodeName(folder).toStdString();
    armed.canonicalFolder = QFile::encodeName(QFileInfo(folder).canonicalFilePath()).toStdString();
    for (const Fault &fault : faults)
        armed.faults.push_back({fault});
    isArmed = true;
}

FaultyFiles::~FaultyFiles() { isArmed = false; }

int FaultyFiles::calls(Call call) const
{
    const std::lock_guard lock(guard);
    return armed.calls[std::size_t(call)];
}

int FaultyFiles::hits(int fault) const
{
    const std::lock_guard lock(guard);
    return armed.faults.at(std::size_t(fault)).hits;
}

// The calls themselves. They bear the system's names for the linker only: the system's headers may declare
// those as inline functions or as aliases.
#define STANDS_FOR(name) __asm__(name) __attribute__((visibility("default"), used))

extern "C" {
int faultyOpen(const char *path, int flags, ...) STANDS_FOR("open");
int faultyOpen64(const char *path, int flags, ...) STANDS_FOR("open64");
ssize_t faultyRead(int file, void *bytes, size_t size) STANDS_FOR("read");
ssize_t faultyWrite(int file, const void *bytes, size_t size) STANDS_FOR("write");
int faultyFsync(int file) STANDS_FOR("fsync");
int faultyFdatasync(int file) STANDS_FOR("fdatasync");
int faultyRename(const char *from, const char *to) STANDS_FOR("rename");
int faultyRenameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags)
    STANDS_FOR("renameat2");
int faultyLink(const char *from, const char *to) STANDS_FOR("link");
int faultyLinkat(int fromFolder, const char *from, int toFolder, const char *to, int flags)
    STANDS_FOR("linkat");
int faultyClose(int file) STANDS_FOR("close");
int faultyFchown(int file, uid_t owner, gid_t group) STANDS_FOR("fchown");
int faultyFsetxattr(int file, const char *name, const void *value, size_t size, int flags)
    STANDS_FOR("fsetxattr");
}

int faultyOpen(const char *path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static const auto real = next(&faultyOpen, "open");
    const int error = failedOpen(path, flags);
    return error ? failed(error) : real(path, flags, mode);
}

int faultyOpen64(const char *path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static const auto real = next(&faultyOpen64, "open64");
    const int error = failedOpen(path, flags);
    return error ? failed(error) : real(path, flags, mode);
}

ssize_t faultyWrite(int file, const void *bytes, size_t size)
{
    static const auto real = next(&faultyWrite, "write");
    const std::optional<int> fault = faultOf(Call::write, file);
    if (!fault)
        return real(file, bytes, size);
    return *fault ? failed(*fault) : real(file, bytes, (size + 1) / 2);
}

ssize_t faultyRead(int file, void *bytes, size_t size)
{
    static const auto real = next(&faultyRead, "read");
    const std::optional<int> fault = faultOf(Call::read, file);
    if (fault == FaultyFiles::endOfFile)
        return 0;
    if (fault && *fault)
        return failed(*fault);
    return real(file, bytes, fault ? (size + 1) / 2 : size);
}

int faultyFsync(int file)
{
    static const auto real = next(&faultyFsync, "fsync");
    const int error = faultOf(Call::sync, file).value_or(0);
    return error ? failed(error) : real(file);
}

int faultyFdatasync(int file)
{
    static const auto real = next(&faultyFdatasync, "fdatasync");
    const int error = faultOf(Call::sync, file).value_or(0);
    return error ? failed(error) : real(file);
}

int faultyRename(const char *from, const char *to)
{
    static const auto real = next(&faultyRename, "rename");
    const int error = faultOf(Call::rename, to).value_or(0);
    return error ? failed(error) : real(from, to);
}

int faultyRenameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags)
{
    static const auto real = next(&faultyRenameat2, "renameat2");
    int error = (flags & RENAME_EXCHANGE) != 0 ? faultOf(Call::exchange, to).value_or(0) : 0;
    if (!error && (flags & RENAME_NOREPLACE) != 0)
        error = faultOf(Call::moveToFree, to).value_or(0);
    if (!error)
        error = faultOf(Call::rename, to).value_or(0);
    return error ? failed(error) : real(fromFolder, from, toFolder, to, flags);
}

int faultyLink(const char *from, const char *to)
{
    static const auto real = next(&faultyLink, "link");
    int error = faultOf(Call::secondName, to).value_or(0);
    if (!error)
        error = faultOf(Call::rename, to).value_or(0);
    return error ? failed(error) : real(from, to);
}

int faultyLinkat(int fromFolder, const char *from, int toFolder, const char *to, int flags)
{
    static const auto real = next(&faultyLinkat, "linkat");
    const int error = faultOf(Call::rename, to).value_or(0);
    return error ? failed(error) : real(fromFolder, from, toFolder, to, flags);
}

int faultyFchown(int file, uid_t owner, gid_t group)
{
    static const auto real = next(&faultyFchown, "fchown");
    const int error = faultOf(Call::giveAway, file).value_or(0);
    return error ? failed(error) : real(file, owner, group);
}

int faultyFsetxattr(int file, const char *name, const void *value, size_t size, int flags)
{
    static const auto real = next(&faultyFsetxattr, "fsetxattr");
    const int error = faultOf(Call::setAttribute, file).value_or(0);
    return error ? failed(error) : real(file, name, value, size, flags);
}

int faultyClose(int file)
{
    static const auto real = next(&faultyClose, "close");
    const int error = faultOf(Call::close, file).value_or(0);
    const int result = real(file);
    // As in the system: a close that reports an error has closed all the same.
    return error ? failed(error) : result;
}
