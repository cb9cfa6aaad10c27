#include "story/outline.h"
#include "story/storyformat.h"
#include "story/storysupport.h"

// In which order, how deep and with which numbers events are told.

class tst_Outline : public TestCase
{
    Q_OBJECT

private slots:
    void eventsAreToldInOrder_data();
    void eventsAreToldInOrder();
    void deepBranchesAreNoDeepCalls();
};

namespace {

/// An entry as "depth step number title": the step is "" for one that goes on.
QString entryText(const OutlineEntry &entry)
{
    const QString step = entry.step == OutlineStep::branches  ? QStringLiteral("/")
                         : entry.step == OutlineStep::isLoose ? QStringLiteral("~")
                                                              : QString();
    return QString::number(entry.depth) + step + entry.heading();
}

QString told(const StoryTab &tab, const ExportOptions &options)
{
    QStringList all;
    for (const OutlineEntry &entry : outlineOf(tab, options))
        all << entryText(entry);
    return all.join(QLatin1Char(' '));
}

} // namespace

void tst_Outline::eventsAreToldInOrder_data()
{
    QTest::addColumn<bool>("important");
    QTest::addColumn<bool>("branches");
    QTest::addColumn<bool>("numbers");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *wanted, int end, const char *expected) {
        const QString options = QString::fromLatin1(wanted);
        QTest::newRow(name) << options.contains(u'i') << options.contains(u'b') << options.contains(u'n')
                            << end << QString::fromLatin1(expected);
    };
    row("the story", "", 3, "0A 0B 0C 0D");
    row("with numbers", "n", 3, "01. A 02. B 03. C 04. D");
    row("important", "i", 3, "0B");
    row("important ones keep their numbers", "in", 3, "02. B");
    row("branches", "b", 3, "0A 0B 1/E 2/H 1G 1/F 0C 0D 0~I 0J");
    row("branches with numbers", "bn", 3,
        "01. A 02. B 1/2.1. E 2/2.1.1. H 12.2. G 1/2.3. F 03. C 04. D 0~5. I 06. J");
    row("important with branches", "ib", 3, "0B 1/E");
    row("the end in a branch", "b", 6, "0A 0B 1/C 1D 1/F 0E 1/H 0G 0~I 0J");
    row("no end", "b", -1, "0~A 0B 1/E 2/H 1G 1/F 0C 0D 0~I 0J");
    row("no end, no branches", "", -1, "");
}

void tst_Outline::eventsAreToldInOrder()
{
    QFETCH(const bool, important);
    QFETCH(const bool, branches);
    QFETCH(const bool, numbers);
    QFETCH(const int, end);
    QFETCH(const QString, expected);
    StoryTab tab = branchedTab();
    for (std::size_t i = 0; i < tab.events.size(); ++i)
        tab.events[i].isEnd = int(i) == end;
    tab.findChain();
    ExportOptions options;
    options.onlyImportant = important;
    options.withBranches = branches;
    options.withNumbers = numbers;
    QCOMPARE(told(tab, options), expected);
}

// Each event leads to two others, one of which goes on in the same way.
void tst_Outline::deepBranchesAreNoDeepCalls()
{
    constexpr int depth = 100000;
    StoryTab tab;
    tab.events.resize(2 * depth);
    for (int i = 2; i < 2 * depth; ++i)
        tab.events[i].feeder = i % 2 == 0 ? i - 1 : i - 2;
    tab.events[1].feeder = 0;
    tab.joinFed();
    ExportOptions options;
    options.withBranches = true;
    options.withNumbers = true;
    QCOMPARE(outlineOf(tab, options).size(), std::size_t(2 * depth));
}

QTEST_MAIN(tst_Outline)
#include "tst_outline.moc"
