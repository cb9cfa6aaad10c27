#include "items/newitems.h"

#include <QGraphicsScene>
#include <QTransform>

void takeInNewItems(QGraphicsScene &scene)
{
    // There is no other way to it than by its name; without it everything works, only slower.
    if (scene.metaObject()->indexOfMethod("_q_polishItems()") >= 0)
        QMetaObject::invokeMethod(&scene, "_q_polishItems", Qt::DirectConnection);
    if (scene.itemIndexMethod() != QGraphicsScene::NoIndex)
        scene.itemAt(QPointF(), QTransform()); // whoever asks for a place gets an index of all places
}
