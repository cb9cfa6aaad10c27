#include "support/testsupport.h"

class tst_MainWindowCommands : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_MainWindowCommands)
#include "tst_mainwindow_commands.moc"
