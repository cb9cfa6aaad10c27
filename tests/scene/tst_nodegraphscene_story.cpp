#include "support/testsupport.h"

class tst_NodegraphSceneStory : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphSceneStory)
#include "tst_nodegraphscene_story.moc"
