#include "random/hands.h"

#include "app/windowsupport.h"
#include "scene/shownscene.h"

#include <numeric>

namespace {

constexpr std::size_t mostNodes = 40; // a tab; the checks walk over all of them

} // namespace

Hands::Hands(MainWindow &editedWindow, Choices &decisions, const QString &documentFolder)
    : window(editedWindow), choices(decisions), folder(documentFolder)
{}

const std::vector<Hands::Action> &Hands::actions()
{
    // Kept together so that the weights can be compared.
    static const std::vector<Action> all{
        {"add event", 110, &Hands::addEvent},
        {"grow chain", 60, &Hands::growChain},
        {"join", 40, &Hands::join},
        {"delete", 8, &Hands::remove},
        {"copy", 12, &Hands::copy},
        {"cut", 12, &Hands::cut},
        {"paste", 16, &Hands::paste},
        {"undo", 24, &Hands::undo},
        {"redo", 20, &Hands::redo},
        {"travel in history", 4, &Hands::travelInHistory},
        {"mark end", 36, &Hands::markEnd},
        {"mark important", 20, &Hands::markImportant},
        {"select all", 4, &Hands::selectAll},
        {"deselect all", 8, &Hands::deselectAll},
        {"look", 8, &Hands::look},
        {"filter", 8, &Hands::filter},
        {"press", 140, &Hands::press},
        {"hover", 16, &Hands::hover},
        {"wheel", 6, &Hands::wheel},
        {"zoom", 12, &Hands::zoom},
        {"pan", 8, &Hands::pan},
        {"type title", 20, &Hands::typeTitle},
        {"type description", 26, &Hands::typeDescription},
        {"type on panel", 24, &Hands::typeOnPanel},
        {"type on", 14, &Hands::typeOn},
        {"replace text", 8, &Hands::replaceText},
        {"add tab", 5, &Hands::addTab},
        {"switch tab", 14, &Hands::switchTab},
        {"drag tab", 2, &Hands::dragTab},
        {"close tab", 2, &Hands::closeTab},
        {"save", 6, &Hands::saveDocument},
        {"save as", 4, &Hands::saveAs},
        {"open", 2, &Hands::openDocument},
        {"open foreign", 1, &Hands::openForeign},
        {"new", 1, &Hands::newDocument},
        {"autosave", 14, &Hands::autosave},
        {"pause", 4, &Hands::pause},
    };
    return all;
}

Step Hands::nextStep()
{
    step = {};
    if (!held)
        modifiers = Qt::NoModifier;
    if (held && !choices.oneIn(4)) {
        goOnHolding();
    } else if (!view() && !choices.oneIn(3)) {
        step.name = QStringLiteral("add tab");
        addTab();
    } else {
        static const int whole =
            std::accumulate(actions().begin(), actions().end(), 0,
                            [](int sum, const Action &action) { return sum + action.weight; });
        int place = choices.below(whole);
        auto action = actions().begin();
        while (place >= action->weight)
            place -= (action++)->weight;
        step.name = QString::fromLatin1(action->name);
        (this->*action->carryOut)();
    }
    if (held)
        step.effects |= Effect::moves; // whatever scrolls takes what is held along
    if (!window.isActiveWindow())
        window.activateWindow(); // after a question
    // What the event loop does between two events of the user.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    flushDeferredDeletes();
    return step;
}

NodegraphView *Hands::view() const { return dynamic_cast<NodegraphView *>(tabsOf(window)->currentWidget()); }

NodegraphScene *Hands::scene() const { return view() ? view()->nodegraphScene() : nullptr; }

/// Of the current tab, null if it has none.
Node *Hands::anyNode()
{
    return !scene() || scene()->nodes().empty() ? nullptr : choices.anyOf(scene()->nodes());
}

void Hands::say(const QString &detail) { step.name += QLatin1Char(' ') + detail; }

void Hands::complain(const QString &what)
{
    if (trouble.isEmpty())
        trouble = what;
}

/// Gives a command by its menu entry or by its keys.
void Hands::command(const char *name, int effects)
{
    QAction *action = actionOf(window, name);
    step.effects |= effects;
    if (action->shortcut().isEmpty() || !view() || choices.oneIn(2)) {
        action->trigger();
        return;
    }
    say(QStringLiteral("by key"));
    view()->setFocus();
    // In a text the same keys edit that text, or nothing.
    if (dynamic_cast<QGraphicsTextItem *>(scene()->focusItem()))
        step.effects |= Effect::types;
    const QKeyCombination keys = action->shortcut()[0];
    QTest::keyClick(view(), keys.key(), keys.keyboardModifiers());
}

void Hands::addEvent()
{
    if (scene() && scene()->nodes().size() >= mostNodes)
        return;
    step.effects |= Effect::adds;
    if (choices.oneIn(3))
        buttonOf(window, "Add_NodeButton")->click();
    else
        command("actionAdd_Event", Effect::adds);
}

void Hands::remove() { command("actionDelete", Effect::removes); }

void Hands::growChain()
{
    chooseNode();
    addEvent();
}

void Hands::copy()
{
    if (choices.oneIn(2))
        chooseNode();
    command("actionCopy", 0);
}

void Hands::cut()
{
    if (choices.oneIn(2))
        chooseNode();
    command("actionCut", 0);
}

void Hands::paste()
{
    autosavePerhaps();
    command("actionPaste", Effect::adds | Effect::removes | Effect::pastes);
}

void Hands::undo() { goInHistory("actionUndo"); }

void Hands::redo() { goInHistory("actionRedo"); }

/// One step by whatever way, which may be a step of a text's own history instead, or several of the tab's.
void Hands::goInHistory(const char *action)
{
    constexpr int effects = Effect::adds | Effect::removes | Effect::connects | Effect::history;
    if (choices.oneIn(2)) {
        command(action, effects);
        return;
    }
    step.effects = effects;
    for (int i = choices.below(5); i >= 0; --i) {
        actionOf(window, action)->trigger();
        autosavePerhaps();
    }
}

void Hands::travelInHistory()
{
    if (!view())
        return;
    step.effects = Effect::adds | Effect::removes | Effect::connects | Effect::history;
    QUndoStack *stack = view()->undoStack();
    for (int i = choices.below(40); i > 0; --i)
        window.sl_undo();
    for (int i = choices.below(40); i > 0; --i)
        window.sl_redo();
    say(QStringLiteral("to %1 of %2").arg(stack->index()).arg(stack->count()));
}

void Hands::markEnd()
{
    if (!choices.oneIn(3))
        chooseNode();
    command("actionSet_End_of_Story", Effect::marks);
}

void Hands::markImportant()
{
    if (choices.oneIn(2))
        chooseNode();
    command("actionSet_as_Important", Effect::marks);
}

void Hands::selectAll() { command("actionSelect_All", 0); }

void Hands::deselectAll() { command("actionDeselect_All", 0); }

void Hands::look()
{
    static const std::vector<const char *> ways{"actionFrame",      "actionZoom_In",     "actionZoom_Out",
                                                "actionZoom_to_50", "actionZoom_to_100", "actionZoom_to_100",
                                                "actionZoom_to_100"};
    command(choices.anyOf(ways), 0);
}

void Hands::filter() { buttonOf(window, "F1_button")->click(); }
