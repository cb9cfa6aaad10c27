#include "app/scenedocument.h"

#include "app/documentstream.h"
#include "app/durablefile.h"
#include "app/storytabs.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QBuffer>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

namespace {

/// Every tab takes four bytes at least; a count beyond that is damage, and the empty tabs would never end.
qint64 mostTabsOf(const QFile &file)
{
    constexpr qint64 bytesOfATab = 4;
    constexpr qint64 spare = 16;
    return file.size() / bytesOfATab + spare;
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

void SceneDocument::saveTo(const QString &file) const
{
    DurableFile written(file);
    if (!written.open()) {
        qWarning() << "Couldn't open file for writing.";
        return;
    }
    qInfo() << "Tabs to save" << tabs.views().size();
    if (const QString trouble = written.replaceBy(bytes()); !trouble.isEmpty())
        qWarning() << "Couldn't write the scene file:" << file << trouble;
}

void SceneDocument::loadFrom(const QString &file)
{
    QFile opened(file);
    // A pipe would let the program wait for whoever writes into it.
    if (!QFileInfo(file).isFile() || !opened.open(QIODevice::ReadOnly)) {
        qWarning() << "Couldn't open file for reading.";
        return;
    }
    qInfo() << "Clearing tabs";
    clear();
    read(opened);
    keptAt = file;
}

void SceneDocument::read(QFile &file)
{
    DocumentStream stream(&file);
    qint32 count = 0;
    stream >> count;
    qInfo() << "Tabs to open" << count;
    const qint64 mostTabs = mostTabsOf(file);
    if (count > mostTabs) {
        qWarning() << "Damaged scene file:" << file.fileName() << "cannot hold" << count << "tabs, opening"
                   << mostTabs;
        count = static_cast<qint32>(mostTabs);
    }
    tabs.add(count);
    const std::vector<NodegraphView *> opened = tabs.views();
    for (NodegraphView *view : opened) {
        tabs.hideStoryOf(view->nodegraphScene());
        view->nodegraphScene()->loadSceneFromFile(stream);
        tabs.showStoryOf(view->nodegraphScene());
        view->viewport()->update();
    }
    if (NodegraphView *view = tabs.current())
        view->nodegraphScene()->updateStory();
}

void SceneDocument::clear()
{
    tabs.closeAll();
    keptAt.clear();
}
