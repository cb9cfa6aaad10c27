#pragma once

#include <QGraphicsScene>

/// A scene that can take its new items in at once, which the framework does when the event loop runs.
///
/// Until then it searches its list of new ones for each item that leaves, so that thousands that come and go
/// together would cost the square of their number: a panel that gets the same 10,000 events once more takes
/// 9 to 13 ms instead of 30 to 48.
class PromptScene : public QGraphicsScene
{
public:
    /// Makes the framework polish and index all items that have come, and do nothing else.
    void takeInNewItems();
};
