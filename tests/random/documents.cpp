#include "random/documents.h"

#include "app/mainwindow.h"
#include "random/choices.h"
#include "scene/recordorder.h"
#include "scene/scenebytes.h"
#include "view/nodegraphview.h"

#include <algorithm>

namespace {

using SceneBytes::Record;
using SceneBytes::Records;

/// The document with each tab's records changed by `change`.
template <typename Change>
QByteArray withTabs(const QByteArray &document, Change change)
{
    SceneBytes::Reader reader(document);
    const qint32 count = reader.int32();
    QByteArray bytes = SceneBytes::int32(count);
    for (qint32 i = 0; i < count && !reader.isShort(); ++i) {
        Records records = reader.block();
        change(records);
        bytes += SceneBytes::block(records);
    }
    return reader.isShort() || !reader.isAtEnd() ? document : bytes;
}

} // namespace

QByteArray documentOf(const MainWindow &window)
{
    QByteArray bytes = SceneBytes::int32(qint32(window.views().size()));
    for (const NodegraphView *view : window.views())
        bytes += SceneBytes::saved(*view->nodegraphScene());
    return bytes;
}

QByteArray sortedDocument(const QByteArray &document)
{
    return withTabs(document, [](Records &records) {
        std::sort(records.begin(), records.end(),
                  [](const Record &a, const Record &b) { return a.index < b.index; });
    });
}

QByteArray asOpened(const QByteArray &document)
{
    return withTabs(document, [](Records &records) {
        const auto isEnd = [](const Record &record) { return record.endOfStory == 1; };
        if (!records.isEmpty() && std::none_of(records.begin(), records.end(), isEnd))
            records.first().endOfStory = 1;
    });
}

QByteArray withoutConnections(const QByteArray &document)
{
    return withTabs(document, [](Records &records) {
        for (Record &record : records)
            record.prevIndex = -1;
    });
}

QByteArray foreignDocument(Choices &choices)
{
    static const std::vector<int> wanted{0, 1, 2, 3, 4, 6, 7, 12, 13, 100, -5, 2147483647};
    static const std::vector<double> places{0, 0.25, 300, 700.5, 1200, -40, 99990, 1e300};
    static const std::vector<QString> texts{QStringLiteral(""), QStringLiteral("Event"),
                                            QStringLiteral("Enter description"),
                                            QStringLiteral("Two\nlines")};
    const int tabs = choices.below(4);
    QByteArray bytes = SceneBytes::int32(tabs);
    for (int tab = 0; tab < tabs; ++tab) {
        Records records;
        for (const int index : wanted) {
            if (!choices.oneIn(3))
                continue;
            Record record;
            record.index = index;
            record.title = choices.anyOf(texts);
            record.description = choices.anyOf(texts);
            record.pos = QPointF(choices.anyOf(places), choices.anyOf(places));
            record.important = choices.below(2);
            // Fed by an earlier one, so never in a circle.
            if (!records.isEmpty() && !choices.oneIn(3))
                record.prevIndex = choices.anyOf(records).index;
            records << record;
        }
        if (!records.isEmpty() && choices.oneIn(2))
            records[choices.below(int(records.size()))].endOfStory = 1;
        std::vector<int> indices;
        for (const Record &record : std::as_const(records))
            indices.push_back(record.index);
        Records inOrder;
        for (const std::size_t place : recordOrder(indices))
            inOrder << records.at(qsizetype(place));
        bytes += SceneBytes::block(inOrder);
    }
    return bytes;
}
