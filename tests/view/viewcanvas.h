#pragma once

#include "support/testsupport.h"

#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTransform>

#include <memory>

/// Makes the view's handler callable with what it gives back.
class OpenView : public NodegraphView
{
public:
    OpenView() : NodegraphView(nullptr) {}
    using NodegraphView::event;
};

/// A view on the screen with a viewport of 400 by 300, far from the edges of its canvas, with the mouse
/// resting in its middle.
struct Canvas
{
    Canvas()
    {
        view->setFrameShape(QFrame::NoFrame);
        view->resize(400, 300);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        QCoreApplication::processEvents();
        view->horizontalScrollBar()->setValue(5000);
        view->verticalScrollBar()->setValue(4000);
        QTest::mouseMove(view->viewport(), QPoint(200, 150));
        QCoreApplication::processEvents();
    }
    ~Canvas()
    {
        view.reset();
        delete scene;
    }
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    QPoint scroll() const
    {
        return {view->horizontalScrollBar()->value(), view->verticalScrollBar()->value()};
    }
    QPointF middle() const { return view->mapToScene(QPoint(200, 150)); }

    void press(QPointF pos, Qt::MouseButton button) const
    {
        send(QEvent::MouseButtonPress, pos, button, button);
    }
    /// The second press of two in one place, with the release between them.
    void pressAgain(QPointF pos, Qt::MouseButton button) const
    {
        press(pos, button);
        release(pos, button);
        send(QEvent::MouseButtonDblClick, pos, button, button);
    }
    void move(QPointF pos, Qt::MouseButtons buttons) const
    {
        send(QEvent::MouseMove, pos, Qt::NoButton, buttons);
    }
    void release(QPointF pos, Qt::MouseButton button) const
    {
        send(QEvent::MouseButtonRelease, pos, button, Qt::NoButton);
    }

    std::unique_ptr<OpenView> view = std::make_unique<OpenView>();
    QPointer<NodegraphScene> scene = view->nodegraphScene();

private:
    void send(QEvent::Type type, QPointF pos, Qt::MouseButton button, Qt::MouseButtons buttons) const
    {
        QMouseEvent event(type, pos, view->viewport()->mapToGlobal(pos), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view->viewport(), &event);
    }
};

/// A transform after one zoom step of the view.
inline QTransform zoomed(QTransform start, double factor, QPointF shift)
{
    start.scale(factor, factor);
    start.translate(shift.x(), shift.y());
    return start;
}
