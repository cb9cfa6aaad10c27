#include "scene/scenereading.h"

// What the log says of the connections of a file that would close a cycle.

class tst_NodegraphScene_File_Cycles : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { flushDeferredDeletes(); }
    void refusedConnectionIsNamed();
    void longTitleIsCutShort_data();
    void longTitleIsCutShort();
    void lineEndStaysInTheLine();
    void manyAreNamedAndTheOthersCounted_data();
    void manyAreNamedAndTheOthersCounted();
    void eachTabHasItsOwn();

private:
    static QStringList damage(const LogCapture &log)
    {
        return log.lines().filter(QStringLiteral("Damaged scene file:"));
    }
    /// That many events, each of which feeds itself.
    static Records selfFed(int count)
    {
        Records records;
        for (int index = 0; index < count; ++index)
            records << eventRecord(index, index);
        return records;
    }
};

// The log said how many they were, and nobody found them among hundreds of events.
void tst_NodegraphScene_File_Cycles::refusedConnectionIsNamed()
{
    GraphTab tab;
    const LogCapture log;
    load(tab, {eventRecord(0), eventRecord(3, 7), eventRecord(7, 3)});
    QCOMPARE(damage(log),
             QStringList{"Damaged scene file: \"\" has a connection that closes a cycle, left out: "
                         "event 7 \"Title 7\" fed by event 3 \"Title 3\""});
}

void tst_NodegraphScene_File_Cycles::longTitleIsCutShort_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("named");
    QTest::newRow("as long as may be") << QString(40, u'x') << QString(40, u'x');
    QTest::newRow("longer") << QString(41, u'x') << QString(39, u'x') + u'\u2026';
    QTest::newRow("very long") << QString(5000, u'x') << QString(39, u'x') + u'\u2026';
    QTest::newRow("empty") << QString() << QString();
}

void tst_NodegraphScene_File_Cycles::longTitleIsCutShort()
{
    QFETCH(const QString, title);
    QFETCH(const QString, named);
    Record record = eventRecord(0, 0);
    record.title = title;
    GraphTab tab;
    const LogCapture log;
    load(tab, {record});
    QCOMPARE(damage(log).size(), 1);
    QVERIFY2(damage(log).first().endsWith(QStringLiteral("event 0 \"%1\" fed by event 0 \"%1\"").arg(named)),
             qPrintable(damage(log).first()));
}

void tst_NodegraphScene_File_Cycles::lineEndStaysInTheLine()
{
    Record record = eventRecord(0, 0);
    record.title = QStringLiteral("a\nb\"c");
    GraphTab tab;
    const LogCapture log;
    load(tab, {record});
    QCOMPARE(damage(log).size(), 1);
    QVERIFY(!damage(log).first().contains(u'\n'));
}

void tst_NodegraphScene_File_Cycles::manyAreNamedAndTheOthersCounted_data()
{
    QTest::addColumn<int>("refused");
    QTest::addColumn<int>("others");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one") << 1 << 0;
    QTest::newRow("twenty") << 20 << 0;
    QTest::newRow("one more") << 21 << 1;
    QTest::newRow("fifty") << 50 << 30;
}

void tst_NodegraphScene_File_Cycles::manyAreNamedAndTheOthersCounted()
{
    QFETCH(const int, refused);
    QFETCH(const int, others);
    GraphTab tab;
    const LogCapture log;
    load(tab, selfFed(refused));
    QStringList expected;
    for (int index = 0; index < refused - others; ++index)
        expected << QStringLiteral("Damaged scene file: \"\" has a connection that closes a cycle, left out: "
                                   "event %1 \"Title %1\" fed by event %1 \"Title %1\"")
                        .arg(index);
    if (others > 0)
        expected << QStringLiteral("Damaged scene file: \"\" has %1 more connections that close a cycle, "
                                   "left out")
                        .arg(others);
    QCOMPARE(damage(log), expected);
}

void tst_NodegraphScene_File_Cycles::eachTabHasItsOwn()
{
    GraphTab first;
    GraphTab second;
    const LogCapture log;
    load(first, selfFed(20));
    load(second, selfFed(20));
    QCOMPARE(damage(log).size(), 40);
}

QTEST_MAIN(tst_NodegraphScene_File_Cycles)
#include "tst_nodegraphscene_file_cycles.moc"
