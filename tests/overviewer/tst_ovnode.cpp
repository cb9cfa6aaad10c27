#include "support/testsupport.h"

class tst_OvNode : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_OvNode)
#include "tst_ovnode.moc"
