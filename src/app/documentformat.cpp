#include "app/documentformat.h"

#include "app/documentstream.h"
#include "scene/nodegraphscene.h"

#include <QBuffer>
#include <QDebug>

namespace {

/// Every tab takes four bytes at least; a count beyond that is damage, and the empty tabs would never end.
qint64 mostTabsOf(const QByteArray &content)
{
    constexpr qint64 bytesOfATab = 4;
    constexpr qint64 spare = 16;
    return content.size() / bytesOfATab + spare;
}

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
                             const TabFilling &fill)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.setObjectName(file); // what the log is to call it
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    qint32 count = 0;
    stream >> count;
    qInfo() << "Tabs to open" << count;
    Opening opening;
    const qint64 mostTabs = mostTabsOf(content);
    if (count > mostTabs) {
        qWarning() << "Damaged scene file:" << file << "cannot hold" << count << "tabs, opening" << mostTabs;
        opening.missingTabs = static_cast<int>(count - mostTabs);
        count = static_cast<qint32>(mostTabs);
    }
    const std::vector<NodegraphScene *> scenes = make(count);
    if (stream.status() != QDataStream::Ok)
        opening.missingTabs = 1; // not even their number is there
    for (NodegraphScene *scene : scenes) {
        if (stream.atEnd())
            ++opening.missingTabs;
        const Damage damage = fill(*scene, stream);
        opening.damage.incompleteEvents += damage.incompleteEvents;
        opening.damage.lostConnections += damage.lostConnections;
    }
    opening.hasRest = !buffer.atEnd();
    return opening;
}
