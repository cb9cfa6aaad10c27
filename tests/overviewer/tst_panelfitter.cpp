#include "support/testsupport.h"

class tst_PanelFitter : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_PanelFitter)
#include "tst_panelfitter.moc"
