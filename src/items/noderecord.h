#pragma once

#include <QPointF>
#include <QString>

/// What stands of an event in a file, just as it stands there.
struct NodeRecord
{
    QString title;
    QPointF position;
    qint32 index = 0;
    qint32 prevIndex = 0;
    qint32 endOfStory = 0;
    qint32 important = 0;
    QString text; // the payload
};
