#pragma once

#include "random/choices.h"

#include <QEvent>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <vector>

class MainWindow;
class Node;
class NodegraphScene;
class NodegraphView;
class QGraphicsTextItem;
class QGraphicsView;

/// What a step may have changed; everything else must be as it was before.
namespace Effect {
inline constexpr int types = 1;       // the texts of one event, or of all events of one index
inline constexpr int moves = 2;       // places of events
inline constexpr int marks = 4;       // importance and the end of the story
inline constexpr int adds = 8;        // an event, and its connection
inline constexpr int removes = 16;    // events, and their connections
inline constexpr int connects = 32;   // connections
inline constexpr int pastes = 64;     // what is added has its texts from events that were there
inline constexpr int history = 128;   // what is added has been there before
inline constexpr int documents = 256; // tabs may come and go
inline constexpr int strays = 512;    // the mouse went on in a tab that is not shown any more
inline constexpr int scrolls = 1024;  // the second click of two met another place than the first
} // namespace Effect

struct Step
{
    QString name;
    int effects = 0;
};

/// A user whose decisions come from `choices`: does to a window whatever the mouse, the keyboard, the menus
/// and the minute can do to it, in any order, also while a button of the mouse is held.
class Hands
{
public:
    /// The window is shown. Documents go into `folder`, autosaves wherever the window puts them.
    Hands(MainWindow &editedWindow, Choices &decisions, const QString &documentFolder);

    Step nextStep();
    /// Ends whatever the mouse is doing.
    Step letGo();
    /// Whether the mouse holds something of that tab.
    bool holds(const NodegraphView *view) const { return held && held == view; }
    /// What a step itself found wrong, such as a file that is not what the window holds. Empty if nothing.
    QString problem() const { return trouble; }

private:
    struct Action
    {
        const char *name;
        int weight;
        void (Hands::*carryOut)();
    };
    static const std::vector<Action> &actions();

    NodegraphView *view() const;
    NodegraphScene *scene() const;
    Node *anyNode();
    void say(const QString &detail);
    void complain(const QString &what);

    // Commands
    void command(const char *action, int effects);
    void addEvent();
    void growChain();
    void remove();
    void copy();
    void cut();
    void paste();
    void undo();
    void redo();
    void goInHistory(const char *action);
    void travelInHistory();
    void markEnd();
    void markImportant();
    void selectAll();
    void deselectAll();
    void look();
    void filter();

    // Mouse
    enum class Place { body, input, output, title, description, line, anywhere };
    QPointF pointOf(Place place);
    static QPoint inViewport(const QGraphicsView *where, QPointF scenePos);
    static QPoint inSight(QGraphicsView *where, QPointF scenePos);
    void send(QGraphicsView *where, QEvent::Type type, QPoint pos, Qt::MouseButton button,
              Qt::MouseButtons buttons) const;
    void press();
    void chooseNode();
    void join();
    void clickOnce(Qt::MouseButton button);
    void goOnHolding();
    void dragOn();
    void release();
    void hover();
    void turnWheel(int delta);
    void wheel();
    void zoom();
    void pan();

    // Texts
    void typeTitle();
    void typeDescription();
    void typeOnPanel();
    void typeOn();
    void typeInto(QGraphicsTextItem *item, QGraphicsView *shownBy);
    void useKeys(QGraphicsView *shownBy, int count);
    void replaceText();
    QString anyText();

    // Documents and tabs
    void addTab();
    void switchTab();
    void dragTab();
    void closeTab();
    void saveDocument();
    void saveAs();
    void openDocument();
    void openForeign();
    void newDocument();
    void open(const QString &path, const QByteArray &bytes);
    void autosave();
    void autosavePerhaps();
    void pause();

    MainWindow &window;
    Choices &choices;
    QString folder;
    QStringList savedFiles;
    QByteArray lastAutosave;      // null as long as there is none
    QPointer<NodegraphView> held; // while the left button is down
    QPoint mousePos;              // viewport coordinates
    Qt::KeyboardModifiers modifiers;
    Step step;
    QString trouble;
};
