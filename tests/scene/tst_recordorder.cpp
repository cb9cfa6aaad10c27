#include "support/testsupport.h"

class tst_RecordOrder : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_RecordOrder)
#include "tst_recordorder.moc"
