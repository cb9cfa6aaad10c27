#pragma once

#include "story/story.h"

#include <QCoreApplication>
#include <QStringList>

#include <optional>
#include <vector>

/// An event as a table has it: it is named by a number, and says by a number which event leads to it.
struct EventRow
{
    StoryEvent event; // its places in the tab do not count
    std::optional<int> index;
    std::optional<int> fedBy;
    qint64 line = 0;
};

/// Makes a tab of rows, and notes what of them cannot be.
class EventRows
{
    Q_DECLARE_TR_FUNCTIONS(EventRows)

public:
    explicit EventRows(QStringList &notes) : noted(notes) {}

    void add(EventRow row) { rows.push_back(std::move(row)); }
    bool isEmpty() const { return rows.empty(); }
    /// Puts the events into `tab`, which has none, numbered, connected and with one end at most.
    void fill(StoryTab &tab);

private:
    void number();
    void leaveOneEnd();

    std::vector<EventRow> rows;
    QStringList &noted;
};
