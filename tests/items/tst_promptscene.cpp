#include "items/promptscene.h"

#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"
#include "support/testsupport.h"

#include <QGraphicsView>
#include <QGraphicsWidget>
#include <QSignalSpy>

namespace {

/// Counts how often the framework has told it that it is ready to be shown.
struct Newcomer : QGraphicsWidget
{
    int polished = 0;

protected:
    void polishEvent() override { ++polished; }
};

} // namespace

class tst_PromptScene : public TestCase
{
    Q_OBJECT

private slots:
    void newItemsArePolishedAtOnceAndOnce();
    void changesWaitForTheEventLoop();
    void ourScenesAreStillTheFrameworksOwn();
};

void tst_PromptScene::newItemsArePolishedAtOnceAndOnce()
{
    PromptScene scene;
    auto *item = new Newcomer;
    scene.addItem(item);
    QCOMPARE(item->polished, 0);
    scene.takeInNewItems();
    QCOMPARE(item->polished, 1);
    scene.takeInNewItems();
    QCoreApplication::processEvents();
    QCOMPARE(item->polished, 1);
}

// Posted calls that are delivered early also tell of changes and paint the views in the midst of them.
void tst_PromptScene::changesWaitForTheEventLoop()
{
    PromptScene scene;
    const QSignalSpy changes(&scene, &QGraphicsScene::changed);
    scene.addRect(0, 0, 10, 10);
    scene.update();
    scene.takeInNewItems();
    QCOMPARE(changes.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).value<QList<QRectF>>(), QList<QRectF>{scene.sceneRect()});
}

// Whoever looks at their classes sees no other base than before.
void tst_PromptScene::ourScenesAreStillTheFrameworksOwn()
{
    QCOMPARE(NodegraphScene::staticMetaObject.superClass(), &QGraphicsScene::staticMetaObject);
    QCOMPARE(OverViewerScene::staticMetaObject.superClass(), &QGraphicsScene::staticMetaObject);
}

QTEST_MAIN(tst_PromptScene)
#include "tst_promptscene.moc"
