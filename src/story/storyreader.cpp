#include "story/storyreader.h"

#include "app/documentformat.h"
#include "app/documentstream.h"
#include "app/wholefile.h"
#include "items/node.h"
#include "items/textmeasure.h"
#include "scene/nodegraphscene.h"
#include "story/samebytes.h"
#include "story/tabdifference.h"

#include <QDataStream>
#include <QHash>
#include <QIODevice>
#include <QUndoCommand>
#include <QtEndian>

#include <optional>

namespace {

/// Takes the log of its lifetime. What a reader finds wrong with a file it says there, and nowhere else: so
/// whoever listens tells just what the editor's log tells. The libraries speak in the same place, of a font
/// that lacks a script and the like: that is no fault of the file.
class ReadingLog
{
public:
    explicit ReadingLog(StoryDamage &damage) : noted(damage), previous(qInstallMessageHandler(&handle))
    {
        active = this;
    }
    ~ReadingLog()
    {
        qInstallMessageHandler(previous);
        active = nullptr;
    }
    ReadingLog(const ReadingLog &) = delete;
    ReadingLog &operator=(const ReadingLog &) = delete;

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        const bool isDamage = text.startsWith(QLatin1String("Damaged "));
        if (type == QtInfoMsg && text == QLatin1String("CouldntFind outNode"))
            ++active->noted.missingFeeders;
        else if (type == QtWarningMsg && isDamage)
            active->noted.warnings << text;
        else if (type != QtInfoMsg && type != QtDebugMsg && active->previous)
            active->previous(type, context, text);
    }

    inline static ReadingLog *active = nullptr;
    StoryDamage &noted;
    QtMessageHandler previous;
};

/// A graph without a view: its edits are carried out at once and cannot be undone.
std::unique_ptr<NodegraphScene> graphAlone()
{
    auto graph = std::make_unique<NodegraphScene>();
    QObject::connect(graph.get(), &NodegraphScene::s_UndoCommandAdded, graph.get(),
                     [](QUndoCommand *command) {
                         const std::unique_ptr<QUndoCommand> owned(command);
                         owned->redo();
                     });
    return graph;
}

StoryTab tabOf(const NodegraphScene &graph)
{
    const std::vector<Node *> &nodes = graph.nodes();
    QHash<const Node *, int> places;
    places.reserve(qsizetype(nodes.size()));
    for (std::size_t place = 0; place < nodes.size(); ++place)
        places.insert(nodes[place], int(place));

    StoryTab tab;
    tab.events.reserve(nodes.size());
    for (const Node *node : nodes) {
        StoryEvent event;
        event.index = node->getIndex();
        event.title = node->title();
        event.description = node->description();
        event.position = node->pos();
        event.isEnd = node->isEndOfStory();
        event.isImportant = node->isImportant();
        if (node->hasInput())
            event.feeder = places.value(node->prevNode(), -1);
        for (const Node *next : node->nextNodes())
            event.fed.push_back(places.value(next));
        tab.events.push_back(std::move(event));
    }
    for (const Node *node : graph.story())
        tab.chain.push_back(places.value(node));
    return tab;
}

bool isSavedAs(QByteArrayView block, NodegraphScene &graph)
{
    SameBytes same(block);
    DocumentStream stream(&same);
    graph.saveSceneToFile(stream);
    return same.isSame();
}

/// Whether the graph holds what its block in a file says. A tab whose end was deleted is saved without one,
/// and its first event is the end when it is opened: that is no damage.
bool isTold(QByteArrayView block, NodegraphScene &graph)
{
    if (isSavedAs(block, graph))
        return true;
    Node *const end = graph.endOfStoryNode();
    if (!end || end != graph.nodes().front())
        return false;
    end->setIsEndOfStory(false);
    const bool isTold = isSavedAs(block, graph);
    end->setIsEndOfStory(true);
    return isTold;
}

} // namespace

