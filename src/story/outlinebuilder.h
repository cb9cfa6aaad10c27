#pragma once

#include "story/outline.h"

#include <vector>

struct StoryTab;

/// Makes a tab of events that a text tells from front to back: those of one level are a chain, a deeper one
/// begins a branch. What outlineOf() has told gives the same connections again.
class OutlineBuilder
{
public:
    /// `tab` is empty and outlives this object.
    explicit OutlineBuilder(StoryTab &tab) : built(tab) {}

    /// Adds an event without a text and returns its place. Levels are compared, not counted. A step other
    /// than OutlineStep::goesOn says what the level does not.
    int add(const QString &title, int level, OutlineStep step = OutlineStep::goesOn);
    /// Marks the end of the story, which is the chain that begins with the first event, unless an event has
    /// the mark already. Places change: what goes on a chain stands before what leaves it, as it does in an
    /// outline that is told.
    void finish();

private:
    struct Open
    {
        int level;
        int place;
    };

    std::vector<int> chainsFirst() const;

    StoryTab &built;
    std::vector<bool> goesOn;
    std::vector<Open> open; // the last event of each level, above the next one
    int end = -1;
    bool isInStory = true;
};
