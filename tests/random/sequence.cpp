#include "random/sequence.h"

#include "app/windowsupport.h"
#include "random/changes.h"
#include "random/documents.h"
#include "random/hands.h"
#include "random/invariants.h"
#include "random/panelwatch.h"
#include "scene/scenebytes.h"
#include "support/screenwatch.h"

#include <QLoggingCategory>
#include <QUndoStack>

namespace {

constexpr int stepsTold = 30;
constexpr int stepsBetweenReloads = 25;

/// Keeps the first warning of its lifetime that is not the platform's or the test library's own.
class WarningWatch
{
public:
    WarningWatch()
    {
        first.clear();
        // Thousands of lines of progress would hide what matters, and take their time.
        QLoggingCategory::setFilterRules(QStringLiteral("default.info=false"));
        previous = qInstallMessageHandler(&WarningWatch::handle);
    }
    ~WarningWatch()
    {
        qInstallMessageHandler(previous);
        QLoggingCategory::setFilterRules(QString());
    }
    WarningWatch(const WarningWatch &) = delete;
    WarningWatch &operator=(const WarningWatch &) = delete;

    static QString warning() { return first.isEmpty() ? QString() : QStringLiteral("warning: ") + first; }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (text == platformLine || text.startsWith(QStringLiteral("Keyboard event not accepted")))
            return;
        if (type == QtFatalMsg)
            previous(type, context, text);
        else if (type != QtInfoMsg && type != QtDebugMsg && first.isEmpty())
            first = text;
    }

    static inline QString first;
    static inline QtMessageHandler previous = nullptr;
};

/// One window in random hands.
class Sequence
{
public:
    Sequence(MainWindow &editedWindow, Choices &decisions, const QString &folder)
        : window(editedWindow), choices(decisions), hands(window, decisions, folder)
    {
        check({QStringLiteral("start"), Effect::documents});
    }

    QString run(int steps)
    {
        for (int i = 0; i < steps && fault.isEmpty() && !choices.isExhausted(); ++i) {
            const Step step = hands.nextStep();
            log << step.name;
            if (log.size() > stepsTold)
                log.removeFirst();
            ++done;
            check(step);
        }
        // A window may also go while the mouse holds something of it.
        if (fault.isEmpty() && choices.below(4) != 3)
            checkHistories();
        if (fault.isEmpty())
            return {};
        return QStringLiteral("%1\nafter step %2; the last ones: %3")
            .arg(fault)
            .arg(done)
            .arg(log.join(", "));
    }

private:
    void note(const QString &trouble)
    {
        if (fault.isEmpty())
            fault = trouble;
    }

    void check(const Step &step)
    {
        note(hands.problem());
        note(WarningWatch::warning());
        const auto *current = tabsOf(window)->currentWidget();
        for (const NodegraphView *view : window.views()) {
            // The other tabs are nobody's target, so less often will do for them.
            if (view == current || done % 8 == 0 || (step.effects & (Effect::documents | Effect::strays))) {
                note(Invariants::faultOfScene(*view->nodegraphScene(), hands.holds(view)));
                note(Invariants::faultOfBytes(*view->nodegraphScene()));
            }
            if ((done % stepsBetweenReloads == 0 && view == current) || (step.effects & Effect::documents))
                note(Invariants::faultOfReload(*view->nodegraphScene()));
        }
        note(changes.unexplained(window, step));
        note(panel.fault(window, step));
        if (isSeen())
            note(ScreenWatch::fault(window, done % 16 == 0 ? ScreenWatch::Extent::window
                                                           : ScreenWatch::Extent::canvases));
    }

    /// Nearly always. In between the hands are quicker than the frames for some steps, and a canvas that
    /// waits in vain for its repaint is not healed by being painted for the comparison.
    bool isSeen() const { return done / 16 % 4 != 3 || done % 4 == 3; }

