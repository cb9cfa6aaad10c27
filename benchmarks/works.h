#pragma once

#include "measure.h"
#include "story.h"

#include <QTemporaryDir>
#include <QVector>

#include <functional>
#include <memory>

/// Everything that is measured on a story of one size.
class Works
{
public:
    Works(int events, int rounds);

    static QStringList partNames();
    /// Those parts, all if none is named; appends the unit as it is before each of them.
    QVector<Row> measured(const QStringList &partsWanted, std::vector<double> &units);

private:
    using Step = std::function<void()>;
    struct Part
    {
        const char *name;
        void (Works::*measure)();
    };
    static const std::vector<Part> &parts();

    /// The median of all rounds; `before` is not measured.
    void add(const QString &work, const Step &before, const Step &step, int times = 0);
    double timed(const QString &work, const Step &step) const;
    void addPair(const QString &there, const Step &go, const QString &back, const Step &comeBack,
                 int times = 0);
    void openStory();
    void memory();
    void documents();
    void pasting();
    void select(int count);
    void edits();
    void editsBack();
    void connections();
    void typing();
    void looking();
    void everything();
    void emptying();
    void command();
    void ending();

    int events;
    int rounds;
    QTemporaryDir folder;
    QString path;
    std::unique_ptr<StoryWindow> story;
    QVector<Row> rows;
};
