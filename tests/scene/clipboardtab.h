#pragma once

#include "commands/graphtab.h"
#include "scene/scenebytes.h"

#include <algorithm>

/// A tab with events far from each other, made without commands, so that the history holds the test's own.
struct ClipboardTab : GraphTab
{
    static constexpr double spacing = 1000;

    /// A loose event on a line from the lower left to the upper right: a rubber band can reach each alone.
    Node *place(const QString &title)
    {
        scene.sl_deselectCurrentNode();
        const QPointF pos(500 + placed * spacing, 9500 - placed * spacing);
        scene.createNode(pos, placed++, 0, nullptr, title);
        Node *node = scene.nodes().back();
        typeDescription(node, QStringLiteral("About %1").arg(title));
        return node;
    }

    /// Events that feed each other in this order.
    std::vector<Node *> placeChain(const QStringList &titles)
    {
        std::vector<Node *> chain;
        for (const QString &title : titles) {
            Node *node = place(title);
            if (!chain.empty())
                scene.connectNodes(node, chain.back());
            chain.push_back(node);
        }
        return chain;
    }

    /// Selects exactly these events, in this order, with a rubber band; afterwards no event is current.
    void select(const std::vector<Node *> &wanted)
    {
        SceneMouse mouse{scene};
        mouse.press(QPointF(10, 10));
        for (const Node *node : wanted)
            mouse.move(node->scenePos() + QPointF(5, 5));
        mouse.release(QPointF(10, 10));
        QCOMPARE(scene.selectedNodes(), wanted);
    }

    void makeCurrent(Node *node) { scene.sl_selectCurrentNode(node); }

    void copyCurrent(Node *node)
    {
        makeCurrent(node);
        scene.copyNodes();
    }

    void cutCurrent(Node *node)
    {
        makeCurrent(node);
        scene.cutNodes();
    }

    void pasteAt(QPointF pos)
    {
        scene.sl_lastMousePos(pos);
        scene.pasteNodes();
    }

    /// The newest event with that title, null if there is none.
    Node *titled(const QString &title) const
    {
        const std::vector<Node *> &nodes = scene.nodes();
        const auto found = std::find_if(nodes.rbegin(), nodes.rend(),
                                        [&title](const Node *node) { return node->title() == title; });
        return found == nodes.rend() ? nullptr : *found;
    }

    QStringList titles() const
    {
        QStringList all;
        for (const Node *node : scene.nodes())
            all << node->title();
        all.sort();
        return all;
    }

    /// All connections as "A > B", by titles; whatever is only half there is named too.
    QStringList joined() const
    {
        QStringList all;
        for (const Node *node : scene.nodes()) {
            if (node->hasInput())
                all << QStringLiteral("%1 > %2").arg(node->prevNode()->title(), node->title());
        }
        const QStringList exact = connections(scene);
        const bool isWhole = exact.filter(QStringLiteral("half")).isEmpty() && exact.size() == all.size();
        if (!isWhole)
            all << exact;
        all.sort();
        return all;
    }

    /// What the scene saves, with the records in the order of their indices.
    QByteArray document()
    {
        SceneBytes::Records records = SceneBytes::savedRecords(scene);
        std::sort(records.begin(), records.end(),
                  [](const auto &a, const auto &b) { return a.index < b.index; });
        return SceneBytes::block(records);
    }

    /// The titles of the events that cannot be seen.
    QStringList hidden() const
    {
        QStringList all;
        for (const Node *node : scene.nodes()) {
            if (!node->isVisible())
                all << node->title();
        }
        all.sort();
        return all;
    }

    /// The lines that cannot be seen, as in joined().
    QStringList hiddenLines() const
    {
        QStringList all;
        for (const Node *node : scene.nodes()) {
            if (node->inLine() && !node->inLine()->isVisible())
                all << QStringLiteral("%1 > %2").arg(node->prevNode()->title(), node->title());
        }
        all.sort();
        return all;
    }

private:
    int placed = 0;
};
