#include "random/changes.h"

#include "app/mainwindow.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "random/hands.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QVariant>

#include <algorithm>
#include <limits>

namespace {

constexpr char numberNote[] = "number"; // an address may be another object's after the next step

/// How far one move of the mouse may take an event: over all that the view shows, and back.
double farthestMove(const NodegraphView *view, const Step &step)
{
    if (step.name != QLatin1String("drag on"))
        return std::numeric_limits<double>::infinity();
    const QRectF shown = view->mapToScene(view->viewport()->rect()).boundingRect();
    return 2 * (shown.width() + shown.height());
}

} // namespace

bool Changes::NodeState::hasTextsOf(const NodeState &other) const
{
    return title == other.title && description == other.description && important == other.important;
}

bool Changes::NodeState::isWhole(const NodeState &other) const
{
    return hasTextsOf(other) && pos == other.pos;
}

quint64 Changes::numberOf(QObject *object)
{
    if (!object->property(numberNote).isValid())
        object->setProperty(numberNote, ++lastNumber);
    return object->property(numberNote).toULongLong();
}

Changes::Nodes Changes::statesOf(const NodegraphView *view)
{
    Nodes states;
    for (Node *node : view->nodegraphScene()->nodes()) {
        NodeState state;
        state.index = node->getIndex();
        state.prevIndex = node->getPrevIndex();
        if (node->hasInput())
            state.line = numberOf(node->inLine());
        state.title = node->title();
        state.description = node->payload()->eventContent()->getDescription();
        state.pos = node->scenePos();
        state.important = node->isImportant();
        state.end = node->isEndOfStory();
        states.insert(numberOf(node), state);
    }
    return states;
}

QSet<int> Changes::startOf(const NodegraphView *view) const
{
    return tabs.value(view->property(numberNote).toULongLong()).start;
}

bool Changes::hasLostConnection(const NodegraphView *view) const
{
    return tabs.value(view->property(numberNote).toULongLong()).lostConnection;
}

QString Changes::unexplained(const MainWindow &window, const Step &step)
{
    QString fault;
    QSet<int> typed;
    QHash<quint64, Tab> former;
    former.swap(tabs);
    for (NodegraphView *view : window.views()) {
        const quint64 number = numberOf(view);
        const Nodes now = statesOf(view);
        Tab tab = former.take(number);
        if (view->property("known").toBool()) {
            const QString trouble = explain(tab, now, step.effects, typed);
            const QString thrown = explainMoves(tab.nodes, now, farthestMove(view, step));
            if (fault.isEmpty())
                fault = trouble.isEmpty() ? thrown : trouble;
        } else {
            view->setProperty("known", true);
            for (const NodeState &state : now)
                tab.start.insert(state.index);
            if (!(step.effects & Effect::documents))
                fault = QStringLiteral("a tab has come");
        }
        tab.nodes = now;
        tabs.insert(number, tab);
    }
    if (!former.isEmpty() && !(step.effects & Effect::documents))
        return QStringLiteral("a tab has gone");
    // An edit on the panel reaches the event of that index in every tab.
    if (typed.size() > (step.effects & Effect::scrolls ? 2 : 1))
        return QStringLiteral("the texts of several events have changed");
    return fault;
}

