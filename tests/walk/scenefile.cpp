#include "walk/scenefile.h"

#include <QFile>

#include <bit>
#include <cstdint>

namespace {

/// Reads big-endian values one after the other; past the end it delivers zeros and remembers the fault.
class Bytes
{
public:
    explicit Bytes(const QByteArray &source) : bytes(source) {}

    bool failed() const { return tooShort; }
    qsizetype left() const { return bytes.size() - position; }

    int number() { return static_cast<int>(static_cast<std::uint32_t>(unsignedOf(4))); }
    double real() { return std::bit_cast<double>(unsignedOf(8)); }

    QString text()
    {
        const auto length = static_cast<std::uint32_t>(unsignedOf(4));
        if (length == 0xFFFFFFFFU)
            return {};
        QString result;
        for (std::uint32_t i = 0; i < length / 2 && !tooShort; ++i)
            result.append(QChar(static_cast<char16_t>(unsignedOf(2))));
        tooShort = tooShort || length % 2 != 0;
        return result;
    }

private:
    std::uint64_t unsignedOf(int size)
    {
        if (left() < size) {
            tooShort = true;
            position = bytes.size();
            return 0;
        }
        std::uint64_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8U | static_cast<std::uint8_t>(bytes.at(position++));
        return value;
    }

    QByteArray bytes;
    qsizetype position = 0;
    bool tooShort = false;
};

SavedEvent readEvent(Bytes &bytes)
{
    SavedEvent event;
    event.tag = bytes.text();
    event.title = bytes.text();
    event.x = bytes.real();
    event.y = bytes.real();
    event.index = bytes.number();
    event.upstream = bytes.number();
    event.endOfStory = bytes.number();
    event.important = bytes.number();
    event.description = bytes.text();
    return event;
}

template <typename Unsigned>
void append(QByteArray &bytes, Unsigned value)
{
    for (int shift = int(sizeof(value)) * 8 - 8; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFFU);
}

void append(QByteArray &bytes, int number) { append(bytes, static_cast<std::uint32_t>(number)); }

void append(QByteArray &bytes, const QString &text)
{
    append(bytes, int(text.size()) * 2);
    for (const QChar unit : text)
        append(bytes, static_cast<std::uint16_t>(unit.unicode()));
}

} // namespace

QByteArray encodeScene(const SavedScene &scene)
{
    QByteArray bytes;
    append(bytes, int(scene.tabs.size()));
    for (const QList<SavedEvent> &tab : scene.tabs) {
        append(bytes, int(tab.size()));
        for (const SavedEvent &event : tab) {
            append(bytes, event.tag);
            append(bytes, event.title);
            append(bytes, std::bit_cast<std::uint64_t>(event.x));
            append(bytes, std::bit_cast<std::uint64_t>(event.y));
            for (const int number : {event.index, event.upstream, event.endOfStory, event.important})
                append(bytes, number);
            append(bytes, event.description);
        }
    }
    return bytes;
}

SavedScene decodeScene(const QByteArray &source)
{
    SavedScene scene;
    Bytes bytes(source);
    const int tabs = bytes.number();
    for (int tab = 0; tab < tabs && !bytes.failed(); ++tab) {
        QList<SavedEvent> events;
        const int count = bytes.number();
        for (int i = 0; i < count && !bytes.failed(); ++i)
            events.append(readEvent(bytes));
        scene.tabs.append(events);
    }
    if (bytes.failed())
        scene.problem = QStringLiteral("the bytes end within a record");
    else if (bytes.left() > 0)
        scene.problem = QStringLiteral("%1 bytes follow the last record").arg(bytes.left());
    return scene;
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

SavedScene readScene(const QString &path) { return decodeScene(bytesOf(path)); }
