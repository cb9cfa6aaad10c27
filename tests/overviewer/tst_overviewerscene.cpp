#include "support/testsupport.h"

class tst_OverViewerScene : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_OverViewerScene)
#include "tst_overviewerscene.moc"
