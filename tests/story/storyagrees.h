#pragma once

#include "fuzz/documentmodel.h"
#include "items/eventdata.h"
#include "items/nodedata.h"
#include "story/storysupport.h"
#include "view/nodegraphview.h"

/// What the command makes of a file, beside what a window made of it.
namespace StoryAgrees {

inline QString textOf(const QJsonValue &value) { return value.isNull() ? QString() : value.toString(); }

inline double coordinateOf(const QJsonValue &value)
{
    return value.isString() ? value.toString().toDouble() : value.toDouble();
}

/// An event of the exported text as one line, without any of the program's own reading.
inline QString lineOf(const QJsonObject &object)
{
    DocumentModel::Event event;
    event.title = textOf(object[QStringLiteral("title")]);
    event.description = textOf(object[QStringLiteral("description")]);
    event.x = coordinateOf(object[QStringLiteral("x")]);
    event.y = coordinateOf(object[QStringLiteral("y")]);
    event.index = object[QStringLiteral("index")].toInt();
    event.upstream = object[QStringLiteral("fedBy")].isNull() ? -1 : object[QStringLiteral("fedBy")].toInt();
    event.endOfStory = object[QStringLiteral("endOfStory")].toBool();
    event.important = object[QStringLiteral("important")].toBool();
    return DocumentModel::line(event);
}

inline QString lineOf(const Node &node)
{
    DocumentModel::Event event;
    event.title = node.title();
    event.description = node.payload()->eventContent()->getDescription();
    event.x = node.pos().x();
    event.y = node.pos().y();
    event.index = node.getIndex();
    event.upstream = node.prevNode() ? node.prevNode()->getIndex() : -1;
    event.endOfStory = node.isEndOfStory();
    event.important = node.isImportant();
    return DocumentModel::line(event);
}

inline QStringList linesOf(const QJsonObject &tab)
{
    QStringList lines;
    for (const auto &event : tab[QStringLiteral("events")].toArray())
        lines << lineOf(event.toObject());
    QStringList chain;
    for (const auto &index : tab[QStringLiteral("story")].toArray())
        chain << QString::number(index.toInt());
    return lines << QStringLiteral("story ") + chain.join(QLatin1Char(' '));
}

inline QStringList linesOf(const NodegraphScene &scene)
{
    QStringList lines;
    for (const Node *node : scene.nodes())
        lines << lineOf(*node);
    QStringList chain;
    for (const Node *node : scene.story())
        chain << QString::number(node->getIndex());
    return lines << QStringLiteral("story ") + chain.join(QLatin1Char(' '));
}

/// Where the command differs from the window that has opened the same file and warned so; empty if nowhere.
inline QString difference(const QString &path, const MainWindow &window, const QStringList &warnings)
{
    const CommandResult exported =
        runCommand({QStringLiteral("export"), path, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("json")});
    if (exported.code != Done)
        return QStringLiteral("export ends with %1").arg(exported.code);
    const QJsonArray tabs =
        QJsonDocument::fromJson(exported.output).object()[QStringLiteral("tabs")].toArray();
    const std::vector<NodegraphView *> &views = window.views();
    if (tabs.size() != qsizetype(views.size()))
        return QStringLiteral("%1 tabs are exported, not %2").arg(tabs.size()).arg(views.size());
    for (qsizetype i = 0; i < tabs.size(); ++i) {
        const QStringList found = linesOf(tabs[i].toObject());
        const QStringList wanted = linesOf(*views[std::size_t(i)]->nodegraphScene());
        for (qsizetype line = 0; line < qMax(found.size(), wanted.size()); ++line) {
            if (found.value(line) != wanted.value(line))
                return QStringLiteral("exported %1, not %2").arg(found.value(line), wanted.value(line));
        }
    }

    const QString damaged = path + QStringLiteral(": damaged: ");
    const CommandResult checked = runCommand({QStringLiteral("check"), path});
    const QStringList lines = checked.outputLines();
    for (qsizetype i = 0; i < warnings.size(); ++i) {
        if (lines.value(i) != damaged + warnings[i])
            return QStringLiteral("check says \"%1\", not \"%2\"").arg(lines.value(i), warnings[i]);
    }
    // What the window is silent about comes behind.
    for (const QString &line : lines.mid(warnings.size())) {
        if (line.contains(QLatin1String("Damaged")))
            return QStringLiteral("check says \"%1\"").arg(line);
    }
    return {};
}

} // namespace StoryAgrees
