#include "support/testsupport.h"

class tst_NodegraphSceneConnections : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphSceneConnections)
#include "tst_nodegraphscene_connections.moc"
