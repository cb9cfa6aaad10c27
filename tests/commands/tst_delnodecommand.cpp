#include "support/testsupport.h"

class tst_DelNodeCommand : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_DelNodeCommand)
#include "tst_delnodecommand.moc"
