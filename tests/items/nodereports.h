#pragma once

#include "items/node.h"

#include "items/connectionline.h"
#include "items/eventdata.h"
#include "items/itemtest.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QDataStream>

#include <memory>

// What the tests of the node share.

/// A node's record as it stands in a file.
struct Record
{
    QString title = QStringLiteral("Storm");
    QPointF position{12.5, -7};
    qint32 index = 4;
    qint32 prevIndex = 2;
    qint32 endOfStory = 0;
    qint32 important = 0;
    QString description = QStringLiteral("Rain");

    QByteArray bytes() const
    {
        QByteArray written;
        QDataStream out(&written, QIODevice::WriteOnly);
        out << title << position << index << prevIndex << endOfStory << important << description;
        return written;
    }
};

inline void load(Node &node, const Record &record)
{
    QDataStream in(record.bytes());
    node.openFromStream(in);
}

inline QByteArray savedBy(Node &node)
{
    QByteArray written;
    QDataStream out(&written, QIODevice::WriteOnly);
    node.saveToStream(out);
    return written;
}

inline QString description(const Node &node) { return node.payload()->eventContent()->getDescription(); }

struct Canvas
{
    QGraphicsScene scene{-2000, -2000, 4000, 4000};
    Node *node = new Node(0);
    SceneMouse mouse{scene};

    Canvas()
    {
        scene.addItem(node);
        node->setPos(100, 50);
    }
    QPointF onBody() const { return node->scenePos() + QPointF(12, 60); } // beside the description
};
