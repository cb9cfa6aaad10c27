#pragma once

#include <QPointF>
#include <QString>

#include <vector>

/// One event as plain data. Other events are named by their places in StoryTab::events.
struct StoryEvent
{
    int index = 0; // the number that the file has for it, unique in a sound tab
    QString title;
    QString description; // as stored: the prompt while nothing has been written
    QPointF position;    // of the box's top left corner, scene coordinates
    bool isEnd = false;  // of the story
    bool isImportant = false;
    int feeder = -1;      // the event that leads here, -1 when none does
    std::vector<int> fed; // the events that this one leads to, in the order of connecting

    /// What somebody has written: the description, empty if it is the prompt.
    QString text() const;
    /// Title and text.
    int words() const;
};

/// One graph of events.
struct StoryTab
{
    QString name;
    std::vector<StoryEvent> events; // in the order of the file
    std::vector<int> chain;         // the story, from the first event to the end; empty without an end

    /// The place of the event that ends the story, -1 if there is none.
    int end() const { return chain.empty() ? -1 : chain.back(); }
    /// For each event whether it is part of the story.
    std::vector<bool> membership() const;
    /// Walks the chain anew, to the event that carries the mark.
    void findChain();
    /// Says in the feeders' lists whom they feed, by the order of the events. No circle must be closed.
    void joinFed();
};

/// All tabs of a file.
struct Story
{
    std::vector<StoryTab> tabs;

    /// What the editor calls the tab at that place, counted from 0.
    static QString nameOfTab(int place);
    /// Whether it calls some tab so, at whatever place.
    static bool isNameOfAnyTab(const QString &name);
};

/// As the writer of a language with spaces counts them; elsewhere as the text engine finds them.
int countWords(const QString &text);
