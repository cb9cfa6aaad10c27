#pragma once

#include "items/latetext.h"
#include "scene/damage.h"
#include "scene/handout.h"

#include <vector>

class DamageLog;
class Node;
class NodegraphScene;
struct NodeRecord;
class QDataStream;

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
    Damage read(QDataStream &stream, DamageLog &log) const;
    /// Told of a record as it stands in the file, with the tag before it.
    using RecordTold = std::function<void(const QString &tag, const NodeRecord &record)>;
    /// Passes over what read() would read, and tells of each record only. Returns how many there are.
    static int skip(QDataStream &stream, const RecordTold &tell = {});

private:
    struct Loaded
    {
        std::vector<Node *> nodes; // in the order of their records
        std::size_t whole = 0;     // so many come first whose records are there to the end
    };

    Loaded readEvents(QDataStream &stream, int count, Damage &damage, DamageLog &log) const;
    int numberAnew(int firstFree) const;
    void connectAll(const Loaded &loaded, Damage &damage, DamageLog &log) const;

    NodegraphScene &scene;
    NodeMaking makeNode;
    HandOut handOut;
};
