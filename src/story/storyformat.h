#pragma once

#include "story/progress.h"

#include <QByteArray>
#include <QPageSize>
#include <QString>
#include <QStringList>

#include <set>

class QIODevice;
struct Story;

/// What of a story is written, and how.
struct ExportOptions
{
    std::set<int> tabs;         // places, counted from 0; all if empty
    bool onlyImportant = false; // of the story's events
    bool withBranches = false;  // what is outside of the story, too
    bool withNumbers = false;
    QPageSize::PageSizeId paper = QPageSize::A4;
    QString name;  // of the story, for formats that give a document a name
    PartTold tell; // what part is written; may be null

    bool wants(int tab) const { return tabs.empty() || tabs.contains(tab); }
};

/// Says how far a format is that goes from event to event.
class Telling
{
public:
    /// `options` must outlive this object.
    Telling(const Story &story, const ExportOptions &options);
    /// One more event is written.
    void next();

private:
    const PartTold &tell;
    double count = 0; // of the events that may be written
    double written = 0;
};

/// What came of a text that was read.
struct ImportResult
{
    QString trouble;   // why nothing could be read at all, else empty
    QStringList notes; // what was left out, one line each, with the number of the line in the text

    /// What is known of where the events stand.
    enum class Places {
        none,   // they are to be laid out
        wished, // unless they overlap
        exact,  // whatever they are
    };
    Places places = Places::none;
};

/// One way to write a story into a file of another kind, or to read it from there.
///
/// Each lives in a file of its own, and is known by one line in storyformats.cpp.
class StoryFormat
{
public:
    StoryFormat() = default;
    virtual ~StoryFormat() = default;
    StoryFormat(const StoryFormat &) = delete;
    StoryFormat &operator=(const StoryFormat &) = delete;

    /// What --format calls it.
    virtual QString name() const = 0;
    /// What the names of such files end in, the usual one first, without a dot.
    virtual QStringList suffixes() const { return {name()}; }

    /// Whether it tells a tab as outlineOf() does. Else it holds every event of the tab.
    virtual bool tellsInOrder() const { return true; }
    /// Whether it is cut into pages, so that the size of the paper matters.
    virtual bool hasPages() const { return false; }
    /// Writes onto `out`, which is open and can be positioned; what goes wrong there `out` tells.
    virtual void write(const Story &story, const ExportOptions &options, QIODevice &out) const = 0;

    virtual bool canRead() const { return false; }
    /// Reads into `story`, which is empty: titles, texts, connections and marks, and places if the format has
    /// them (else all stay at 0, 0).
    virtual ImportResult read(const QByteArray &, Story &) const { return {}; }
};
