// Opens the most demanding files of under 100 kB, each in a process of its own, and measures processor time
// and memory. Without arguments it measures them all, three times each, and fails if the best run of one is
// beyond its limits; with words as arguments, those files whose names contain one of them. FABLEGRID_SLACK is
// how many times as slow as the one that the limits are of a machine may be.

#include "app/mainwindow.h"
#include "app/windowsupport.h"
#include "support/processfigures.h"

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>
#include <limits>

namespace {

constexpr int mostBytes = 99999;
constexpr int runs = 3;
constexpr int patience = 60'000; // milliseconds

const QString openOption = QStringLiteral("--open");

// The child: one file, one window.

int openOne(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.info=false\ndefault.warning=false"));
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    forgetPeakMemory();
    const double before = statusMegabytes("VmRSS:");
    const double start = processorSeconds();
    window.loadFrom(QString::fromLocal8Bit(argv[2]));
    const double opened = processorSeconds();
    QCoreApplication::processEvents();
    window.grab();
    const double shown = processorSeconds();
    std::size_t nodes = 0;
    for (const NodegraphView *view : window.views())
        nodes += view->nodegraphScene()->nodes().size();
    std::printf("%f %f %f %zu %zu\n", opened - start, shown - start, statusMegabytes("VmHWM:") - before,
                window.views().size(), nodes);
    std::fflush(stdout);
    std::_Exit(0); // what closing takes is no part of opening
}

// The files.

struct Limits
{
    double seconds = 1.0;
    double megabytes = 100.0;
};

/// As many bare graphics views in a tab widget take 15 seconds and 106 MB by themselves.
constexpr Limits ofManyTabs{2.5, 400.0};
/// What lies in one place is all in view, near enough to be made with all its parts.
constexpr Limits ofAPile{2.0, 200.0};

struct File
{
    QString name;
    QByteArray bytes;
    Limits limits = {};
};

/// As short as a record can be: no tag, no texts.
QByteArray bareRecord(const QPointF &pos, int index, int upstream, int end = 0)
{
    return intBytes(0) + intBytes(0) + doubleBytes(pos.x()) + doubleBytes(pos.y()) + intBytes(index) +
           intBytes(upstream) + intBytes(end) + intBytes(0) + intBytes(0);
}

constexpr int bareSize = 44;
constexpr int mostRecords = (mostBytes - 8) / bareSize;

/// One tab that is full of short records.
template <typename RecordOf>
QByteArray fullTab(RecordOf recordOf, int announced = mostRecords)
{
    QByteArray bytes = intBytes(1) + intBytes(announced);
    for (int i = 0; i < mostRecords; ++i)
        bytes += recordOf(i);
    return bytes;
}

QByteArray oneText(const QString &unit, bool asTitle)
{
    Record record{QStringLiteral("T"), QPointF(), 0};
    record.endOfStory = true;
    const qsizetype room = (mostBytes - documentBytes({{record}}).size()) / 2;
    (asTitle ? record.title : record.description) = unit.repeated(room / unit.size() + 1).left(room);
    return documentBytes({{record}});
}

QString randomLetters(int count)
{
    QRandomGenerator generator(1);
    QString all;
    for (int i = 0; i < count; ++i)
        all += QChar(char16_t(generator.bounded(0x10000)));
    return all;
}

/// That many different letters, each once, over and over.
QString letters(char16_t first, int count)
{
    QString all;
    for (int i = 0; i < count; ++i)
        all += QChar(char16_t(first + i));
    return all;
}

void addGraphs(std::vector<File> &files)
{
    constexpr int huge = std::numeric_limits<int>::max();
    const auto spread = [](int i) { return QPointF(i % 50 * 500, i / 50 * 200); }; // NOLINT: rows
    const auto add = [&files](const char *name, const QByteArray &bytes, const Limits &limits = {}) {
        files.push_back({QLatin1String(name), bytes, limits});
    };
    add("a huge count of nodes and nothing", intBytes(1) + intBytes(huge));
    add("full tab, unconnected", fullTab([&](int i) { return bareRecord(spread(i), i, -1); }));
    add("full tab, huge count", fullTab([&](int i) { return bareRecord(spread(i), i, -1); }, huge));
    add("full tab, all in one place", fullTab([](int i) { return bareRecord({}, i, -1); }), ofAPile);
    add("full tab, one chain",
        fullTab([&](int i) { return bareRecord(spread(i), i, i - 1, i == mostRecords - 1); }));
    add("full tab, one chain, stored backwards",
        fullTab([&](int i) { return bareRecord(spread(i), i, i == mostRecords - 1 ? -1 : i + 1, i == 0); }));
    add("full tab, one cycle",
        fullTab([&](int i) { return bareRecord(spread(i), i, i == 0 ? mostRecords - 1 : i - 1); }));
    add("full tab, all fed by the first, huge count",
        fullTab([&](int i) { return bareRecord(spread(i), i, i == 0 ? -1 : 0); }, huge));
    add("full tab, all with one index, fed by themselves",
        fullTab([&](int i) { return bareRecord(spread(i), 7, 7); }));
    add("full tab, all ends of story", fullTab([&](int i) { return bareRecord(spread(i), i, i - 1, 1); }));
    add("full tab, each record over the one before",
        fullTab([&](int i) { return bareRecord(spread(i), 2 * i + 2, -1); }));
    add("full tab, far apart", fullTab([](int i) {
            return bareRecord(QPointF(i % 2 == 0 ? 1e300 : -1e300, i), i, i - 1, i == mostRecords - 1);
        }),
        ofAPile);
    QByteArray manyTabs;
    constexpr int tabs = (mostBytes - 4) / (4 + bareSize);
    for (int i = 0; i < tabs; ++i)
        manyTabs += intBytes(1) + bareRecord({}, 0, -1);
    add("tabs with one event each", intBytes(tabs) + manyTabs, ofManyTabs);
}

void addTexts(std::vector<File> &files)
{
    const std::pair<const char *, QString> units[] = {
        {"one word", QStringLiteral("x")},
        {"short words", QStringLiteral("ab ")},
        {"empty lines", QStringLiteral("\n")},
        {"line separators", QString(QChar(0x2028))},
        {"tabulators", QStringLiteral("\t")},
        {"zero characters", QString(QChar(0))},
        {"lone surrogates", QString(QChar(0xD83D))},
        {"emoji", QString::fromUcs4(U"\U0001F600")},
        {"joined emoji", QString::fromUcs4(U"\U0001F468\u200D\U0001F469\u200D\U0001F467")},
        {"combining marks", QString(QChar(0x0301))},
        {"right-to-left words", QStringLiteral("\u0645\u0631\u062D\u0628\u0627 ")},
        {"changing directions", QStringLiteral("a\u05D0")},
        {"words of changing directions", QStringLiteral("ab \u05D0\u05D1 ")},
        {"direction marks", QString(QChar(0x202E))},
        {"soft hyphens", QString(QChar(0x00AD))},
        {"Chinese letters", letters(0x4E00, 20000)},
        {"all scripts", letters(0x0000, 0xD800)},
        {"random letters", randomLetters(50000)},
    };
    for (const auto &[name, unit] : units) {
        files.push_back({QStringLiteral("description: ") + QLatin1String(name), oneText(unit, false)});
        files.push_back({QStringLiteral("title: ") + QLatin1String(name), oneText(unit, true)});
    }
}

void addForeign(std::vector<File> &files)
{
    const auto add = [&files](const char *name, const QByteArray &bytes) {
        files.push_back({QLatin1String(name), bytes.left(mostBytes)});
    };
    const auto fill = [](const QByteArray &unit) { return unit.repeated(mostBytes / unit.size() + 1); };
    files.push_back({QStringLiteral("empty tabs"),
                     intBytes(mostBytes / 4 - 1) + QByteArray(mostBytes - 4, '\0'), ofManyTabs});
    add("a text", fill("Once upon a time there was a very long text.\n"));
    add("a program", readFile(QCoreApplication::applicationFilePath()));
    add("zeros", QByteArray(mostBytes, '\0'));
    add("ones", QByteArray(mostBytes, '\xFF'));
    for (const quint32 seed : {1U, 2U, 3U, 4U}) {
        QRandomGenerator generator(seed);
        QByteArray bytes;
        while (bytes.size() < mostBytes)
            bytes += bigEndian(generator.generate());
        bytes[0] = char(seed % 2 == 0 ? 0x7F : 0x00); // half of all first bytes would mean no tabs at all
        add(qPrintable(QStringLiteral("random bytes, seed %1").arg(seed)), bytes);
    }
}

// The parent: all files.

struct Measured
{
    double openSeconds = std::numeric_limits<double>::infinity();
    double shownSeconds = openSeconds;
    double megabytes = openSeconds;
    QByteArray made = "did not come back";

