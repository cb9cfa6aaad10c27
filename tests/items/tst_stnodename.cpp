#include "support/testsupport.h"

class tst_STNodeName : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_STNodeName)
#include "tst_stnodename.moc"
