#include "app/documentformat.h"
#include "items/node.h"
#include "scene/nodegraphscene.h"
#include "story/importsupport.h"
#include "story/storyformats.h"
#include "story/storygraph.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

// Laying out texts takes a hundred times as long as reading them: so not every story is written and read
// again.
constexpr std::size_t mostEvents = 50;
constexpr int storiesSkipped = 8; // one of so many is tried

/// What is wrong with a story that a text was made into, empty if nothing is.
QString problemOf(const StoryTab &tab)
{
    std::set<int> indices;
    int ends = 0;
    for (const StoryEvent &event : tab.events) {
        if (!indices.insert(event.index).second)
            return QStringLiteral("the index %1 occurs twice").arg(event.index);
        if (event.feeder < -1 || event.feeder >= int(tab.events.size()))
            return QStringLiteral("an event is fed from nowhere");
        ends += event.isEnd ? 1 : 0;
    }
    if (ends > 1)
        return QStringLiteral("there are %1 ends").arg(ends);
    ExportOptions options;
    options.withBranches = true;
    // What hangs on a circle is told of nowhere.
    if (outlineOf(tab, options).size() != tab.events.size())
        return QStringLiteral("not every event is told of");
    return {};
}

/// What is wrong with the file that the story is written to.
QString problemOfFile(const Story &story, ImportResult::Places places)
{
    std::vector<StoryGraph> graphs;
    std::vector<NodegraphScene *> scenes;
    for (const StoryTab &tab : story.tabs) {
        graphs.emplace_back(tab);
        StoryGraph &graph = graphs.back();
        const std::vector<QSizeF> sizes = graph.sizes();
        const std::vector<QPointF> found = StoryLayout(tab, sizes, graph.canvas()).places();
        std::vector<QRectF> boxes;
        for (std::size_t i = 0; i < found.size(); ++i)
            boxes.emplace_back(found[i], sizes[i]);
        if (!StoryLayout::isClear(boxes, graph.canvas()))
            return QStringLiteral("boxes overlap");
        if (places != ImportResult::Places::exact)
            graph.place(found);
        graph.connect(tab);
        scenes.push_back(&graph.scene());
    }
    static const StoryFolder &folder = *new StoryFolder;
    StoryReader reader;
    const QByteArray bytes = DocumentFormat::bytes(scenes);
    if (QString trouble = reader.read(folder.put(QStringLiteral("made.scene"), bytes)); !trouble.isEmpty())
        return trouble;
    if (!reader.damage().isNone())
        return reader.damage().lines().join(QLatin1Char('\n'));
    return {};
}

QString problemOf(const StoryFormat &format, const QByteArray &text)
{
    Story story;
    const ImportResult result = format.read(text, story);
    if (!result.trouble.isEmpty())
        return {};
    std::size_t events = 0;
    for (const StoryTab &tab : story.tabs) {
        if (QString problem = problemOf(tab); !problem.isEmpty())
            return problem;
        events += tab.events.size();
    }
    const bool isTried = events <= mostEvents && qChecksum(text) % storiesSkipped == 0;
    return isTried ? problemOfFile(story, result.places) : QString();
}

/// Without a screen, whatever the environment says.
int &arguments()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", "");
    static int count = 0;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

/// The first byte says which format, the others are the text.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static const QApplication &app = []() -> const QApplication & {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return *new QApplication(arguments(), nullptr);
    }();
    Q_UNUSED(app)
    static const std::vector<const StoryFormat *> formats = [] {
        std::vector<const StoryFormat *> readable = StoryFormats::all();
        std::erase_if(readable, [](const StoryFormat *format) { return !format->canRead(); });
        std::sort(readable.begin(), readable.end(), [](const StoryFormat *one, const StoryFormat *other) {
            return one->name() < other->name();
        });
        return readable;
    }();
    if (size == 0)
        return 0;
    const StoryFormat &format = *formats[data[0] % formats.size()];
    const QByteArray text(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1);
    if (const QString problem = problemOf(format, text); !problem.isEmpty()) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(format.name()), qPrintable(problem));
        std::abort();
    }
    return 0;
}
