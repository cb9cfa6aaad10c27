#include "scene/textfocus.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QGraphicsItem>
#include <QGraphicsScene>

namespace {

void sendFocus(QGraphicsScene &canvas, QEvent::Type type)
{
    QFocusEvent event(type, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(&canvas, &event);
}

/// A canvas without the focus keeps to itself which of its texts will get that back; it shows by giving it.
class Focused
{
public:
    explicit Focused(QGraphicsScene &shown) : canvas(shown), wasAway(!shown.hasFocus() && shown.isActive())
    {
        if (wasAway)
            sendFocus(canvas, QEvent::FocusIn);
    }
    ~Focused()
    {
        if (wasAway)
            sendFocus(canvas, QEvent::FocusOut);
    }
    Focused(const Focused &) = delete;
    Focused &operator=(const Focused &) = delete;

private:
    QGraphicsScene &canvas;
    bool wasAway;
};

} // namespace

void leaveTextsBut(QGraphicsScene &canvas, const QGraphicsItem *kept)
{
    const Focused focused(canvas);
    const QGraphicsItem *text = canvas.focusItem();
    if (text && !(kept && kept->isAncestorOf(text)))
        canvas.setFocusItem(nullptr);
}

void leaveTextOf(QGraphicsScene &canvas, const QGraphicsItem &owner)
{
    const Focused focused(canvas);
    const QGraphicsItem *text = canvas.focusItem();
    if (text && owner.isAncestorOf(text))
        canvas.setFocusItem(nullptr);
}
