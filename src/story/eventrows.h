#pragma once

#include "story/story.h"

#include <QCoreApplication>
#include <QStringList>

#include <optional>
#include <vector>

/// An event as a table has it: it is known by a number or a name, and says in the same way, or by a row,
/// which event leads to it.
struct EventRow
{
    StoryEvent event; // its places in the tab do not count
    std::optional<int> index;
    std::optional<int> fedBy;
    QString name; // instead of a number, empty if there is none
    QString fedByName;
    std::optional<std::size_t> fedByRow; // counted from 0, however the row is called
    qint64 line = 0;
};

class Wiring;

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
    void join(Wiring &wiring) const;

    std::vector<EventRow> rows;
    QStringList &noted;
};
