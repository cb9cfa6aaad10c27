#pragma once

#include "app/documentstream.h"
#include "scene/nodegraphscene.h"

#include <QBuffer>
#include <QtEndian>

#include <cstring>

/// The bytes of a scene file, taken apart and put together without the program's or Qt's own streaming.
namespace SceneBytes {

/// One node's record.
struct Record
{
    QString title;
    QPointF pos;
    int index = 0;
    int prevIndex = -1;
    int endOfStory = 0;
    int important = 0;
    QString description = QString::fromLatin1("");
    QString tag = QString::fromLatin1("Event");

    /// All fields in one line, for comparing.
    QString text() const
    {
        return QStringLiteral("%1 '%2' (%3, %4) index %5 from %6 end %7 important %8 '%9'")
            .arg(tag, title)
            .arg(pos.x())
            .arg(pos.y())
            .arg(index)
            .arg(prevIndex)
            .arg(endOfStory)
            .arg(important)
            .arg(description);
    }
};

using Records = QList<Record>;

inline QByteArray int32(qint32 value)
{
    char bytes[4];
    qToBigEndian(value, bytes);
    return {bytes, 4};
}

inline QByteArray real(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    char bytes[8];
    qToBigEndian(bits, bytes);
    return {bytes, 8};
}

/// A null string is written in its own form.
inline QByteArray string(const QString &text)
{
    if (text.isNull())
        return int32(-1);
    QByteArray bytes = int32(qint32(text.size() * 2));
    for (const QChar unit : text) {
        bytes += char(unit.unicode() >> 8);
        bytes += char(unit.unicode() & 0xFF);
    }
    return bytes;
}

/// The part that the node itself writes: all but the tag.
inline QByteArray nodeRecord(const Record &record)
{
    return string(record.title) + real(record.pos.x()) + real(record.pos.y()) + int32(record.index) +
           int32(record.prevIndex) + int32(record.endOfStory) + int32(record.important) +
           string(record.description);
}

inline QByteArray block(const Records &records)
{
    QByteArray bytes = int32(qint32(records.size()));
    for (const Record &record : records)
        bytes += string(record.tag) + nodeRecord(record);
    return bytes;
}

/// Takes bytes apart from front to back. Once they run short, isShort() says so and all else is empty.
class Reader
{
public:
    explicit Reader(const QByteArray &source) : bytes(source) {}

    bool isShort() const { return ranShort; }
    bool isAtEnd() const { return at == bytes.size(); }

    qint32 int32()
    {
        const QByteArray part = take(4);
        return part.isEmpty() ? 0 : qFromBigEndian<qint32>(part.constData());
    }

    double real()
    {
        const QByteArray part = take(8);
        const quint64 bits = part.isEmpty() ? 0 : qFromBigEndian<quint64>(part.constData());
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    QString string()
    {
        const qint32 size = int32();
        if (size == -1)
            return {};
        const QByteArray part = take(size);
        QString text = QString::fromLatin1("");
        for (int i = 0; i + 1 < part.size(); i += 2)
            text += QChar(char16_t(quint8(part.at(i)) << 8 | quint8(part.at(i + 1))));
        return text;
    }

    /// One tab's block.
    Records block()
    {
        Records records;
        const qint32 count = int32();
        for (qint32 i = 0; i < count && !ranShort; ++i) {
            Record record;
            record.tag = string();
            record.title = string();
            record.pos.setX(real());
            record.pos.setY(real());
            record.index = int32();
            record.prevIndex = int32();
            record.endOfStory = int32();
            record.important = int32();
            record.description = string();
            records << record;
        }
        return records;
    }

private:
    QByteArray take(qint32 size)
    {
        if (ranShort || size < 0 || size > bytes.size() - at) {
            ranShort = true;
            return {};
        }
        at += size;
        return bytes.mid(at - size, size);
    }

    QByteArray bytes;
    qsizetype at = 0;
    bool ranShort = false;
};

/// What the scene writes.
inline QByteArray saved(NodegraphScene &scene)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    DocumentStream stream(&buffer);
    scene.saveSceneToFile(stream);
    return buffer.data();
}

/// What the scene writes, record by record. Empty if it is anything but one whole block.
inline Records savedRecords(NodegraphScene &scene)
{
    Reader reader(saved(scene));
    const Records records = reader.block();
    return reader.isShort() || !reader.isAtEnd() ? Records() : records;
}

inline QStringList texts(const Records &records)
{
    QStringList all;
    for (const Record &record : records)
        all << record.text();
    return all;
}

/// The records' lines in the order of the titles, where the order in the file does not matter.
inline QStringList sortedTexts(const Records &records)
{
    QStringList all = texts(records);
    all.sort();
    return all;
}

/// Lets the scene read its block from these bytes.
inline void load(NodegraphScene &scene, QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    scene.loadSceneFromFile(stream);
}

} // namespace SceneBytes
