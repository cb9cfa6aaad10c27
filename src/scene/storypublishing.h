#pragma once

#include <functional>

/// When a changed story is told: at once, or while a Step lives once at its end, however often it has changed
/// until then. Owned by the scene.
///
/// Pasting 1,000 events changes the story 4,000 times, and whoever lists it would list it as often.
class StoryPublishing
{
public:
    /// What the user does at one go, or takes back. Steps may lie in one another; the outermost one counts.
    class Step
    {
    public:
        explicit Step(StoryPublishing &delayed);
        ~Step();
        Step(const Step &) = delete;
        Step &operator=(const Step &) = delete;

    private:
        StoryPublishing &publishing;
        int failuresBefore;
    };

    explicit StoryPublishing(std::function<void()> telling) : tell(std::move(telling)) {}

    void storyChanged();
    /// Whether it has changed within a step that has not ended.
    bool isStoryToCome() const { return isUntold; }

private:
    std::function<void()> tell;
    int depth = 0; // of Steps in each other
    bool isUntold = false;
};
