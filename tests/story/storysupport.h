#pragma once

#include "app/windowsupport.h"
#include "story/console.h"
#include "story/story.h"
#include "story/storyprogram.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

// What the tests of the command share: running it in this process, and stories to run it on.

struct CommandResult
{
    int code = -1;
    QByteArray output;
    QByteArray errors;

    QStringList outputLines() const { return lines(output); }
    QStringList errorLines() const { return lines(errors); }

private:
    static QStringList lines(const QByteArray &bytes)
    {
        QStringList all = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
        if (!all.isEmpty() && all.last().isEmpty())
            all.removeLast();
        return all;
    }
};

/// `isWatched` by somebody without any patience.
inline CommandResult runCommand(const QStringList &arguments, bool isWatched = false)
{
    CommandResult result;
    QBuffer output(&result.output);
    QBuffer errors(&result.errors);
    output.open(QIODevice::WriteOnly);
    errors.open(QIODevice::WriteOnly);
    Console console(output, errors, isWatched, 0);
    result.code = StoryProgram::run(arguments, console);
    return result;
}

/// The story 0, 1, 2, 3 with its end at 3. Event 1 leads to 4 and 5 as well, 4 to 6 and 7; 8 leads to 9 and
/// hangs on nothing. 1 and 4 are important. The titles are letters, A for 0.
inline StoryTab branchedTab()
{
    StoryTab tab;
    tab.name = QStringLiteral("Story 1");
    const std::vector<int> feeders{-1, 0, 1, 2, 1, 1, 4, 4, -1, 8};
    for (std::size_t i = 0; i < feeders.size(); ++i) {
        StoryEvent event;
        event.index = int(i);
        event.title = QString(QChar(u'A' + char16_t(i)));
        event.description = QStringLiteral("text of %1").arg(event.title);
        event.position = QPointF(500.0 * double(i), 100);
        event.feeder = feeders[i];
        event.isEnd = i == 3;
        event.isImportant = i == 1 || i == 4;
        tab.events.push_back(event);
    }
    tab.joinFed();
    tab.findChain();
    return tab;
}

/// The bytes of a file with these tabs.
inline QByteArray sceneBytes(const std::vector<StoryTab> &tabs)
{
    std::vector<std::vector<Record>> blocks;
    for (const StoryTab &tab : tabs) {
        std::vector<Record> records;
        for (const StoryEvent &event : tab.events) {
            const int upstream = event.feeder == -1 ? -1 : tab.events[event.feeder].index;
            records.push_back({event.title, event.position, event.index, upstream, event.isEnd,
                               event.isImportant, event.description});
        }
        blocks.push_back(records);
    }
    return documentBytes(blocks);
}

/// A folder with files for one test.
class StoryFolder
{
public:
    QString path(const QString &name) const { return dir.filePath(name); }
    QString put(const QString &name, const QByteArray &bytes) const
    {
        if (!writeFile(path(name), bytes))
            qFatal("the file was not written");
        return path(name);
    }
    /// What is in it, sorted.
    QStringList names() const { return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

private:
    QTemporaryDir dir;
};
