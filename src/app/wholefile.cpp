#include "app/wholefile.h"

#include "app/storing.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <new>

namespace {

constexpr qint64 step = qint64(64) * 1024; // bytes asked for when the file has more than it said
constexpr qint64 mostGrowth = 256 * step;  // a file that gets longer all the time is never read to its end

} // namespace

WholeFile::WholeFile(const QString &path)
{
    try {
        whyNot = read(path);
    } catch (const std::bad_alloc &) {
        whyNot = tr("it does not fit into the memory");
    }
    if (!whyNot.isEmpty())
        bytes = {};
}

QString WholeFile::read(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return tr("it is no file");
    QFile file(path);
    errno = 0;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Storing::reasonOf(file, errno);
    before = FileStamp::of(file);
    const qint64 size = file.size();
    bytes.resize(size);
    qint64 length = 0;
    for (;;) {
        if (length == bytes.size())
            bytes.resize(length + step);
        errno = 0;
        const qint64 count = file.read(bytes.data() + length, bytes.size() - length);
        if (count < 0)
            return Storing::reasonOf(file, errno);
        if (count == 0)
            break;
        length += count;
        if (length > size + mostGrowth)
            return tr("it grows while it is read");
    }
    // Some files of the system, and those that another program has just cut.
    if (length < size)
        return tr("it is shorter than the system says");
    bytes.resize(length);
    return {};
}
