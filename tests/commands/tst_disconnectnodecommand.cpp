#include "support/testsupport.h"

class tst_DisconnectNodeCommand : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_DisconnectNodeCommand)
#include "tst_disconnectnodecommand.moc"
