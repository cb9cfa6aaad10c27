#include "story/story.h"

#include "items/eventdata.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>

QString StoryEvent::text() const
{
    return description == EventData::tr("Enter description") ? QString() : description;
}

int StoryEvent::words() const { return countWords(title) + countWords(text()); }

std::vector<bool> StoryTab::membership() const
{
    std::vector<bool> isMember(events.size());
    for (const int place : chain)
        isMember[place] = true;
    return isMember;
}

void StoryTab::findChain()
{
    chain.clear();
    const auto isEnd = [](const StoryEvent &event) { return event.isEnd; };
    const auto last = std::find_if(events.begin(), events.end(), isEnd);
    if (last == events.end())
        return;
    for (int place = int(last - events.begin()); place != -1; place = events[place].feeder)
        chain.push_back(place);
    std::reverse(chain.begin(), chain.end());
}

void StoryTab::joinFed()
{
    for (StoryEvent &event : events)
        event.fed.clear();
    for (std::size_t place = 0; place < events.size(); ++place) {
        if (const int feeder = events[place].feeder; feeder != -1)
            events[feeder].fed.push_back(int(place));
    }
}

QString Story::nameOfTab(int place)
{
    return QCoreApplication::translate("MainWindow", "Story %1").arg(place + 1);
}

bool Story::isNameOfAnyTab(const QString &name)
{
    static const QRegularExpression number(QStringLiteral("\\d{1,9}"));
    const int counted = number.match(name).captured().toInt();
    return counted > 0 && name == nameOfTab(counted - 1);
}

int countWords(const QString &text)
{
    int count = 0;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    while (finder.position() != -1) {
        if (finder.boundaryReasons().testFlag(QTextBoundaryFinder::StartOfItem))
            ++count;
        finder.toNextBoundary();
    }
    return count;
}
