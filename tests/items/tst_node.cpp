#include "support/testsupport.h"

class tst_Node : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_Node)
#include "tst_node.moc"
