#include "support/testsupport.h"

class tst_ConnectionLine : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_ConnectionLine)
#include "tst_connectionline.moc"
