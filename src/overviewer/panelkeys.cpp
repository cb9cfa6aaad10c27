#include "overviewer/panelkeys.h"

#include "items/eventdata.h"
#include "items/stlineedit.h"
#include "items/textediting.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/panelfocus.h"

#include <QFocusEvent>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextCursor>

#include <algorithm>

namespace {

constexpr int margin = 5; // pixels above and below an entry that was brought into sight

Qt::KeyboardModifiers modifiersOf(const QKeyEvent &event) { return event.modifiers() & ~Qt::KeypadModifier; }

/// Whether the key would change or take something of a text that is being written in.
bool isForATextOnly(const QKeyEvent &event)
{
    const bool types = !event.text().isEmpty() && event.text().front().isPrint() &&
                       !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    return types || TextEditing::isEditingKey(event);
}

bool isBegin(const QKeyEvent &event)
{
    return event.key() == Qt::Key_F2 || event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

PanelKeys::PanelKeys(QGraphicsView *panelView)
    : QObject(panelView), view(panelView), scene(dynamic_cast<OverViewerScene *>(panelView->scene()))
{
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    connect(scene, &QGraphicsScene::focusItemChanged, this, &PanelKeys::focusItemMoved);
}

bool PanelKeys::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (!scene->focusItem() && isForATextOnly(*static_cast<QKeyEvent *>(event))) {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress:
        if (press(*static_cast<QKeyEvent *>(event)))
            return true;
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        if (watched == view)
            noteFocus(*event);
        break;
    case QEvent::MouseButtonPress:
        goAbout(false);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool PanelKeys::press(const QKeyEvent &event)
{
    const bool isPlain = modifiersOf(event) == Qt::NoModifier;
    if (scene->focusItem()) {
        if (event.key() != Qt::Key_Escape || !isPlain)
            return false;
        scene->endWriting();
        goAbout(true);
        return true;
    }
    if (isPlain && isAboutKeys && isBegin(event) && scene->mark().entry()) {
        writeIn(scene->mark().entry());
        return true;
    }
    if (isPlain && event.key() == Qt::Key_Escape)
        scene->endWriting();
    OvNode *next = isPlain ? entryAt(event.key()) : nullptr;
    if (!next)
        return isForATextOnly(event);
    scene->endWriting(); // the entry that was written in may be away only for now
    markEntry(next);
    return true;
}

void PanelKeys::noteFocus(const QEvent &event)
{
    const Qt::FocusReason reason = static_cast<const QFocusEvent &>(event).reason();
    if (event.type() == QEvent::FocusOut) {
        if (!PanelFocus::isPassing(reason))
            isAboutKeys = false;
    } else if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) {
        OvNode *entry = scene->mark().entry() ? scene->mark().entry() : topEntry();
        if (entry)
            markEntry(entry);
    }
    updateMark();
}

/// Who leaves a text finds the mark on its entry.
void PanelKeys::focusItemMoved()
{
    if (scene->focusItem()) {
        isAboutKeys = false;
        if (OvNode *entry = scene->writtenEntry())
            scene->mark().putOn(entry);
    }
    updateMark();
}

void PanelKeys::goAbout(bool byKeys)
{
    isAboutKeys = byKeys;
    updateMark();
}

void PanelKeys::updateMark()
{
    scene->mark().setShown(isAboutKeys && view->hasFocus() && !scene->focusItem());
}

OvNode *PanelKeys::topEntry() const
{
    const double top = view->viewportTransform().inverted().map(QPointF(0, -1)).y(); // it may be rounded
    const std::vector<PanelRow> &rows = scene->rows();
    if (rows.empty())
        return nullptr;
    const auto shown =
        std::find_if(rows.begin(), rows.end(), [top](const PanelRow &row) { return row.top() >= top; });
    const auto place = shown == rows.end() ? rows.size() - 1 : static_cast<std::size_t>(shown - rows.begin());
    return scene->entryOfRow(place);
}

double PanelKeys::pageHeight() const { return view->viewport()->height() / view->transform().m22(); }

OvNode *PanelKeys::entryAt(int key) const
{
    const std::vector<PanelRow> &rows = scene->rows();
    if (rows.empty())
        return nullptr;
    const OvNode *mark = scene->mark().entry();
    const auto marked =
        std::find_if(rows.begin(), rows.end(), [mark](const PanelRow &row) { return row.entry == mark; });
    const bool isMarked = isAboutKeys && mark && marked != rows.end();
    const auto place = isMarked ? marked - rows.begin() : 0;
    const auto last = static_cast<std::ptrdiff_t>(rows.size()) - 1;
    const auto inDistance = [&](double distance) {
        const double y = rows[static_cast<std::size_t>(place)].y + distance;
        const auto found = std::lower_bound(rows.begin(), rows.end(), y,
                                            [](const PanelRow &row, double at) { return row.y < at; });
        return found - rows.begin();
    };
    std::ptrdiff_t next = 0;
    switch (key) {
    case Qt::Key_Up:
        next = place - 1;
        break;
    case Qt::Key_Down:
        next = place + 1;
        break;
    case Qt::Key_PageUp:
        next = std::min(place - 1, inDistance(-pageHeight()));
        break;
    case Qt::Key_PageDown:
        next = std::max(place + 1, inDistance(pageHeight()) - 1);
        break;
    case Qt::Key_Home:
        return scene->entryOfRow(0);
    case Qt::Key_End:
        return scene->entryOfRow(rows.size() - 1);
    default:
        return nullptr;
    }
    if (!isMarked) // the first of these keys says where one is
        return topEntry();
    return scene->entryOfRow(static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(next, 0, last)));
}

void PanelKeys::markEntry(OvNode *entry)
{
    scene->mark().putOn(entry);
    goAbout(true);
    bringIntoSight(entry);
}

/// Scrolls just enough to show the entry whole, or its beginning.
void PanelKeys::bringIntoSight(const OvNode *entry) const
{
    const QRectF place = view->viewportTransform().mapRect(entry->sceneBoundingRect());
    const double room = view->viewport()->height();
    double way = 0;
    if (place.top() < margin || place.height() + 2 * margin > room)
        way = place.top() - margin;
    else if (place.bottom() > room - margin)
        way = place.bottom() - room + margin;
    view->verticalScrollBar()->setValue(qRound(view->verticalScrollBar()->value() + way));
}

/// What asks for a description goes, as with F2 on the canvas.
void PanelKeys::writeIn(OvNode *entry)
{
    auto *content = dynamic_cast<EventData *>(entry->eventData());
    if (!content)
        return;
    STLineEdit *text = content->descriptionItem();
    text->removePlaceholder();
    bringIntoSight(entry);
    text->setFocus(Qt::ShortcutFocusReason);
    QTextCursor cursor = text->textCursor();
    cursor.movePosition(QTextCursor::End);
    text->setTextCursor(cursor);
    const QRectF end = text->boundingRect();
    text->ensureVisible(QRectF(end.left(), end.bottom(), 1, 1), 0,
                        margin); // of a text that is taller than the panel
}
