#include "support/testsupport.h"

class tst_NodegraphSceneFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphSceneFile)
#include "tst_nodegraphscene_file.moc"
