#pragma once

#include <QCoreApplication>
#include <QStringList>

#include <vector>

struct StoryTab;

/// Connects the events of a tab that is being read from a text which may say anything, and notes what cannot
/// be: a second way into an event, and a circle. Every line is counted from 1.
class Wiring
{
    Q_DECLARE_TR_FUNCTIONS(Wiring)

public:
    /// Both must outlive this object.
    Wiring(StoryTab &tab, QStringList &notes) : events(tab), noted(notes) {}

    /// Leads from the event at `feeder` to that at `fed`, if nothing leads there yet.
    void lead(int feeder, int fed, qint64 line);
    /// Once, when all is said: opens each circle where it was closed, as the editor does.
    void finish();

private:
    struct WayIn
    {
        qint64 line = 0;
        int number = 0; // by the order in which they were said
    };

    StoryTab &events;
    QStringList &noted;
    std::vector<WayIn> waysIn; // of each event
    int count = 0;
};
