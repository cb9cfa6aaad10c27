#include "app/scenedocument.h"

#include "app/documentstream.h"
#include "app/durablefile.h"
#include "app/storytabs.h"
#include "app/wholefile.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDebug>
#include <QLoggingCategory>

#include <numeric>

namespace {

/// Every tab takes four bytes at least; a count beyond that is damage, and the empty tabs would never end.
qint64 mostTabsOf(const QByteArray &content)
{
    constexpr qint64 bytesOfATab = 4;
    constexpr qint64 spare = 16;
    return content.size() / bytesOfATab + spare;
}

/// Keeps lines about progress out of the log during its lifetime: what is written down by the way is no save.
class WithoutProgress
{
public:
    WithoutProgress() { log.setEnabled(QtInfoMsg, false); }
    ~WithoutProgress() { log.setEnabled(QtInfoMsg, former); }
    WithoutProgress(const WithoutProgress &) = delete;
    WithoutProgress &operator=(const WithoutProgress &) = delete;

private:
    QLoggingCategory &log = *QLoggingCategory::defaultCategory();
    bool former = log.isInfoEnabled();
};

QByteArray hashOf(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256);
}

} // namespace

QByteArray SceneDocument::bytes() const
{
    QByteArray all;
    QBuffer buffer(&all);
    buffer.open(QIODevice::WriteOnly);
    DocumentStream stream(&buffer);
    stream << qint32(tabs.views().size());
    for (const NodegraphView *view : tabs.views())
        view->nodegraphScene()->saveSceneToFile(stream);
    return all;
}

int SceneDocument::tabCount() const { return int(tabs.views().size()); }

int SceneDocument::eventCount() const
{
    return std::accumulate(tabs.views().begin(), tabs.views().end(), 0, [](int count, const auto *view) {
        return count + int(view->nodegraphScene()->nodes().size());
    });
}

QByteArray SceneDocument::unsavedBytes() const
{
    if (eventCount() == 0)
        return {};
    const WithoutProgress quiet;
    const QByteArray all = bytes();
    return hashOf(all) == onDisk ? QByteArray() : all;
}

QString SceneDocument::saveTo(const QString &file)
{
    DurableFile written(file);
    if (!written.open()) {
        qWarning() << "Couldn't open file for writing.";
        return written.trouble();
    }
    qInfo() << "Tabs to save" << tabs.views().size();
    const QByteArray all = bytes();
    const QString trouble = written.replaceBy(all);
    if (trouble.isEmpty())
        onDisk = hashOf(all);
    else
        qWarning() << "Couldn't write the scene file:" << file << trouble;
    return trouble;
}

Opening SceneDocument::loadFrom(const QString &file, const std::function<void()> &leaving)
{
    const WholeFile whole(file);
    if (!whole.trouble().isEmpty()) {
        qWarning() << "Couldn't open file for reading.";
        return {whole.trouble(), {}, 0, false};
    }
    if (leaving)
        leaving();
    qInfo() << "Clearing tabs";
    clear();
    onDisk = hashOf(whole.content());
    Opening opening = read(file, whole.content());
    keptAt = file;
    return opening;
}

Opening SceneDocument::read(const QString &file, const QByteArray &content)
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
    tabs.add(count);
    if (stream.status() != QDataStream::Ok)
        opening.missingTabs = 1; // not even their number is there
    const std::vector<NodegraphView *> opened = tabs.views();
    for (NodegraphView *view : opened) {
        tabs.hideStoryOf(view->nodegraphScene());
        if (stream.atEnd())
            ++opening.missingTabs;
        const Damage damage = view->nodegraphScene()->load(stream);
        opening.damage.incompleteEvents += damage.incompleteEvents;
        opening.damage.lostConnections += damage.lostConnections;
        tabs.showStoryOf(view->nodegraphScene());
        view->viewport()->update();
    }
    if (NodegraphView *view = tabs.current())
        view->nodegraphScene()->updateStory();
    opening.hasRest = !buffer.atEnd();
    return opening;
}

void SceneDocument::clear()
{
    tabs.closeAll();
    keptAt.clear();
}
