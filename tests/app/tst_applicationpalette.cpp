#include "support/testsupport.h"

class tst_ApplicationPalette : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_ApplicationPalette)
#include "tst_applicationpalette.moc"
