#pragma once

#include "items/connectionline.h"
#include "items/node.h"
#include "items/promptscene.h"
#include "items/socket.h"
#include "scene/canvasdetail.h"
#include "scene/clipboard.h"
#include "scene/connectiondrag.h"
#include "scene/handout.h"
#include "scene/massremoval.h"
#include "scene/nodeindexmap.h"
#include "scene/rubberband.h"
#include "scene/scenerecords.h"
#include "scene/storychain.h"

#include <memory>
#include <vector>

class NodeData;
class QDataStream;
class QUndoCommand;

Q_MOC_INCLUDE(<QUndoCommand>)
Q_MOC_INCLUDE(<QDataStream>)

/// The model of one story graph, one scene a tab: nodes, connections, marks and the story they make.
///
/// The user's edits are never carried out directly. The scene builds an undo command and hands it out through
/// s_UndoCommandAdded(); whoever pushes it on an undo stack makes it run, and it calls back into the
/// primitive operations below. All positions are scene coordinates. Created without a parent; whoever makes
/// the tab ties its life to the tab's view.
class NodegraphScene : public PromptScene
{
    Q_OBJECT

public:
    NodegraphScene();
    ~NodegraphScene() override;

    /// All nodes in the order of their creation; owned by this scene.
    const std::vector<Node *> &getNodes() const { return nodes; }
    /// What select all and the rubber band have collected; not the items' own selected state.
    const std::vector<Node *> &getSelectedNodes() const { return selectedNodes; }
    /// The chain from the first event to the end of the story.
    const std::vector<Node *> &getStory() const { return story.nodes(); }
    /// The node that last reported itself pressed, null when there is none.
    Node *currentNode() const { return currentNode_; }
    /// The node that carries the mark, null when there is none.
    Node *endOfStoryNode() const { return story.end(); }

    /// Makes a node for the user: places it behind the current node, if there is one, connects it there and
    /// hands it the end-of-story mark. A taken index is replaced by the next free one from the counter. The
    /// description is copied from `data`, which may be null and stays the caller's.
    void createNode(QPointF pos, int index, int type, const NodeData *data, const QString &name);
    /// Adds a node through a command; null if nobody ran it. An `index` of -1 asks for the counter's value.
    /// `markFrom` is the index of the node that the new one takes the end-of-story mark from, -1 for none.
    Node *addNodeAt(QPointF pos, int type, int index, int markFrom = -1);
    /// Makes a node just as told, whichever node is current: for bringing back one that was there before.
    Node *restoreNode(QPointF pos, int index, int type, const NodeData *data, const QString &name);
    /// Whether that node, which may be gone, is one of this scene's.
    bool isMember(const Node *node) const { return nodesByIndex.contains(node); }
    /// The first node with that index, null if there is none.
    Node *findNodeByIndex(int index) const;
    /// Feeds the input of `downstream` from the output of `upstream`, replacing what fed it. Nothing happens
    /// if one is null or if the connection would close a cycle.
    void connectNodes(Node *downstream, Node *upstream);
    /// Takes away what feeds the node's input. Null is ignored.
    void disconnectNode(Node *node);
    /// Whether `upstream` is `downstream` itself or is fed by it over any number of nodes.
    static bool wouldCloseCycle(const Node *downstream, const Node *upstream);
    /// Cuts the node out of the graph; it is destroyed soon after. Null is ignored.
    void deleteNode(Node *node);
    /// Deletes the selected nodes, or if none are selected `node`, or if that is null the current node; one
    /// undo command each.
    void deleteSelectedNodes(Node *node);

    /// Shows as much of the events as suits its view now, which else happens with the next frame.
    void adaptDetail();

    /// Computes the story anew and publishes it.
    void updateStory();
    /// Moves the end-of-story mark to the current node; nothing happens if there is none.
    void setEndOfStoryNode();
    /// Moves the mark to `node`, which must not be null.
    void setEndOfStory(Node *node);
    /// Flips the importance of `node`, or of the current node if that is null.
    void toggleImportance(Node *node);

signals:
    /// A new edit; the receiver owns the command and runs it by pushing it. Without any receiver there is no
    /// edit.
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
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    bool focusNextPrevChild(bool next) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    Node *buildNode(QPointF pos, int index, int type, const NodeData *data, const QString &name,
                    TextMaking making = TextMaking::atOnce);
    Node *makeForRecord(TextMaking making);
    void wireNode(Node *node);
    int freeIndex(int wanted, const Node *node) const;
    void attachToCurrentNode(Node *newNode);
    void setCurrentNode(Node *node);
    void forgetNode(Node *node);
    void removeAllNodes();
    QPointF pointerPosition() const;

    void emitCommand(std::unique_ptr<QUndoCommand> command);
    void pushDelNodeCommand(Node *node);
    void wireLine(ConnectionLine *line, Node *downstream, Node *upstream);
    void removeInputLine(Node *node);

    QGraphicsItem *itemUnder(const QGraphicsSceneMouseEvent &event) const;
    void settleMovedLines();

    const HandOut handOut; // given to whoever makes edits in the scene's name

    std::vector<Node *> nodes;
    std::vector<Node *> selectedNodes;
    StoryChain story;
    QPointF lastMousePos;
    Node *currentNode_ = nullptr;
    int nodeCounter = 0; // nodes wired since the last clear(); the source of new indices

    NodeIndexMap nodesByIndex;
    MassRemoval removal{*this};
    ConnectionDrag drag{*this, handOut};
    RubberBand band;
    Clipboard clipboard{*this, removal};
    SceneRecords records;
    CanvasDetail detail;
    bool mouseSeen = false; // lastMousePos means something
};
