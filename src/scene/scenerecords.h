#pragma once

#include "items/latetext.h"
#include "scene/handout.h"

#include <vector>

class Node;
class NodegraphScene;
class QDataStream;
class QString;

/// One tab's block of a document: the records of the scene's events, written and read. Owned by the scene.
///
/// A file may be damaged: it is read as far as it goes, and what is left out of it is told in the log.
class SceneRecords
{
public:
    /// Makes the event for the next record, and returns the one that the record is to be read into, which
    /// recordOrder() tells about.
    using NodeMaking = std::function<Node *(TextMaking making)>;

    /// `graph` must outlive every call.
    SceneRecords(NodegraphScene &graph, NodeMaking making, HandOut out);

    void write(QDataStream &stream) const;
    /// Expects an empty scene. Connections are handed out as commands.
    void read(QDataStream &stream) const;

private:
    std::vector<Node *> readEvents(QDataStream &stream, int count) const;
    void numberAnew(int firstFree, const QString &fileName) const;
    void connectAll(const std::vector<Node *> &loaded, const QString &fileName) const;

    NodegraphScene &scene;
    NodeMaking makeNode;
    HandOut handOut;
};
