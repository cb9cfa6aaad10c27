#include "support/testsupport.h"

class tst_Socket : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_Socket)
#include "tst_socket.moc"
