#include "app/faultyfiles.h"
#include "story/storysupport.h"

#include <cerrno>

// What is told, and what stands on the disk, where the system does not let a result be written.

class tst_StoryFaults : public TestCase
{
    Q_OBJECT

private slots:
    void resultIsNotThereInPart_data();
    void resultIsNotThereInPart();
    void resultStaysBesideAFileThatCannotBeWritten();

private:
    using Call = FaultyFiles::Call;

    QStringList arguments(const QString &path) const
    {
        return {QStringLiteral("export"), scene, QStringLiteral("-o"), path, QStringLiteral("--force")};
    }

    StoryFolder sources;
    QString scene = sources.put(QStringLiteral("branched.scene"), sceneBytes({branchedTab()}));
};

void tst_StoryFaults::resultIsNotThereInPart_data()
{
    QTest::addColumn<bool>("isOverAnother");
    QTest::newRow("new") << false;
    QTest::newRow("over another") << true;
}

void tst_StoryFaults::resultIsNotThereInPart()
{
    QFETCH(const bool, isOverAnother);
    const StoryFolder folder;
    const QString path = folder.path(QStringLiteral("out.md"));
    if (isOverAnother)
        folder.put(QStringLiteral("out.md"), "mine");
    const QStringList before = folder.names();
    CommandResult result;
    {
        const FaultyFiles faulty(folder.path({}), {{Call::write, 1, 0}, {Call::write, 2, ENOSPC, true}});
        result = runCommand(arguments(path));
        QVERIFY(faulty.hits(1) > 0);
    }
    QCOMPARE(result.code, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(
        result.errorLines(),
        QStringList(
            QStringLiteral("fablegrid-story: %1: cannot be written: No space left on device").arg(path)));
    QCOMPARE(folder.names(), before);
    QVERIFY(!isOverAnother || readFile(path) == "mine");
}

void tst_StoryFaults::resultStaysBesideAFileThatCannotBeWritten()
{
    const StoryFolder folder;
    const QString path = folder.put(QStringLiteral("out.md"), "mine");
    CommandResult result;
    {
        // An unnamed temporary gets its name by a call of the same kind; the first write is that of the
        // temporary.
        const FaultyFiles faulty(folder.path({}), {{Call::rename, 2, EBUSY, true}, {Call::write, 2, EIO}});
        result = runCommand(arguments(path));
        QVERIFY(faulty.hits(0) > 0 && faulty.hits(1) > 0);
    }
    QCOMPARE(result.code, 2);
    QCOMPARE(readFile(path), QByteArray("mine"));
    QStringList names = folder.names();
    QVERIFY(names.removeOne(QStringLiteral("out.md")));
    QCOMPARE(names.size(), 1);
    QCOMPARE(result.errorLines(),
             QStringList(QStringLiteral("fablegrid-story: %1: cannot be written: Input/output error; the "
                                        "result is in %2")
                             .arg(path, folder.path(names.first()))));
    const QString sound = sources.path(QStringLiteral("sound.md"));
    QCOMPARE(runCommand(arguments(sound)).code, 0);
    QCOMPARE(readFile(folder.path(names.first())), readFile(sound));
}

QTEST_MAIN(tst_StoryFaults)
#include "tst_storyfaults.moc"