    bool allCameBack = true;

    bool isWithin(const Limits &limits) const
    {
        return allCameBack && shownSeconds < limits.seconds && megabytes > 0 && megabytes < limits.megabytes;
    }
};

void measureOnce(const QString &path, Measured &best)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {openOption, path});
    if (!child.waitForFinished(patience)) {
        child.kill();
        child.waitForFinished();
        best.allCameBack = false;
        return;
    }
    const QList<QByteArray> numbers = child.readAllStandardOutput().trimmed().split(' ');
    if (numbers.size() != 5) {
        best.allCameBack = false;
        return;
    }
    best.openSeconds = std::min(best.openSeconds, numbers[0].toDouble());
    best.shownSeconds = std::min(best.shownSeconds, numbers[1].toDouble());
    best.megabytes = std::min(best.megabytes, numbers[2].toDouble());
    best.made = numbers[3] + " tabs, " + numbers[4] + " nodes";
}

bool isWanted(const QString &name, const QStringList &words)
{
    return words.isEmpty() || std::any_of(words.begin(), words.end(),
                                          [&name](const QString &word) { return name.contains(word); });
}

int measureAll(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const int slack = std::max(1, qEnvironmentVariableIntValue("FABLEGRID_SLACK"));
    std::vector<File> files;
    addGraphs(files);
    addTexts(files);
    addForeign(files);

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("worst.scene"));
    int beyond = 0;
    int measured = 0;
    std::printf("%8s %8s %8s %8s  %s\n", "bytes", "open s", "shown s", "MB", "file");
    for (const File &file : files) {
        if (!isWanted(file.name, QCoreApplication::arguments().mid(1)))
            continue;
        if (file.bytes.size() > mostBytes || !writeFile(path, file.bytes)) {
            std::fprintf(stderr, "%s: cannot be written\n", qPrintable(file.name));
            return 2;
        }
        Measured best;
        for (int run = 0; run < runs && (run == 0 || best.openSeconds < 10); ++run)
            measureOnce(path, best);
        const Limits limits{slack * file.limits.seconds, file.limits.megabytes};
        const bool isGood = best.isWithin(limits);
        beyond += isGood ? 0 : 1;
        ++measured;
        std::printf("%8lld %8.3f %8.3f %8.1f  %s (%s)", static_cast<long long>(file.bytes.size()),
                    best.openSeconds, best.shownSeconds, best.megabytes, qPrintable(file.name),
                    best.made.constData());
        std::puts(
            isGood ? ""
                   : qPrintable(
                         QStringLiteral("  BEYOND %1 s OR %2 MB").arg(limits.seconds).arg(limits.megabytes)));
        std::fflush(stdout);
    }
    std::printf("%d of %d files beyond their limits\n", beyond, measured);
    return beyond == 0 && measured > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", "");
    const bool isChild = argc == 3 && QString::fromLocal8Bit(argv[1]) == openOption;
    return isChild ? openOne(argc, argv) : measureAll(argc, argv);
}
