#include "story/zipwriter.h"

#include <QtEndian>

#include <array>

namespace {

template <typename Unsigned>
QByteArray littleEndian(Unsigned value)
{
    QByteArray bytes(sizeof(Unsigned), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

constexpr std::array<quint32, 256> checkTable()
{
    std::array<quint32, 256> table{};
    for (quint32 i = 0; i < table.size(); ++i) {
        quint32 value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1) != 0 ? 0xEDB88320U ^ (value >> 1) : value >> 1;
        table[i] = value;
    }
    return table;
}

quint32 checkSum(const QByteArray &bytes)
{
    static constexpr std::array<quint32, 256> table = checkTable();
    quint32 sum = 0xFFFFFFFFU;
    for (const char byte : bytes)
        sum = table[(sum ^ quint8(byte)) & 0xFFU] ^ (sum >> 8);
    return ~sum;
}

/// Qt's compression without its own four bytes in front and those of zlib around; empty if the memory did not
/// suffice.
QByteArray deflated(const QByteArray &content)
{
    constexpr int front = 4 + 2;
    constexpr int behind = 4;
    const QByteArray compressed = qCompress(content);
    return compressed.size() > front + behind ? compressed.mid(front).chopped(behind) : QByteArray();
}

constexpr quint16 versionNeeded = 20;
constexpr quint16 firstDay = (0 << 9) | (1 << 5) | 1; // of 1980: two archives of the same files are alike

} // namespace

void ZipWriter::add(const QByteArray &name, const QByteArray &content, Packing packing)
{
    constexpr quint16 deflate = 8;
    QByteArray packed;
    if (packing == Packing::deflated && !content.isEmpty())
        packed = deflated(content);
    const bool isDeflated = !packed.isEmpty();
    if (!isDeflated)
        packed = content;
    Entry entry;
    entry.name = name;
    entry.common = littleEndian(versionNeeded) + littleEndian<quint16>(0) +
                   littleEndian<quint16>(isDeflated ? deflate : 0) + littleEndian<quint16>(0) +
                   littleEndian(firstDay) + littleEndian(checkSum(content)) +
                   littleEndian(quint32(packed.size())) + littleEndian(quint32(content.size())) +
                   littleEndian(quint16(name.size())) + littleEndian<quint16>(0);
    entry.offset = written;
    const QByteArray local = "PK\3\4" + entry.common + name + packed;
    out.write(local);
    written += quint32(local.size());
    entries.push_back(entry);
}

void ZipWriter::finish()
{
    QByteArray directory;
    for (const Entry &entry : entries) {
        directory += "PK\1\2" + littleEndian(versionNeeded) + entry.common + QByteArray(10, '\0') +
                     littleEndian(entry.offset) + entry.name;
    }
    const auto count = quint16(entries.size());
    out.write(directory + "PK\5\6" + QByteArray(4, '\0') + littleEndian(count) + littleEndian(count) +
              littleEndian(quint32(directory.size())) + littleEndian(written) + QByteArray(2, '\0'));
}
