#include "support/testsupport.h"

class tst_NodegraphSceneFraming : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphSceneFraming)
#include "tst_nodegraphscene_framing.moc"
