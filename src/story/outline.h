#pragma once

#include <QString>

#include <vector>

struct ExportOptions;
struct StoryEvent;
struct StoryTab;

/// How an event comes into an outline.
enum class OutlineStep {
    goesOn,   // the next of the chain above it on the same level
    branches, // the first of a chain that leaves the event above it
    isLoose,  // the first of a chain that leaves no event
};

struct OutlineEntry
{
    const StoryEvent *event;
    int depth; // 0 for the story itself
    OutlineStep step;
    QString number; // "3", or "3.1" for what leaves the third; empty unless asked for

    /// The title, with the number if there is one.
    QString heading() const;
};

/// A tab's events in the order in which they are told: the story, and if that is asked for each branch below
/// the event that it leaves, and at the end what hangs on no event of the story.
std::vector<OutlineEntry> outlineOf(const StoryTab &tab, const ExportOptions &options);
