#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class EventData;
class MainWindow;
class Node;
class NodegraphScene;
class OvNode;
struct Step;

/// Compares the panel with the story that was published last, which is that of the current tab unless the
/// mouse has gone on with something that it held in a tab that was left.
class PanelWatch
{
public:
    /// To be called after every step. Empty if the panel lists what it should.
    QString fault(const MainWindow &window, const Step &step);

private:
    void follow(const MainWindow &window, const Step &step);
    static void followText(EventData *text, const QString &reported);
    static QString faultOfEntry(OvNode *entry, const Node *node);
    static QString faultOfText(const EventData *ofNode, EventData *ofEntry);

    QObject context; // ends the connections with this object
    QPointer<NodegraphScene> published;
    bool strayed = false; // since the current tab published
};
