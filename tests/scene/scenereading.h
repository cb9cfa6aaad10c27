#pragma once

#include "commands/graphtab.h"
#include "scene/scenebytes.h"

#include <QLoggingCategory>
#include <QSignalSpy>

using SceneBytes::Record;
using SceneBytes::Records;

// What the tests of reading share.

/// A record whose title names its index.
inline Record eventRecord(int index, int prevIndex = -1, int endOfStory = 0, int important = 0)
{
    return {QStringLiteral("Title %1").arg(index),
            QPointF(10.5 * index, 20),
            index,
            prevIndex,
            endOfStory,
            important,
            QStringLiteral("Text %1").arg(index)};
}

inline void load(GraphTab &tab, const Records &records)
{
    SceneBytes::load(tab.scene, SceneBytes::block(records));
}

inline QList<int> savedUpstreams(NodegraphScene &scene)
{
    QList<int> upstreams;
    for (const Record &record : SceneBytes::savedRecords(scene))
        upstreams << record.prevIndex;
    return upstreams;
}

/// Keeps the progress of a thousand nodes out of the log; warnings go on.
struct NoProgressLog
{
    NoProgressLog() { QLoggingCategory::setFilterRules(QStringLiteral("default.info=false")); }
    ~NoProgressLog() { QLoggingCategory::setFilterRules(QString()); }
    NoProgressLog(const NoProgressLog &) = delete;
    NoProgressLog &operator=(const NoProgressLog &) = delete;
};

/// The line of a tab in which that many events had no index of their own.
inline void expectNewIndices(int count)
{
    QTest::ignoreMessage(QtWarningMsg,
                         qPrintable(QStringLiteral("Damaged scene file: \"\" has %1 events "
                                                   "without an index of their own, given new ones")
                                        .arg(count)));
}

/// The first twenty connections that close a cycle are named one by one, the others are counted.
inline void expectRefusals(int count)
{
    constexpr int mostNamed = 20;
    for (int i = 0; i < qMin(count, mostNamed); ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(
                                               "^Damaged scene file: \"\" has a connection that "
                                               "closes a cycle, left out: event -?\\d+ \".*\" fed "
                                               "by event -?\\d+ \".*\"$")));
    if (count > mostNamed)
        QTest::ignoreMessage(QtWarningMsg,
                             qPrintable(QStringLiteral("Damaged scene file: \"\" has %1 more "
                                                       "connections that close a cycle, left out")
                                            .arg(count - mostNamed)));
}
