#include "random/hands.h"

#include "app/windowsupport.h"
#include "items/stnodename.h"
#include "scene/shownscene.h"

#include <QMouseEvent>
#include <QWheelEvent>

namespace {

constexpr double farthest = 0.03;
constexpr double nearest = 2.0;

double scaleOf(const QGraphicsView *view) { return view->transform().m11(); }

QPointF middleOf(const QGraphicsItem *item) { return item->mapToScene(item->boundingRect().center()); }

} // namespace

/// Such a place in the current tab, or any place if there is none.
QPointF Hands::pointOf(Place place)
{
    const QRect shown = view()->viewport()->rect();
    const Node *node = anyNode();
    if (!node || place == Place::anywhere)
        return view()->mapToScene(choices.below(shown.width()), choices.below(shown.height()));
    switch (place) {
    case Place::input:
        return inputOf(node);
    case Place::output:
        return outputOf(node);
    case Place::title:
        return middleOf(node->nameItem());
    case Place::description:
        return middleOf(descriptionOf(node));
    case Place::line:
        if (node->inLine())
            return nearEnd(node->inLine(), choices.below(2));
        return inputOf(node);
    default:
        return bodyOf(node);
    }
}

/// Where that is in the viewport, or the nearest place in it.
QPoint Hands::inViewport(const QGraphicsView *where, QPointF scenePos)
{
    const QRect shown = where->viewport()->rect();
    const QPoint pos = where->mapFromScene(scenePos);
    return {qBound(shown.left(), pos.x(), shown.right()), qBound(shown.top(), pos.y(), shown.bottom())};
}

/// The same after scrolling there, if need be.
QPoint Hands::inSight(QGraphicsView *where, QPointF scenePos)
{
    if (!where->viewport()->rect().contains(where->mapFromScene(scenePos)))
        where->centerOn(scenePos);
    return inViewport(where, scenePos);
}

void Hands::send(QGraphicsView *where, QEvent::Type type, QPoint pos, Qt::MouseButton button,
                 Qt::MouseButtons buttons) const
{
    QMouseEvent event(type, pos, where->viewport()->mapToGlobal(pos), button, buttons, modifiers);
    QCoreApplication::sendEvent(where->viewport(), &event);
}

void Hands::hover()
{
    if (!view())
        return;
    mousePos = inSight(view(), pointOf(choices.oneIn(3) ? Place::body : Place::anywhere));
    send(view(), QEvent::MouseMove, mousePos, Qt::NoButton, held ? Qt::LeftButton : Qt::NoButton);
    if (held)
        step.effects = Effect::moves;
}

void Hands::press()
{
    if (!view())
        return;
    if (held) {
        release();
        return;
    }
    static const std::vector<Place> places{
        Place::body, Place::body,  Place::body,        Place::input, Place::output,   Place::output,
        Place::line, Place::title, Place::description, Place::line,  Place::anywhere, Place::anywhere};
    const Place place = choices.anyOf(places);
    say(QString::number(int(place)));
    if (choices.oneIn(8))
        modifiers = Qt::ControlModifier;
    mousePos = inSight(view(), pointOf(place));
    send(view(), QEvent::MouseMove, mousePos, Qt::NoButton, Qt::NoButton);
    step.effects = Effect::types | Effect::connects;
    view()->setFocus(Qt::MouseFocusReason);
    const int kind = choices.below(24);
    if (kind == 0) {
        clickOnce(Qt::MiddleButton);
        return;
    }
    if (kind == 1) {
        const QPointF clicked = view()->mapToScene(mousePos);
        clickOnce(Qt::LeftButton);
        // A text scrolls to its cursor, so the second click may empty another new description.
        if (view()->mapToScene(mousePos) != clicked)
            step.effects |= Effect::scrolls;
        send(view(), QEvent::MouseButtonDblClick, mousePos, Qt::LeftButton, Qt::LeftButton);
    } else {
        send(view(), QEvent::MouseButtonPress, mousePos, Qt::LeftButton, Qt::LeftButton);
    }
    held = view();
}

void Hands::clickOnce(Qt::MouseButton button)
{
    say(QStringLiteral("click"));
    send(view(), QEvent::MouseButtonPress, mousePos, button, button);
    autosavePerhaps();
    send(view(), QEvent::MouseButtonRelease, mousePos, button, Qt::NoButton);
}

/// With a click on its body, which makes it the current one unless something else lies there.
void Hands::chooseNode()
{
    if (held || !anyNode())
        return;
    step.effects |= Effect::types | Effect::connects;
    view()->setFocus(Qt::MouseFocusReason);
    mousePos = inSight(view(), pointOf(Place::body));
    clickOnce(Qt::LeftButton);
}

