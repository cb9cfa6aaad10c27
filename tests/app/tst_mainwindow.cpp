#include "support/testsupport.h"

class tst_MainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
