#include "support/testsupport.h"

class tst_MainWindowDocuments : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_MainWindowDocuments)
#include "tst_mainwindow_documents.moc"