/// A whole drag from one socket to another, as long as nothing comes in between.
void Hands::join()
{
    if (held || !anyNode())
        return;
    step.effects = Effect::types | Effect::connects | Effect::moves;
    const bool forward = choices.oneIn(2);
    mousePos = inSight(view(), pointOf(forward ? Place::output : Place::input));
    send(view(), QEvent::MouseMove, mousePos, Qt::NoButton, Qt::NoButton);
    send(view(), QEvent::MouseButtonPress, mousePos, Qt::LeftButton, Qt::LeftButton);
    autosavePerhaps();
    mousePos = inViewport(view(), pointOf(forward ? Place::input : Place::output));
    send(view(), QEvent::MouseMove, mousePos, Qt::NoButton, Qt::LeftButton);
    autosavePerhaps();
    send(view(), QEvent::MouseButtonRelease, mousePos, Qt::LeftButton, Qt::NoButton);
}

/// What follows a press; anything else may come in between.
void Hands::goOnHolding()
{
    const int next = choices.below(8);
    if (next < 3) {
        release();
    } else if (next == 3) {
        autosave();
        say(QStringLiteral("while held"));
    } else {
        dragOn();
    }
}

void Hands::dragOn()
{
    step.name = QStringLiteral("drag on");
    step.effects = Effect::moves;
    // A tab that was left while something was held in it still gets the mouse.
    const bool isHere = held == view();
    const bool hasLine = isHere && dragLineOf(*scene());
    if (isHere && choices.below(4) < (hasLine ? 3 : 1)) {
        static const std::vector<Place> places{Place::input, Place::output, Place::body};
        const Place place = hasLine ? places[std::size_t(choices.below(2))] : choices.anyOf(places);
        mousePos = inViewport(view(), pointOf(place));
    } else {
        mousePos =
            QPoint(choices.below(held->viewport()->width()), choices.below(held->viewport()->height()));
    }
    send(held, QEvent::MouseMove, mousePos, Qt::NoButton, Qt::LeftButton);
}

void Hands::release()
{
    step.name = QStringLiteral("release");
    step.effects = Effect::moves | Effect::connects;
    const QPointer<NodegraphView> source = held;
    if (source != view())
        step.effects |= Effect::strays;
    held = nullptr;
    send(source, QEvent::MouseButtonRelease, mousePos, Qt::LeftButton, Qt::NoButton);
}

Step Hands::letGo()
{
    step = {};
    if (held)
        release();
    return step;
}

void Hands::turnWheel(int delta)
{
    QWheelEvent event(mousePos, view()->viewport()->mapToGlobal(mousePos), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view()->viewport(), &event);
}

void Hands::wheel()
{
    if (!view())
        return;
    turnWheel(choices.oneIn(2) ? 120 : -120);
    // Further away or nearer than that nothing is left to point at.
    if (scaleOf(view()) < farthest || scaleOf(view()) > nearest)
        window.zoom_100();
}

/// To a scale of which half are far away, by wheel or by commands, and stays there.
void Hands::zoom()
{
    if (!view())
        return;
    static const std::vector<double> scales{farthest, 0.05, 0.08, 0.13, 0.17, 0.21, 0.3, 0.6, 1.0, nearest};
    const double wanted = choices.anyOf(scales);
    const bool byWheel = choices.oneIn(2);
    say(QStringLiteral("to %1").arg(wanted));
    constexpr int mostTurns = 30;
    constexpr double oneStep = 1.25; // of the commands
    for (int i = 0; i < mostTurns; ++i) {
        const double ratio = wanted / scaleOf(view());
        if (ratio > 1 / oneStep && ratio < oneStep)
            break;
        if (byWheel)
            turnWheel(ratio > 1 ? 240 : -240);
        else
            command(ratio > 1 ? "actionZoom_In" : "actionZoom_Out", 0);
    }
}

/// With the right button, also while the left one is held: that ends a connection's drag.
void Hands::pan()
{
    if (!view())
        return;
    const Qt::MouseButtons others = held == view() ? Qt::LeftButton : Qt::NoButton;
    step.effects = held ? Effect::moves | Effect::connects : 0;
    send(view(), QEvent::MouseButtonPress, mousePos, Qt::RightButton, Qt::RightButton | others);
    mousePos += QPoint(choices.below(200) - 100, choices.below(200) - 100);
    send(view(), QEvent::MouseMove, mousePos, Qt::NoButton, Qt::RightButton | others);
    autosavePerhaps();
    send(view(), QEvent::MouseButtonRelease, mousePos, Qt::RightButton, others);
}
