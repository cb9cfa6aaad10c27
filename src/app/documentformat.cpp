#include "app/documentformat.h"

#include "app/documentstream.h"
#include "scene/damagelog.h"
#include "scene/nodegraphscene.h"
#include "scene/scenerecords.h"

#include <QBuffer>
#include <QDebug>

#include <algorithm>

namespace {

struct Tabs
{
    qint64 begun = 0;  // at least
    qint64 filled = 0; // so many are there up to the last one with an event
};

/// What these bytes hold of tabs.
Tabs tabsIn(const QByteArray &content)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    qint32 announced = 0;
    stream >> announced;
    Tabs tabs;
    while (!stream.atEnd()) {
        const bool hasEvents = SceneRecords::skip(stream) > 0;
        ++tabs.begun;
        if (hasEvents)
            tabs.filled = tabs.begun;
    }
    return tabs;
}

/// Every tab takes four bytes at least; a count beyond that is damage, and the empty tabs would never end. So
/// is one far beyond what anybody has made, unless the tabs are there: one bit of it may have changed. What
/// is not there as announced may be no story, and its zeros no tabs. Nor is a window made of thousands of
/// empty tabs behind the last one that holds something: there is nothing in them to lose, and they would take
/// minutes.
qint64 mostTabsOf(const QByteArray &content, qint64 announced)
{
    constexpr qint64 bytesOfATab = 4;
    constexpr qint64 spare = 16;
    constexpr qint64 few = 1000; // empty ones take half a second and 100 MB
    constexpr qint64 many = 2 * few;
    const qint64 most = content.size() / bytesOfATab + spare;
    if (std::min(announced, most) <= few)
        return most;
    const Tabs there = tabsIn(content);
    const qint64 believed = announced <= there.begun ? std::min(announced, many) : std::min(there.begun, few);
    return std::max(there.filled, believed);
}

/// Tells how far it is read.
class ToldBuffer : public QBuffer
{
public:
    explicit ToldBuffer(const DocumentFormat::ReadingTold &tell) : told(tell) {}

protected:
    qint64 readData(char *data, qint64 most) override
    {
        if (told && size() > 0)
            told(double(pos()) / double(size()));
        return QBuffer::readData(data, most);
    }

private:
    const DocumentFormat::ReadingTold &told;
};

} // namespace

QByteArray DocumentFormat::bytes(const std::vector<NodegraphScene *> &tabs)
{
    QByteArray all;
    QBuffer buffer(&all);
    buffer.open(QIODevice::WriteOnly);
    DocumentStream stream(&buffer);
    stream << qint32(tabs.size());
    for (NodegraphScene *scene : tabs)
        scene->saveSceneToFile(stream);
    return all;
}

Opening DocumentFormat::read(const QString &file, const QByteArray &content, const TabMaking &make,
                             const TabFilling &fill, const ReadingTold &tell)
{
    ToldBuffer buffer(tell);
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    qint32 count = 0;
    stream >> count;
    qInfo() << "Tabs to open" << count;
    Opening opening;
    const qint64 mostTabs = mostTabsOf(content, count);
    if (count > mostTabs) {
        qWarning() << "Damaged scene file:" << file << "cannot hold" << count << "tabs, opening" << mostTabs;
        opening.missingTabs = static_cast<int>(count - mostTabs);
        count = static_cast<qint32>(mostTabs);
    }
    DamageLog log(file);
    const std::vector<NodegraphScene *> scenes = make(count);
    if (stream.status() != QDataStream::Ok)
        opening.missingTabs = 1; // not even their number is there
    for (NodegraphScene *scene : scenes) {
        if (stream.atEnd())
            ++opening.missingTabs;
        const Damage damage = fill(*scene, stream, log);
        opening.damage.incompleteEvents += damage.incompleteEvents;
        opening.damage.lostConnections += damage.lostConnections;
    }
    opening.hasRest = !buffer.atEnd();
    return opening;
}
