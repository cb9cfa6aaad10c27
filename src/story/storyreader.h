#pragma once

#include "app/filestamp.h"
#include "story/progress.h"
#include "story/story.h"

#include <QByteArrayView>
#include <QCoreApplication>
#include <QStringList>

#include <memory>
#include <vector>

class NodegraphScene;

/// What was wrong with a file.
struct StoryDamage
{
    Q_DECLARE_TR_FUNCTIONS(StoryDamage)
public:
    QStringList warnings;   // as the editor's log has them after opening the file
    int missingFeeders = 0; // connections from events that are not there, which the editor leaves out quietly
    bool endedEarly = false; // what was missing became zero and empty
    bool hasBrokenText = false;
    qint64 bytesBehind = 0; // after the last tab, read by nobody
    /// A tab that is not what the file says.
    struct Changed
    {
        QString tab;    // its name
        QString reason; // empty if it is not known
    };
    std::vector<Changed> changed;
    bool hasOtherCount = false; // of tabs than there are

    bool isNone() const;
    /// One line each: the warnings first, then what the editor does not speak of.
    QStringList lines() const;
};

/// Reads scene files as the editor does, through its own graphs, but without a window.
///
/// Keeps the graphs of the file that was read last, for whoever paints them.
class StoryReader
{
    Q_DECLARE_TR_FUNCTIONS(StoryReader)

public:
    /// Whether the boxes of the graphs are as large as the window shows them.
    enum class Boxes { measured, unmeasured };

    explicit StoryReader(Boxes boxes = Boxes::unmeasured);
    ~StoryReader();
    StoryReader(const StoryReader &) = delete;
    StoryReader &operator=(const StoryReader &) = delete;

    /// Returns why the file cannot be read, empty if it can; a damaged file gives what the editor shows of
    /// it.
    QString read(const QString &file, const PartTold &tell = {});
    /// Of the file that was read last; empty if none was.
    const QString &path() const { return readFrom; }
    /// Whether that file is no longer what was read.
    bool hasChangedSince() const;

    /// What is in the file, as data.
    Story story() const;
    const StoryDamage &damage() const { return found; }
    /// The graphs, a tab each; owned by this object.
    std::vector<NodegraphScene *> scenes() const;
    /// The file as the editor would save it now.
    QByteArray bytes() const;

private:
    void compare(QByteArrayView content, const std::vector<qint64> &begins);

    Boxes boxes;
    QString readFrom;
    FileStamp stamp; // of the file as it was read
    std::vector<std::unique_ptr<NodegraphScene>> graphs;
    StoryDamage found;
};
