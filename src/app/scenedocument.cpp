#include "app/scenedocument.h"

#include "app/documentformat.h"
#include "app/durablefile.h"
#include "app/heap.h"
#include "app/storing.h"
#include "app/storytabs.h"
#include "app/wholefile.h"
#include "scene/nodegraphscene.h"
#include "scene/storypublishing.h"
#include "view/nodegraphview.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QLoggingCategory>

#include <cerrno>
#include <new>
#include <numeric>
#include <optional>

namespace {

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

/// The scenes of the tabs, in the order in which they are saved.
std::vector<NodegraphScene *> scenesOf(const StoryTabs &tabs)
{
    std::vector<NodegraphScene *> scenes;
    for (const NodegraphView *view : tabs.views())
        scenes.push_back(view->nodegraphScene());
    return scenes;
}

} // namespace

QByteArray SceneDocument::bytes() const { return DocumentFormat::bytes(scenesOf(tabs)); }

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
    return isOnDisk(all) ? QByteArray() : all;
}

bool SceneDocument::isOnDisk(const QByteArray &content) const { return hashOf(content) == onDisk; }

Saving SceneDocument::saveTo(const QString &file)
{
    DurableFile written(file);
    if (!written.open()) {
        qWarning() << "Couldn't open file for writing.";
        return {written.trouble(), {}};
    }
    qInfo() << "Tabs to save" << tabs.views().size();
    Saving saving;
    try {
        const QByteArray all = bytes();
        saving.trouble = written.replaceBy(all);
        saving.rescue = written.rescue();
        if (saving.trouble.isEmpty())
            onDisk = hashOf(all);
    } catch (const std::bad_alloc &) {
        saving.trouble = Storing::reason(ENOMEM);
    }
    if (!saving.trouble.isEmpty())
        qWarning() << "Couldn't write the scene file:" << file << saving.trouble;
    return saving;
}

Opening SceneDocument::loadFrom(const QString &file, const std::function<void()> &leaving)
{
    const WholeFile whole(file);
    if (!whole.trouble().isEmpty()) {
        qWarning() << "Couldn't open file for reading.";
        return {whole.trouble(), {}, 0, false};
    }
    try {
        if (leaving)
            leaving();
    } catch (const std::bad_alloc &) {
        qWarning() << "Couldn't open file for reading.";
        return {Storing::reason(ENOMEM), {}, 0, false};
    }
    qInfo() << "Clearing tabs";
    tabs.closeAll();
    try {
        Opening opening = read(file, whole.content());
        onDisk = hashOf(whole.content());
        keptAt = file;
        giveMemoryBack();
        return opening;
    } catch (const std::bad_alloc &) {
        // Half a document must not get into the file by the next save.
        clear();
        qWarning() << "Couldn't open file for reading.";
        return {Storing::reason(ENOMEM), {}, 0, false};
    }
}

Opening SceneDocument::read(const QString &file, const QByteArray &content)
{
    // The story that is listed in the end is told once, after those of the other tabs.
    NodegraphView *shown = nullptr;
    std::optional<StoryPublishing::Step> last;
    const auto make = [&](int count) {
        tabs.add(count);
        shown = tabs.current();
        if (shown)
            last.emplace(shown->nodegraphScene()->publishing());
        return scenesOf(tabs);
    };
    const auto fill = [](NodegraphScene &scene, QDataStream &stream) {
        const Damage damage = scene.load(stream);
        for (QGraphicsView *view : scene.views())
            view->viewport()->update();
        return damage;
    };
    Opening opening = DocumentFormat::read(file, content, make, fill);
    if (shown)
        shown->nodegraphScene()->updateStory();
    return opening;
}

void SceneDocument::clear()
{
    tabs.closeAll();
    keptAt.clear();
    giveMemoryBack();
}
