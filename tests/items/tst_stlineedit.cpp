#include "support/testsupport.h"

class tst_STLineEdit : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_STLineEdit)
#include "tst_stlineedit.moc"