QString Changes::explain(Tab &tab, const Nodes &now, int effects, QSet<int> &typed) const
{
    int marked = 0;
    for (auto it = tab.nodes.cbegin(); it != tab.nodes.cend(); ++it) {
        const NodeState &before = it.value();
        const auto found = now.constFind(it.key());
        followConnection(tab, before, found == now.cend() ? nullptr : &*found, effects);
        if (found == now.cend()) {
            if (!(effects & Effect::removes))
                return QStringLiteral("event %1 has gone").arg(before.index);
            QList<NodeState> &versions = tab.gone[before.index];
            if (std::none_of(versions.cbegin(), versions.cend(),
                             [&before](const NodeState &version) { return version.isWhole(before); }))
                versions.append(before);
            continue;
        }
        if (const QString fault = explainChange(before, *found, effects); !fault.isEmpty())
            return QStringLiteral("event %1 %2").arg(QString::number(before.index), fault);
        if (before.title != found->title || before.description != found->description)
            typed.insert(before.index);
        marked += before.important != found->important;
    }
    if (marked > 1)
        return QStringLiteral("several events have changed their importance");
    int added = 0;
    for (auto it = now.cbegin(); it != now.cend(); ++it) {
        if (tab.nodes.contains(it.key()))
            continue;
        if (const QString fault = explainNew(tab, it.value(), effects); !fault.isEmpty())
            return QStringLiteral("event %1 %2").arg(QString::number(it->index), fault);
        ++added;
    }
    if (added > 1 && !(effects & (Effect::history | Effect::pastes)))
        return QStringLiteral("%1 events have come").arg(added);
    return {};
}

QString Changes::explainMoves(const Nodes &before, const Nodes &now, double farthest)
{
    for (auto it = now.cbegin(); it != now.cend(); ++it) {
        const QPointF from = before.value(it.key(), it.value()).pos;
        if ((it->pos - from).manhattanLength() > farthest)
            return QStringLiteral("event %1 was thrown from (%2, %3) to (%4, %5)")
                .arg(it->index)
                .arg(from.x())
                .arg(from.y())
                .arg(it->pos.x())
                .arg(it->pos.y());
    }
    return {};
}

void Changes::followConnection(Tab &tab, const NodeState &before, const NodeState *now, int effects)
{
    const bool isSame = now && now->prevIndex == before.prevIndex;
    if (effects & Effect::history)
        tab.lostConnection = tab.lostConnection || (!isSame && tab.rerouted.contains(before.index));
    else if (now && before.line != 0 && now->line != 0 && before.line != now->line)
        tab.rerouted.insert(before.index);
}

QString Changes::explainNew(const Tab &tab, const NodeState &state, int effects)
{
    if (!(effects & Effect::adds))
        return QStringLiteral("has come");
    if (effects & Effect::history) {
        const QList<NodeState> versions = tab.gone.value(state.index);
        if (std::none_of(versions.cbegin(), versions.cend(),
                         [&state](const NodeState &version) { return version.isWhole(state); }))
            return QStringLiteral("has come back as it never was: '%1' '%2'")
                .arg(state.title, state.description);
    } else if (effects & Effect::pastes) {
        if (std::none_of(tab.nodes.cbegin(), tab.nodes.cend(),
                         [&state](const NodeState &source) { return source.hasTextsOf(state); }))
            return QStringLiteral("was pasted from nowhere: '%1' '%2'").arg(state.title, state.description);
    } else if (state.title != QStringLiteral("Event") || state.important ||
               state.description != QStringLiteral("Enter description")) {
        return QStringLiteral("is new and says '%1' '%2'").arg(state.title, state.description);
    }
    return {};
}

QString Changes::explainChange(const NodeState &before, const NodeState &now, int effects)
{
    constexpr int graph = Effect::adds | Effect::removes;
    if (before.index != now.index)
        return QStringLiteral("has become %1").arg(now.index);
    if ((before.title != now.title || before.description != now.description) && !(effects & Effect::types))
        return QStringLiteral("has lost its texts '%1' '%2'").arg(before.title, before.description);
    if (before.pos != now.pos && !(effects & Effect::moves))
        return QStringLiteral("has moved");
    if (before.important != now.important && !(effects & Effect::marks))
        return QStringLiteral("has changed its importance");
    if (before.end != now.end && !(effects & (Effect::marks | graph)))
        return QStringLiteral("has changed its end mark");
    if (before.prevIndex != now.prevIndex && !(effects & (Effect::connects | graph)))
        return QStringLiteral("is fed by %1 now").arg(now.prevIndex);
    return {};
}
