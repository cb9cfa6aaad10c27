#include "items/promptscene.h"

#include <QPainter>
#include <QPicture>
#include <QTransform>

void PromptScene::takeInNewItems()
{
    // Whoever draws items has to see polished ones. That the scene's posted calls are delivered instead would
    // also paint its views, in the midst of whatever is going on.
    QPicture nothing;
    QPainter painter(&nothing);
    drawItems(&painter, 0, nullptr, nullptr);
    if (itemIndexMethod() != NoIndex)
        itemAt(QPointF(), QTransform()); // whoever asks for a place gets an index of all places
}
