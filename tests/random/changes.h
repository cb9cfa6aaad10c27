#pragma once

#include <QHash>
#include <QPointF>
#include <QSet>
#include <QString>

class MainWindow;
class Node;
class NodegraphView;
class QObject;
struct Step;

/// Remembers what every tab holds and, after each step, says what that step may not have changed.
class Changes
{
public:
    /// Empty if the step explains all that is different since the last call.
    QString unexplained(const MainWindow &window, const Step &step);
    /// The indices of the events that the tab held before there was anything to undo.
    QSet<int> startOf(const NodegraphView *view) const;
    /// Whether a connection that had replaced another one, be it between the same two events, has been undone
    /// in that tab. The one that was replaced does not come back, so from then on the history as a whole
    /// leads to another graph than the one shown.
    bool hasLostConnection(const NodegraphView *view) const;

private:
    struct NodeState
    {
        int index = 0;
        int prevIndex = -1;
        quint64 line = 0; // the number of its input line, 0 without one
        QString title;
        QString description;
        QPointF pos;
        bool important = false;
        bool end = false;

        bool hasTextsOf(const NodeState &other) const;
        bool isWhole(const NodeState &other) const;
    };
    using Nodes = QHash<quint64, NodeState>; // by a number of this class's own
    struct Tab
    {
        Nodes nodes;
        QHash<int, QList<NodeState>> gone; // by index, each version that once went
        QSet<int> start;
        QSet<int> rerouted; // events whose feeding connection has replaced another one
        bool lostConnection = false;
    };

    quint64 numberOf(QObject *object);
    Nodes statesOf(const NodegraphView *view);
    QString explain(Tab &tab, const Nodes &now, int effects, QSet<int> &typed) const;
    static QString explainMoves(const Nodes &before, const Nodes &now, double farthest);
    static void followConnection(Tab &tab, const NodeState &before, const NodeState *now, int effects);
    static QString explainNew(const Tab &tab, const NodeState &state, int effects);
    static QString explainChange(const NodeState &before, const NodeState &now, int effects);

    QHash<quint64, Tab> tabs;
    quint64 lastNumber = 0;
};
