#include "story/tabdifference.h"

#include "app/documentstream.h"
#include "items/node.h"
#include "items/noderecord.h"
#include "scene/nodegraphscene.h"
#include "scene/scenerecords.h"

#include <QBuffer>
#include <QCoreApplication>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(TabDifference)
};

bool isMark(qint32 value) { return value == 0 || value == 1; }

/// Of an event whose record is that one.
QString reasonOf(const NodeRecord &record, const Node &node)
{
    if (node.title() != record.title)
        return Texts::tr("the title of event %1 has signs that no text here keeps").arg(record.index);
    if (node.description() != record.text)
        return Texts::tr("the text of event %1 has signs that no text here keeps").arg(record.index);
    if (!isMark(record.endOfStory) || !isMark(record.important))
        return Texts::tr("a mark of event %1 says neither yes nor no").arg(record.index);
    if (record.endOfStory == 1 && !node.isEndOfStory())
        return Texts::tr("event %1 is an end of the story beside another one").arg(record.index);
    return {};
}

} // namespace

QString TabDifference::reason(QByteArrayView block, const NodegraphScene &graph)
{
    QString first;
    const auto compare = [&graph, &first](const QString &tag, const NodeRecord &record) {
        if (!first.isEmpty())
            return;
        const Node *node = graph.findNodeByIndex(record.index);
        if (!node)
            first = Texts::tr("another event is read over event %1").arg(record.index);
        else if (first = reasonOf(record, *node); first.isEmpty() && tag != QLatin1String("Event"))
            first = Texts::tr("event %1 is of a kind that is not known").arg(record.index);
    };
    QByteArray bytes = QByteArray::fromRawData(block.data(), block.size());
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    SceneRecords::skip(stream, compare);
    return first;
}