bool StoryDamage::isNone() const { return lines().isEmpty(); }

QStringList StoryDamage::lines() const
{
    QStringList all = warnings;
    if (missingFeeders > 0)
        all << tr("connections from events that are not in the file, left out: %1").arg(missingFeeders);
    if (endedEarly)
        all << tr("the file ends early: what is missing reads as zero and as empty");
    if (hasBrokenText)
        all << tr("a text that ends in the middle of a letter reads as empty");
    if (bytesBehind > 0)
        all << tr("bytes behind the last tab, left out: %1").arg(bytesBehind);
    if (hasOtherCount)
        all << tr("the number of the tabs would be saved differently");
    for (const auto &[tab, reason] : changed) {
        const QString line =
            tr("%1 is not read just as it stands in the file, and would be saved differently").arg(tab);
        all << (reason.isEmpty() ? line : tr("%1: %2").arg(line, reason));
    }
    return all;
}

StoryReader::StoryReader(Boxes ofGraphs) : boxes(ofGraphs) {}

StoryReader::~StoryReader() = default;

bool StoryReader::hasChangedSince() const { return !FileStamp::of(readFrom).holdsTheSameAs(stamp); }

QString StoryReader::read(const QString &file, const PartTold &tell)
{
    graphs.clear();
    found = {};
    const WholeFile whole(file);
    if (!whole.trouble().isEmpty())
        return whole.trouble();
    readFrom = file;
    stamp = whole.stamp();

    const ReadingLog log(found);
    std::optional<TextMeasure::Pause> pause;
    if (boxes == Boxes::unmeasured)
        pause.emplace();
    const auto make = [this](int count) {
        for (int i = 0; i < count; ++i)
            graphs.push_back(graphAlone());
        return scenes();
    };
    QDataStream::Status status = QDataStream::Ok;
    qint64 readTo = sizeof(qint32);
    std::vector<qint64> begins; // of the tabs' blocks
    const auto fill = [&](NodegraphScene &graph, QDataStream &stream, DamageLog &lines) {
        begins.push_back(stream.device()->pos());
        const Damage damage = graph.load(stream, lines);
        status = stream.status();
        readTo = stream.device()->pos();
        return damage;
    };
    DocumentFormat::read(file, whole.content(), make, fill, tell);
    const qint64 size = whole.content().size();
    found.endedEarly = status == QDataStream::ReadPastEnd || size < qint64(sizeof(qint32));
    found.hasBrokenText = status == QDataStream::ReadCorruptData;
    found.bytesBehind = qMax<qint64>(0, size - readTo);
    begins.push_back(readTo);
    if (found.isNone())
        compare(whole.content(), begins);
    return {};
}

/// What of a file is damaged without anything that tells so: a field with a value that stands for none, two
/// ends of the story, one record read over another, a sign that no text here has.
void StoryReader::compare(QByteArrayView content, const std::vector<qint64> &begins)
{
    found.hasOtherCount = qFromBigEndian<qint32>(content.data()) != qint32(graphs.size());
    for (std::size_t i = 0; i < graphs.size(); ++i) {
        const QByteArrayView block = content.sliced(begins[i], begins[i + 1] - begins[i]);
        if (!isTold(block, *graphs[i]))
            found.changed.push_back({Story::nameOfTab(int(i)), TabDifference::reason(block, *graphs[i])});
    }
}

Story StoryReader::story() const
{
    Story story;
    for (const auto &graph : graphs) {
        story.tabs.push_back(tabOf(*graph));
        story.tabs.back().name = Story::nameOfTab(int(story.tabs.size()) - 1);
    }
    return story;
}

std::vector<NodegraphScene *> StoryReader::scenes() const
{
    std::vector<NodegraphScene *> all;
    for (const auto &graph : graphs)
        all.push_back(graph.get());
    return all;
}

QByteArray StoryReader::bytes() const { return DocumentFormat::bytes(scenes()); }
