#include "support/testsupport.h"

class tst_AddNodeCommand : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_AddNodeCommand)
#include "tst_addnodecommand.moc"
