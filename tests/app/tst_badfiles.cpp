#include "app/badfiles.h"

#include <cmath>
#include <limits>

namespace {

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

QByteArray chain()
{
    Record dawn{QStringLiteral("Dawn"), QPointF(100, 200.5), 0};
    dawn.description = QStringLiteral("It begins");
    const Record noon{QString(), QPointF(-40, 0.1), 1, 0};
    Record dusk{QStringLiteral("D\u00FCsk"), QPointF(1e6, -3), 3, 1};
    dusk.endOfStory = true;
    dusk.description = QStringLiteral("It\nends");
    return documentBytes({{dawn, noon, dusk}});
}

QByteArray twoTabs()
{
    Record first{QStringLiteral("A"), QPointF(1, 2), 0};
    first.endOfStory = true;
    first.important = true;
    Record second{QStringLiteral("B"), QPointF(300, 4), 7, 0};
    second.important = true;
    second.description = QStringLiteral("b");
    return documentBytes({{first, second}, {}});
}

/// Goes through the changes of a document. Unless the run is to be exhaustive, only every so many are tried;
/// the step has no divisor in common with the number of changes a byte, so that no kind of change is left
/// out.
class Changes
{
public:
    explicit Changes(int sampleStep) : step(isExhaustive() ? 1 : sampleStep) {}

    /// What went wrong with the changed document, if it is its turn.
    void check(const QByteArray &bytes, const QString &change)
    {
        if (counter++ % step != 0)
            return;
        ++checked;
        if (const QString problem = opener.check(bytes); !problem.isEmpty())
            problems << QStringLiteral("%1: %2\n  file %3")
                            .arg(change, problem, QString::fromLatin1(shortHex(bytes)));
    }

    QString report() const
    {
        return problems.isEmpty() ? QString()
                                  : QStringLiteral("%1 of %2 changes do harm, such as\n%3")
                                        .arg(problems.size())
                                        .arg(checked)
                                        .arg(problems.mid(0, 3).join(QLatin1Char('\n')));
    }

private:
    FileOpener opener;
    QStringList problems;
    int step;
    int counter = 0;
    int checked = 0;
};

} // namespace

class tst_BadFiles : public ProgramTest
{
    Q_OBJECT

private slots:
    void wholeDocumentComesBackAsItWas_data() { documents(); }
    void wholeDocumentComesBackAsItWas();
    void truncatedAtEveryByte_data() { documents(); }
    void truncatedAtEveryByte();
    void everyByteFlipped_data() { documents(); }
    void everyByteFlipped();
    void everyFourBytesSetToExtremes_data() { documents(); }
    void everyFourBytesSetToExtremes();
    void everyTextLength();
    void coordinates_data();
    void coordinates();

private:
    static void documents()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::newRow("a chain of three") << chain();
        QTest::newRow("two tabs, one empty") << twoTabs();
    }

    PrivateHome home;
};

void tst_BadFiles::wholeDocumentComesBackAsItWas()
{
    QFETCH(const QByteArray, document);
    FileOpener opener;
    QCOMPARE(opener.open(document), QString());
    QCOMPARE(opener.bytes().toHex(), document.toHex());
    QCOMPARE(opener.check(document), QString());
}

void tst_BadFiles::truncatedAtEveryByte()
{
    QFETCH(const QByteArray, document);
    Changes changes(3);
    for (qsizetype length = 0; length < document.size(); ++length)
        changes.check(document.left(length), QStringLiteral("cut to %1").arg(length));
    QVERIFY2(changes.report().isEmpty(), qPrintable(changes.report()));
}

void tst_BadFiles::everyByteFlipped()
{
    QFETCH(const QByteArray, document);
    Changes changes(11);
    for (qsizetype at = 0; at < document.size(); ++at) {
        for (const int mask : {0xFF, 1, 2, 4, 8, 16, 32, 64, 128}) {
            QByteArray flipped = document;
            flipped[at] = char(uchar(flipped[at]) ^ mask);
            changes.check(flipped, QStringLiteral("byte %1 xor %2").arg(at).arg(mask));
        }
    }
    QVERIFY2(changes.report().isEmpty(), qPrintable(changes.report()));
}

// At any place, so that the fields are hit as well as whatever lies across two of them.
void tst_BadFiles::everyFourBytesSetToExtremes()
{
    QFETCH(const QByteArray, document);
    Changes changes(11);
    for (qsizetype at = 0; at + 4 <= document.size(); ++at) {
        for (const int value : {0, 1, -1, intMax, intMin, -2}) {
            QByteArray changed = document;
            changed.replace(at, 4, intBytes(value));
            changes.check(changed, QStringLiteral("%1 at byte %2").arg(value).arg(at));
        }
    }
    QVERIFY2(changes.report().isEmpty(), qPrintable(changes.report()));
}

void tst_BadFiles::everyTextLength()
{
    const QByteArray document = chain();
    // The tag, title and description of the first event.
    const QList<int> fields{8, 22, 66};
    const quint32 whole = quint32(document.size());
    Changes changes(17);
    for (const int at : fields) {
        const auto tryLength = [&](quint32 length) {
            QByteArray changed = document;
            changed.replace(at, 4, bigEndian(length));
            changes.check(changed, QStringLiteral("length %1 at byte %2").arg(length).arg(at));
        };
        for (quint32 length = 0; length <= whole + 4; ++length)
            tryLength(length);
        for (const quint32 length : {0x10000U, 0x200000U, 0x7FFFFFFEU, 0x80000000U, 0xFFFFFFFCU, 0xFFFFFFFFU})
            tryLength(length);
    }
    QVERIFY2(changes.report().isEmpty(), qPrintable(changes.report()));
}

void tst_BadFiles::coordinates_data()
{
    QTest::addColumn<double>("coordinate");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("signalling not a number") << std::numeric_limits<double>::signaling_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
    for (const double magnitude :
         {1e300, 1.7e308, 1e154, 1e19, 1e10, 5e-324, 2e-310, 1e-300, 1e-13, 0.0, 1.0, 0.1}) {
        QTest::addRow("%g", magnitude) << magnitude;
        QTest::addRow("-%g", magnitude) << -magnitude;
    }
}

void tst_BadFiles::coordinates()
{
    QFETCH(const double, coordinate);
    FileOpener opener;
    for (const QPointF &pos :
         {QPointF(coordinate, 5), QPointF(5, coordinate), QPointF(coordinate, coordinate)}) {
        Record odd{QStringLiteral("odd"), pos, 0};
        Record next{QStringLiteral("next"), QPointF(7, 8), 1, 0};
        next.endOfStory = true;
        Record opposite{QStringLiteral("opposite"), -pos, 2, 1};
        for (const std::vector<Record> &events : {std::vector{odd}, std::vector{odd, next, opposite}}) {
            const QString problem = opener.check(documentBytes({events}));
            QVERIFY2(problem.isEmpty(), qPrintable(problem));
        }
    }
}

QTEST_MAIN(tst_BadFiles)
#include "tst_badfiles.moc"
