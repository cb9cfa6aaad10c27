#include "support/testsupport.h"

class tst_EventData : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_EventData)
#include "tst_eventdata.moc"
