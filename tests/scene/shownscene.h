#pragma once

#include "items/connectionline.h"
#include "items/node.h"
#include "items/socket.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QGraphicsRectItem>
#include <QPainterPath>
#include <QScrollBar>
#include <QUndoStack>
#include <QtTest>

#include <memory>
#include <vector>

/// The two ends of a line as it is drawn.
inline QPointF startOf(const ConnectionLine *line) { return line->path().elementAt(0); }
inline QPointF endOf(const ConnectionLine *line) { return line->path().currentPosition(); }

/// All lines on the canvas, those that are being dragged too.
inline std::vector<ConnectionLine *> linesOf(const QGraphicsScene &scene)
{
    std::vector<ConnectionLine *> lines;
    const QList<QGraphicsItem *> items = scene.items();
    for (QGraphicsItem *item : items) {
        if (auto *line = dynamic_cast<ConnectionLine *>(item))
            lines.push_back(line);
    }
    return lines;
}

/// The line of the running drag, null when there is none or more than one.
inline ConnectionLine *dragLineOf(const QGraphicsScene &scene)
{
    ConnectionLine *found = nullptr;
    for (ConnectionLine *line : linesOf(scene)) {
        if (line->inputSocket())
            continue;
        if (found)
            return nullptr;
        found = line;
    }
    return found;
}

/// The rubber band's rectangle; null when the scene does not hold exactly one.
inline QGraphicsRectItem *rubberBandOf(const QGraphicsScene &scene)
{
    QGraphicsRectItem *found = nullptr;
    const QList<QGraphicsItem *> items = scene.items();
    for (QGraphicsItem *item : items) {
        auto *band = dynamic_cast<QGraphicsRectItem *>(item);
        if (band && found)
            return nullptr;
        if (band)
            found = band;
    }
    return found;
}

/// Whether every fed node has one line, every line belongs to a fed node, and all end on their sockets.
inline bool linesAreExact(const NodegraphScene &scene)
{
    std::size_t fed = 0;
    for (const Node *node : scene.nodes()) {
        const ConnectionLine *line = node->inLine();
        if (node->hasInput() != (line != nullptr))
            return false;
        if (!line)
            continue;
        ++fed;
        if (line->scene() != &scene || startOf(line) != node->inSocket()->sceneCentre() ||
            endOf(line) != node->prevNode()->outSocket()->sceneCentre())
            return false;
    }
    return linesOf(scene).size() == fed;
}

/// A place on the node's body where neither a text nor a socket lies.
inline QPointF bodyOf(const Node *node) { return node->mapToScene(QPointF(18, 55)); }
inline QPointF inputOf(const Node *node) { return node->inSocket()->sceneCentre(); }
inline QPointF outputOf(const Node *node) { return node->outSocket()->sceneCentre(); }

/// A tab's view in a window of its own, showing the canvas's upper left corner; takes a real mouse's events.
struct ShownScene
{
    NodegraphView view{nullptr};
    std::unique_ptr<NodegraphScene> owner{view.nodegraphScene()};
    NodegraphScene &scene{*owner};
    QUndoStack &stack{*view.undoStack()};

    ShownScene()
    {
        view.resize(1200, 900);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.horizontalScrollBar()->setValue(0);
        view.verticalScrollBar()->setValue(0);
    }

    QPoint at(QPointF scenePos) const { return view.mapFromScene(scenePos); }
    QPoint inWindow(QPointF scenePos) const { return view.viewport()->mapTo(&view, at(scenePos)); }
    QRectF inSight() const { return view.mapToScene(view.viewport()->rect()).boundingRect(); }

    // All events go to the window: Qt finds the widget, and a press that nobody wants is no fault.
    void press(QPointF pos, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mousePress(view.windowHandle(), button, modifiers, inWindow(pos));
    }
    /// With whatever buttons are held.
    void move(QPointF pos) { QTest::mouseMove(view.windowHandle(), inWindow(pos)); }
    void release(QPointF pos, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseRelease(view.windowHandle(), button, modifiers, inWindow(pos));
    }
    /// The whole gesture: the mouse comes, presses, goes over in two steps and lets go.
    void drag(QPointF from, QPointF to)
    {
        move(from);
        press(from);
        move((from + to) / 2);
        move(to);
        release(to);
    }
};

/// Four loose nodes in the corners of a window, in reading order, and an empty undo history.
struct FourNodes : ShownScene
{
    std::vector<Node *> nodes;

    FourNodes()
    {
        for (const QPointF pos : {QPointF(30, 30), QPointF(680, 30), QPointF(30, 480), QPointF(680, 480)}) {
            scene.sl_deselectCurrentNode();
            scene.createNode(pos, int(nodes.size()), 0, nullptr, QString());
            nodes.push_back(scene.nodes().back());
        }
    }
    Node *operator[](std::size_t i) const { return nodes[i]; }
};

/// A place where none of the four nodes is, nor a line between them.
inline constexpr QPointF emptySpace(580, 860);

/// A place on the line's stroke, near its start (the input) or near its end (the output).
inline QPointF nearEnd(const ConnectionLine *line, int socketType)
{
    return line->path().pointAtPercent(socketType == SocketType::input ? 0.2 : 0.8);
}
