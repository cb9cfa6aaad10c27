#pragma once

#include <QStringList>
#include <QtTest>

#include <vector>

class QGraphicsItem;
class QGraphicsScene;
class QUndoStack;
class NodegraphScene;
class Node;

/// Any warning that Qt or the program prints fails the running test function, unless it was announced with
/// QTest::ignoreMessage(). Call it in init(): Qt forgets the pattern after every test function.
void failOnWarnings();

/// Runs what waits for deleteLater(), so that nothing is left for the leak check.
void flushDeferredDeletes();

/// What a test class is: any warning fails its functions, and none leaves the next one something to delete.
/// Who needs more than that around a function has an init() or a cleanup() of its own, which takes this one's
/// place.
class TestCase : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
};

/// Collects the log lines of its lifetime while they go on to the test's own log.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    const QStringList &lines() const { return captured; }
    int count(const QString &line) const { return int(captured.count(line)); }
    bool contains(const QString &line) const { return captured.contains(line); }
    void clear() { captured.clear(); }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);
    QStringList captured;
    QtMessageHandler previous = nullptr;
};

/// Connects the scene's commands to an undo stack of the test's own, as a tab's view does.
void pushCommandsOn(NodegraphScene &scene, QUndoStack &stack);

/// Adds `count` events with the add command; they form a chain as a user would make it.
std::vector<Node *> addChain(NodegraphScene &scene, int count);
/// Adds an event that is attached to nothing at that place (scene coordinates).
Node *addLoose(NodegraphScene &scene, QPointF pos);

/// The names of a meta-object's own methods in index order, such as "s_clicked(int,QPointF)".
QStringList ownMethods(const QMetaObject &metaObject);

/// Sends mouse events to a scene as its view would; all points are scene coordinates.
struct SceneMouse
{
    QGraphicsScene &scene;
    QPointF last{};
    QPointF down{}; // where the button went down

    void press(QPointF pos, Qt::MouseButton button = Qt::LeftButton);
    void move(QPointF pos, Qt::MouseButtons buttons = Qt::LeftButton);
    void release(QPointF pos, Qt::MouseButton button = Qt::LeftButton);
    /// A press, two moves and a release.
    void drag(QPointF from, QPointF to);
};
