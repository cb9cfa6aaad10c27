#pragma once

#include "app/windowsupport.h"

#include <QDir>
#include <QDirIterator>

// What the tests of failing saves share: documents of two sizes, and what was warned of meanwhile.

/// Collects the warnings of its lifetime and keeps all other lines out of the test's log.
class Warnings
{
public:
    Warnings()
    {
        collected.clear();
        previous =
            qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
                if (type != QtInfoMsg && type != QtDebugMsg && text != platformLine)
                    collected << text;
            });
    }
    ~Warnings() { qInstallMessageHandler(previous); }
    Warnings(const Warnings &) = delete;
    Warnings &operator=(const Warnings &) = delete;

    const QStringList &lines() const { return collected; }

private:
    inline static QStringList collected;
    QtMessageHandler previous = nullptr;
};

/// Events in a chain, each with a description of that many characters. They stand in words: a single one of
/// that length takes longer to be laid out than its save takes.
inline std::vector<Record> chainOfRecords(int count, int length)
{
    std::vector<Record> records;
    for (int i = 0; i < count; ++i) {
        Record record{QStringLiteral("Chapter %1").arg(i), QPointF(500.0 * i, 40.0 * i), i, i - 1};
        record.endOfStory = i == count - 1;
        const QString word = QString(7, QChar(char16_t(u'a' + i % 26))) + QLatin1Char(' ');
        record.description = word.repeated(length / 8 + 1).left(length);
        records.push_back(record);
    }
    return records;
}

/// A document that any buffer takes as a whole.
inline QByteArray smallDocument() { return documentBytes({chainOfRecords(2, 100)}); }

/// A document of 160,000 bytes: many texts that share a buffer, and one that is larger than any buffer.
inline QByteArray largeDocument()
{
    return documentBytes({chainOfRecords(60, 900), chainOfRecords(1, 25000)});
}

/// Events that are attached to nothing but for the last, which follows the one before it. So the one thing to
/// undo is a line, and the panel stays short: the program spends its time on saving.
inline QByteArray documentOfOneLine()
{
    constexpr int events = 400;
    std::vector<Record> records;
    for (int i = 0; i < events; ++i) {
        Record record{QStringLiteral("Event %1").arg(i), QPointF(600.0 * (i % 20), 300.0 * (i / 20)), i};
        record.upstream = i == events - 1 ? i - 1 : -1;
        record.description = QString(2000, QLatin1Char('x'));
        records.push_back(record);
    }
    return documentBytes({records});
}

/// The files below that folder by their paths in it, hidden ones as well.
inline QStringList filesBelow(const QString &folder)
{
    QStringList names;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (files.hasNext())
        names << QDir(folder).relativeFilePath(files.next());
    names.sort();
    return names;
}
