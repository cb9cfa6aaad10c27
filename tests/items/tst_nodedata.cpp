#include "support/testsupport.h"

class tst_NodeData : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodeData)
#include "tst_nodedata.moc"
