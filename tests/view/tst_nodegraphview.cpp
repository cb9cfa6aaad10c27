#include "support/testsupport.h"

class tst_NodegraphView : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphView)
#include "tst_nodegraphview.moc"
