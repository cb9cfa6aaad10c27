#include "support/testsupport.h"

class tst_NodegraphSceneDeleting : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphSceneDeleting)
#include "tst_nodegraphscene_deleting.moc"
