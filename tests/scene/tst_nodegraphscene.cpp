#include "support/testsupport.h"

class tst_NodegraphScene : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphScene)
#include "tst_nodegraphscene.moc"