    void checkHistories()
    {
        check(hands.letGo());
        const std::vector<NodegraphView *> views = window.views();
        for (NodegraphView *view : views) {
            tabsOf(window)->setCurrentWidget(view);
            if (fault.isEmpty())
                checkHistory(*view);
        }
    }

    /// Undo all and redo all, twice.
    ///
    /// Moving, typing and marking are no commands: they stay whatever is undone, with an event that goes and
    /// comes back too, which every jump is checked for. So the start of the history is not the document as it
    /// once was: it has the events of then, with today's texts, places and marks, and no connections, since
    /// those of a file are commands as well. For a tab that began empty that is the document of then. The way
    /// back to where the user stood leads to the very same bytes, marks included. Only connections may differ
    /// there, and only after one that had replaced another was undone: see Changes::hasLostConnection().
    void checkHistory(NodegraphView &view)
    {
        const QUndoStack &stack = *view.undoStack();
        const int here = stack.index();
        const bool exact = !changes.hasLostConnection(&view);
        const QByteArray document = sortedBytes(view);
        const QByteArray start = go(view, 0);
        if (start != expectedStart(view))
            note(QStringLiteral("undoing all does not lead back to the start"));
        const QByteArray again = go(view, here);
        if (exact ? again != document : withoutConnections(again) != withoutConnections(document))
            note(QStringLiteral("undo all and redo: not as it was"));
        const QByteArray end = go(view, stack.count());
        if (go(view, 0) != start)
            note(QStringLiteral("undo all once more: another start"));
        if (go(view, stack.count()) != end)
            note(QStringLiteral("undo all and redo all: not as it was"));
    }

    QByteArray go(NodegraphView &view, int index)
    {
        view.undoStack()->setIndex(index);
        flushDeferredDeletes();
        check(
            {QStringLiteral("history"), Effect::adds | Effect::removes | Effect::connects | Effect::history});
        return sortedBytes(view);
    }

    static QByteArray sortedBytes(const NodegraphView &view)
    {
        return sortedDocument(SceneBytes::int32(1) + SceneBytes::saved(*view.nodegraphScene()));
    }

    /// What the tab holds, if that are the events of its start and nothing joins them.
    QByteArray expectedStart(const NodegraphView &view) const
    {
        QSet<int> indices;
        for (const Node *node : view.nodegraphScene()->nodes())
            indices.insert(node->getIndex());
        const bool joined =
            std::any_of(view.nodegraphScene()->nodes().begin(), view.nodegraphScene()->nodes().end(),
                        [](const Node *node) { return node->hasInput(); });
        return joined || indices != changes.startOf(&view) ? QByteArray() : sortedBytes(view);
    }

    MainWindow &window;
    Choices &choices;
    Hands hands;
    Changes changes;
    PanelWatch panel;
    QStringList log;
    int done = 0;
    QString fault;
};

QString run(MainWindow &window, Choices &choices, int steps)
{
    window.activateWindow(); // a question may have been the last that was active
    if (!QTest::qWaitForWindowActive(&window))
        return QStringLiteral("the window does not come up");
    window.clearTabs();
    if (buttonOf(window, "F1_button")->isChecked())
        buttonOf(window, "F1_button")->click();
    window.addNodeGraphTab();
    const QTemporaryDir documents;
    const QString fault = Sequence(window, choices, documents.path()).run(steps);
    flushDeferredDeletes();
    return fault;
}

} // namespace

void showForSequences(MainWindow &window)
{
    window.resize(window.minimumSize());
    window.show();
}

QString runSequence(MainWindow &window, Choices &choices, int steps)
{
    const WarningWatch watch;
    const QString fault = run(window, choices, steps);
    return fault.isEmpty() ? WarningWatch::warning() : fault;
}

QString runSequence(Choices &choices, int steps)
{
    const WarningWatch watch;
    QString fault;
    {
        MainWindow window;
        showForSequences(window);
        fault = run(window, choices, steps);
    }
    flushDeferredDeletes();
    return fault.isEmpty() ? WarningWatch::warning() : fault;
}
