#include "support/testsupport.h"

class tst_NodeIndexMap : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodeIndexMap)
#include "tst_nodeindexmap.moc"
