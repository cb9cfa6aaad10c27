#pragma once

#include "overviewer/listedevent.h"

#include <QObject>
#include <QPointer>

#include <memory>

class EventData;
class OvNode;
class QGraphicsItem;
class STLineEdit;

/// Keeps the keyboard with the text of the panel that it is in, while the entries are made anew around it.
///
/// The content that is being written in goes over from the old entry to the new one of the same event, and
/// with it cursor, selection and the text's own undo history. If the event is not listed any more its content
/// waits here: half a story may have been published, or the user may take back what took it away. It waits
/// until the user goes elsewhere. Owned by the panel's scene.
class PanelFocus : public QObject
{
    Q_OBJECT

public:
    explicit PanelFocus(QGraphicsScene &panelScene);
    ~PanelFocus() override;

    /// To be called before the entries go.
    void takeAside();
    /// Whether there is something waiting for that node's entry.
    bool isAwaitedBy(const Node *node) const { return content && written.is(node); }
    /// Gives what is waiting to an entry that has no content yet and is in no scene.
    void giveBackTo(OvNode *entry);
    /// Gives the keyboard back to the text, if the panel has it.
    void resume();
    /// What is waiting is not waited for any more. A text that is being written in stays so.
    void giveUp();
    /// The panel has lost the keyboard.
    void panelLeft(Qt::FocusReason reason);

    /// Whether the keyboard will be back after a focus that was lost for that reason.
    static bool isPassing(Qt::FocusReason reason);

private:
    void focusMoved(QGraphicsItem *now, Qt::FocusReason reason);
    void forget();

    QGraphicsScene &panel;
    ListedEvent written;                // none unless a text is being written in
    QPointer<STLineEdit> text;          // that event's
    std::unique_ptr<EventData> content; // while it waits; in no scene
    int anchor = 0;                     // of the cursor
    int position = 0;                   // of the cursor
    bool isCarrying = false;            // the focus moves for our own reasons
};
