#include "support/testsupport.h"

class tst_NodegraphSceneMouse : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

QTEST_MAIN(tst_NodegraphSceneMouse)
#include "tst_nodegraphscene_mouse.moc"
