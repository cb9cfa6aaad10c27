#include "support/testsupport.h"

class tst_ConnectNodesCommand : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_ConnectNodesCommand)
#include "tst_connectnodescommand.moc"
