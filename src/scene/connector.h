#pragma once

class ConnectionLine;
class MassRemoval;
class Node;

/// Joins two nodes and parts them: what they and their sockets know of each other, and the line between them.
/// Owned by the scene, which says what is joined, listens to the lines and publishes what has changed.
class Connector
{
public:
    /// `canvasLines` lets the lines onto the canvas and off it; it must outlive every call.
    explicit Connector(MassRemoval &canvasLines) : lines(canvasLines) {}

    /// Whether `upstream` is `downstream` itself or is fed by it over any number of nodes.
    static bool wouldCloseCycle(const Node *downstream, const Node *upstream);

    /// Feeds the input of `downstream`, which nothing feeds yet, from the output of `upstream`. The new line.
    ConnectionLine *join(Node *downstream, Node *upstream);
    /// Takes away what feeds the node's input, if anything does.
    void part(Node *node);

private:
    void removeInputLine(Node *node);

    MassRemoval &lines;
};
