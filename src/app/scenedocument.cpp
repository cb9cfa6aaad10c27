#include "app/scenedocument.h"

#include "app/documentformat.h"
#include "app/durablefile.h"
#include "app/heap.h"
#include "app/memoryspare.h"
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

// The quickest of those that nobody can make a second content for: each Open, save and New waits for it.
QByteArray hashOf(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Blake2b_256);
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

QByteArray SceneDocument::bytes() const
{
    QByteArray all = DocumentFormat::bytes(scenesOf(tabs));
    MemorySpare::fit(all.size());
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
    return isOnDisk(all) ? QByteArray() : all;
}

bool SceneDocument::isOnDisk(const QByteArray &content) const { return hashOf(content) == onDisk; }

Saving SceneDocument::saveTo(const QString &file, const std::function<Replacing()> &replacing)
{
    Saving saving = trySaveTo(file, replacing);
    if (saving.isOvertaken)
        saving = trySaveTo(file, replacing); // what has come meanwhile is seen by now
    if (saving.hasBegun && !saving.trouble.isEmpty())
        qWarning() << "Couldn't write the scene file:" << file << saving.trouble;
    return saving;
}

Saving SceneDocument::trySaveTo(const QString &file, const std::function<Replacing()> &replacing)
{
    DurableFile written(file);
    Saving saving;
    if (!written.open()) {
        qWarning() << "Couldn't open file for writing.";
        saving.trouble = written.trouble();
        return saving;
    }
    saving.hasBegun = true;
    try {
        if (replacing) {
            const Replacing old = replacing();
            saving.trouble = old.trouble;
            written.setFormer(old.former);
        }
        if (saving.trouble.isEmpty())
            saving = writeTo(written);
    } catch (const std::bad_alloc &) {
        saving.trouble = Storing::reason(ENOMEM);
    }
    return saving;
}

Saving SceneDocument::writeTo(DurableFile &file)
{
    qInfo() << "Tabs to save" << tabs.views().size();
    const QByteArray all = bytes();
    Saving saving{file.replaceBy(all), file.rescue(), file.old(), true, file.isOvertaken()};
    if (saving.trouble.isEmpty())
        remember(all, file.stamp());
    else if (file.hasLostOld())
        forget();
    return saving;
}

void SceneDocument::remember(const QByteArray &content, const FileStamp &stamp)
{
    onDisk = hashOf(content);
    stampOnDisk = stamp;
}

void SceneDocument::forget()
{
    onDisk.clear();
    stampOnDisk = {};
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
        if (opening.isWhole())
            remember(whole.content(), whole.stamp());
        else
            forget(); // what was left out is in that file only, and the first save over it is to keep it
        keptAt = file;
        giveMemoryBack();
        MemorySpare::fit(whole.content().size());
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
    const auto fill = [](NodegraphScene &scene, QDataStream &stream, DamageLog &log) {
        const Damage damage = scene.load(stream, log);
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
    MemorySpare::fit(0);
}
