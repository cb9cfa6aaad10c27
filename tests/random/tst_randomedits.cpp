#include "app/windowsupport.h"
#include "random/choices.h"
#include "random/sequence.h"

#include <QElapsedTimer>

#include <cstdio>

namespace {

quint32 setting(const char *name, quint32 otherwise)
{
    bool isNumber = false;
    const uint value = qEnvironmentVariable(name).toUInt(&isNumber);
    return isNumber ? value : otherwise;
}

} // namespace

/// Random sequences of everything that a user can do, settled by environment variables:
/// FABLEGRID_RANDOM_SEQUENCES and FABLEGRID_RANDOM_STEPS, how many and how long;
/// FABLEGRID_RANDOM_SEED, the first seed, from which the others count up;
/// FABLEGRID_RANDOM_RECORD, a folder for the decisions of each as bytes, which the fuzz target of the edits
/// takes.
class tst_RandomEdits : public ProgramTest
{
    Q_OBJECT

private slots:
    void everythingAgreesAfterEveryStep();
};

void tst_RandomEdits::everythingAgreesAfterEveryStep()
{
    const quint32 sequences = setting("FABLEGRID_RANDOM_SEQUENCES", 6);
    const int steps = int(setting("FABLEGRID_RANDOM_STEPS", 150));
    const quint32 first = setting("FABLEGRID_RANDOM_SEED", 1);
    const PrivateHome home;
    QElapsedTimer clock;
    clock.start();
    for (quint32 i = 0; i < sequences; ++i) {
        Choices choices = Choices::fromSeed(first + i);
        const QString fault = runSequence(choices, steps);
        if (qEnvironmentVariableIsSet("FABLEGRID_RANDOM_RECORD"))
            QVERIFY(writeFile(qEnvironmentVariable("FABLEGRID_RANDOM_RECORD") +
                                  QStringLiteral("/seed-%1").arg(first + i),
                              choices.record()));
        QVERIFY2(fault.isEmpty(),
                 qPrintable(QStringLiteral("seed %1, %2 steps: %3").arg(first + i).arg(steps).arg(fault)));
    }
    std::printf("%u sequences of %d steps from seed %u without a fault in %lld s\n", sequences, steps, first,
                clock.elapsed() / 1000);
}

QTEST_MAIN(tst_RandomEdits)
#include "tst_randomedits.moc"
