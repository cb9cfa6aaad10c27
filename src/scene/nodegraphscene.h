#pragma once

#include "items/connectionline.h"
#include "items/node.h"
#include "items/socket.h"
#include "scene/canvasscene.h"

#include <memory>
#include <vector>

class NodeData;
class QDataStream;
class DamageLog;
struct Damage;
class QUndoCommand;
class StoryPublishing;

Q_MOC_INCLUDE(<QUndoCommand>)
Q_MOC_INCLUDE(<QDataStream>)

/// The model of one story graph, one scene a tab: nodes, connections, marks and the story they make.
///
/// The user's edits are handed out as undo commands by s_UndoCommandAdded(), never carried out directly:
/// pushed on an undo stack they call back into the primitive operations below. All positions are scene
/// coordinates. Created without a parent; whoever makes the tab ties its life to the tab's view.
class NodegraphScene : public CanvasScene
{
    Q_OBJECT

public:
    NodegraphScene();
    ~NodegraphScene() override;

    const std::vector<Node *> &nodes() const override;
    /// What select all and the rubber band have collected; not the items' own selected state.
    const std::vector<Node *> &selectedNodes() const;
    const std::vector<Node *> &story() const; // from the first event to the end
    /// The node that last reported itself pressed, null when there is none.
    Node *currentNode() const;
    /// The only one to say which node is current; null makes none so.
    void setCurrentNode(Node *node);
    /// The node that carries the mark, null when there is none.
    Node *endOfStoryNode() const;

    /// Adds an event where the pointer is and brings it into sight, as the user's command does.
    void addEvent();
    /// Makes a node for the user: behind the current one, if there is one, connected to it and with its
    /// end-of-story mark. A taken index is replaced by a free one; `data`, which may be null, is copied.
    void createNode(QPointF pos, int index, int type, const NodeData *data, const QString &name);
    /// Makes a node just as told, whichever is current: for bringing back one that was there before. With a
    /// null `description` it has that of a new one.
    Node *restoreNode(QPointF pos, int index, int type, const QString *description, const QString &name,
                      TextMaking making = TextMaking::atOnce);
    /// Adds a node by a command, null if nobody ran it; an `index` of -1 asks for the counter's value. The
    /// mark is taken from the node with the index `markFrom`, -1 for none.
    Node *addNodeAt(QPointF pos, int type, int index, int markFrom = -1);
    /// Whether that node, which may be gone, is one of this scene's.
    bool isMember(const Node *node) const;
    /// The first node with that index, null if there is none.
    Node *findNodeByIndex(int index) const;
    /// Feeds `downstream` from `upstream` instead of what fed it, unless one is null or a cycle would close.
    void connectNodes(Node *downstream, Node *upstream);
    void disconnectNode(Node *node); // takes away what feeds its input; null is ignored
    /// Cuts the node out of the graph; it is destroyed soon after. Null is ignored.
    void deleteNode(Node *node);
    /// Deletes by commands: the selected nodes, or else `node`, or if that is null the current node.
    void deleteSelectedNodes(Node *node);

    /// Whether there is memory for a paste of what is remembered.
    bool canPasteNodes() const;

    /// Reads one tab's block of a document into this scene, which must be empty; tells what was not there.
    Damage load(QDataStream &stream, DamageLog &log);

    /// Computes the story anew and publishes it, within a step at the end of that.
    void updateStory();
    /// For those who change the story in steps: all that one of them changes is published once.
    StoryPublishing &publishing();
    /// Moves the end-of-story mark to the current node, if there is one, or to `node`, which is not null.
    void setEndOfStoryNode();
    void setEndOfStory(Node *node);
    /// Flips the importance of `node`, or of the current node if that is null.
    void toggleImportance(Node *node);

signals:
    /// A new edit: the receiver owns the command and runs it. Without any receiver there is no edit.
    void s_UndoCommandAdded(QUndoCommand *undoCommand);
    void s_frameView(QRectF bounds);
    void s_updateStory(std::vector<Node *>);
    void s_updateNode(Node *node);
    void s_nodeIndexChanged(Node *node, int index);
    void s_importanceChanged(Node *node, bool isImportant);

public slots:
    void sl_addEventNode();
    void sl_selectCurrentNode(Node *);
    void sl_deselectCurrentNode();
    void sl_nodeMove(Node *);
    void sl_connectionLineClicked(ConnectionLine *line, int type);
    void sl_nodeChanged(Node *);
    void sl_nodeIndexChanged(Node *, int index);
    void sl_ovNodeChanged(QGraphicsItem *nodeData, int index);
    void sl_importanceChanged(Node *, bool isImportant);
    void sl_socketClick(int type, QPointF);
    void sl_socketClickDrag();
    void sl_manualNodeConnect(Socket *socket);
    void sl_lastMousePos(QPointF);
    /// Writes and reads one tab's block of a document; reading expects an empty scene.
    void saveSceneToFile(QDataStream &stream);
    void loadSceneFromFile(QDataStream &stream);
    void copyNodes();
    void cutNodes();
    void pasteNodes();
    void selectAll();
    void deselectAll();
    /// Deletes every node, through commands, and whatever else is on the canvas.
    void clear();
    /// Asks for the current node, or the selected ones, or all nodes to be shown.
    void frameSelectedNodes();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;

private:
    struct Parts; // each with a state of its own
    std::unique_ptr<Parts> parts;
};
