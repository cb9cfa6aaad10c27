#pragma once

#include "view/viewcanvas.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"

#include <QImage>
#include <QtMath>

#include <vector>

/// A canvas with so many joined events, in rows that all come into view at a scale of 2 %; the first one is
/// in the middle of it.
struct FarCanvas : Canvas
{
    explicit FarCanvas(double scale, int count = 2)
    {
        constexpr int rowLength = 25;
        scene->sl_lastMousePos(QPointF(40000, 40000));
        nodes = addChain(*scene, count);
        for (int i = 0; i < count; ++i)
            nodes.at(std::size_t(i))->setPos(40000 + 600 * (i % rowLength), 40000 + 350 * (i / rowLength));
        for (Node *node : nodes)
            node->updateLines();
        scene->deselectAll();
        scene->sl_deselectCurrentNode();
        show(scale);
    }
    void show(double scale) const
    {
        view->setTransform(QTransform::fromScale(scale, scale));
        // The first ones of many do not lie in the middle, or the others would be out of sight.
        const double toSide = nodes.size() > 100 ? 150 / scale : 0;
        view->centerOn(nodes.front()->scenePos() + QPointF(toSide, toSide / 2));
        frame();
    }
    /// Waits until the framework itself has painted.
    void frame() const
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    QImage shown() const
    {
        frame();
        return view->viewport()->grab().toImage();
    }
    /// The colour at a place of the canvas.
    QColor at(QPointF scenePos) const { return shown().pixelColor(pixel(scenePos)); }
    /// The pixel that holds the place; the view's own answer is the nearest corner of pixels.
    QPoint pixel(QPointF scenePos) const
    {
        const QPointF place = view->viewportTransform().map(scenePos);
        return {qFloor(place.x()), qFloor(place.y())};
    }
    QPointF bodyOf(const Node *node) const // below the header, left of the panel and above the socket
    {
        return node->scenePos() + QPointF(12, 45);
    }
    static STLineEdit *descriptionOf(const Node *node)
    {
        return node->payload()->eventContent()->descriptionItem();
    }
    QPointF letterOf(const Node *node) const { return descriptionOf(node)->mapToScene(QPointF(60, 28)); }

    std::vector<Node *> nodes;
};
