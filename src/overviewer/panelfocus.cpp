#include "overviewer/panelfocus.h"

#include "items/eventdata.h"
#include "items/stlineedit.h"
#include "overviewer/ovnode.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QScopedValueRollback>
#include <QTextCursor>
#include <QTextDocument>

namespace {

OvNode *entryOf(const STLineEdit *text)
{
    const QGraphicsItem *content = text->parentItem();
    return content ? dynamic_cast<OvNode *>(content->parentItem()) : nullptr;
}

} // namespace

PanelFocus::PanelFocus(QGraphicsScene &panelScene) : panel(panelScene)
{
    connect(&panel, &QGraphicsScene::focusItemChanged, this,
            [this](QGraphicsItem *now, QGraphicsItem *, Qt::FocusReason reason) { focusMoved(now, reason); });
}

PanelFocus::~PanelFocus() = default;

bool PanelFocus::isPassing(Qt::FocusReason reason)
{
    return reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason ||
           reason == Qt::ActiveWindowFocusReason;
}

void PanelFocus::focusMoved(QGraphicsItem *now, Qt::FocusReason reason)
{
    if (isCarrying)
        return;
    auto *reached = dynamic_cast<STLineEdit *>(now);
    OvNode *entry = reached ? entryOf(reached) : nullptr;
    if (entry) {
        forget();
        text = reached;
        written = entry->shownEvent();
    } else if (!isPassing(reason)) {
        forget();
    }
}

void PanelFocus::panelLeft(Qt::FocusReason reason)
{
    if (!isPassing(reason))
        forget();
}

void PanelFocus::giveUp()
{
    if (content)
        forget();
}

void PanelFocus::forget()
{
    written = ListedEvent();
    text = nullptr;
    content.reset();
}

void PanelFocus::takeAside()
{
    OvNode *entry = text && !content ? entryOf(text) : nullptr;
    if (!entry)
        return;
    const QScopedValueRollback carrying(isCarrying, true);
    if (text->hasFocus())
        QGuiApplication::inputMethod()->commit(); // which losing the focus does as well, behind the cursor
    const QTextCursor cursor = text->textCursor();
    anchor = cursor.anchor();
    position = cursor.position();
    panel.setFocusItem(nullptr);
    content.reset(entry->releaseContent());
}

void PanelFocus::giveBackTo(OvNode *entry)
{
    const QScopedValueRollback carrying(isCarrying, true);
    entry->adopt(content.release());
    QTextCursor cursor = text->textCursor();
    const int end = text->document()->characterCount() - 1; // the text may be another one by now
    cursor.setPosition(qMin(anchor, end));
    cursor.setPosition(qMin(position, end), QTextCursor::KeepAnchor);
    text->setTextCursor(cursor);
}

void PanelFocus::resume()
{
    if (!text || content || !panel.hasFocus())
        return;
    const QScopedValueRollback carrying(isCarrying, true);
    text->setFocus();
}
