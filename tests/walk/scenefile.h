#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What a scene file holds, decoded from its bytes without any help from the program's own code.
struct SavedEvent
{
    QString tag;
    QString title;
    double x = 0;
    double y = 0;
    int index = 0;
    int upstream = 0; // -1: nothing feeds it
    int endOfStory = 0;
    int important = 0;
    QString description;
};

struct SavedScene
{
    QList<QList<SavedEvent>> tabs;
    QString problem; // empty if the bytes were read exactly to their end
};

SavedScene decodeScene(const QByteArray &bytes);
/// The way back, for a story that nobody has to write by hand first.
QByteArray encodeScene(const SavedScene &scene);
/// An unreadable file is a problem as well.
SavedScene readScene(const QString &path);
QByteArray bytesOf(const QString &path);
