#include "support/testsupport.h"

#include "items/node.h"
#include "scene/nodegraphscene.h"

#include <QCoreApplication>
#include <QGraphicsSceneMouseEvent>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QUndoStack>

namespace {

LogCapture *activeCapture = nullptr;

void send(QGraphicsScene &scene, QEvent::Type type, QPointF pos, QPointF last, QPointF down,
          Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QGraphicsSceneMouseEvent event(type);
    event.setScenePos(pos);
    event.setScreenPos(pos.toPoint());
    event.setLastScenePos(last);
    event.setLastScreenPos(last.toPoint());
    for (const Qt::MouseButton each : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        event.setButtonDownScenePos(each, down);
        event.setButtonDownScreenPos(each, down.toPoint());
    }
    event.setButton(button);
    event.setButtons(buttons);
    event.setAccepted(false);
    QCoreApplication::sendEvent(&scene, &event);
}

} // namespace

void failOnWarnings() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

void flushDeferredDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

LogCapture::LogCapture()
{
    activeCapture = this;
    previous = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous);
    activeCapture = nullptr;
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (!activeCapture)
        return;
    activeCapture->captured << text;
    if (activeCapture->previous)
        activeCapture->previous(type, context, text);
}

void pushCommandsOn(NodegraphScene &scene, QUndoStack &stack)
{
    QObject::connect(&scene, &NodegraphScene::s_UndoCommandAdded, &stack,
                     [&stack](QUndoCommand *command) { stack.push(command); });
}

std::vector<Node *> addChain(NodegraphScene &scene, int count)
{
    std::vector<Node *> added;
    for (int i = 0; i < count; ++i) {
        scene.sl_addEventNode();
        added.push_back(scene.nodes().back());
    }
    return added;
}

Node *addLoose(NodegraphScene &scene, QPointF pos)
{
    scene.sl_deselectCurrentNode();
    scene.sl_lastMousePos(pos);
    scene.sl_addEventNode();
    scene.sl_deselectCurrentNode();
    return scene.nodes().back();
}

QStringList ownMethods(const QMetaObject &metaObject)
{
    QStringList names;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        names << QString::fromLatin1(metaObject.method(i).methodSignature());
    return names;
}

void SceneMouse::press(QPointF pos, Qt::MouseButton button)
{
    send(scene, QEvent::GraphicsSceneMousePress, pos, pos, pos, button, button);
    last = pos;
    down = pos;
}

void SceneMouse::move(QPointF pos, Qt::MouseButtons buttons)
{
    send(scene, QEvent::GraphicsSceneMouseMove, pos, last, down, Qt::NoButton, buttons);
    last = pos;
}

void SceneMouse::release(QPointF pos, Qt::MouseButton button)
{
    send(scene, QEvent::GraphicsSceneMouseRelease, pos, last, down, button, Qt::NoButton);
    last = pos;
}

void SceneMouse::drag(QPointF from, QPointF to)
{
    press(from);
    move((from + to) / 2);
    move(to);
    release(to);
}
