#pragma once

#include "items/node.h"
#include "items/promptscene.h"
#include "overviewer/ovnode.h"
#include "overviewer/panelfocus.h"
#include "overviewer/panellist.h"
#include "overviewer/panelmark.h"

#include <QColor>
#include <QPointer>

#include <memory>
#include <vector>

class PanelObserver;

/// The side panel: lists the story that it was last given, one entry an event, top to bottom.
///
/// One panel serves all tabs; it shows the story of the scene that published last. Owns its entries, not the
/// nodes. Its scene rectangle is exactly that of its entries. The keyboard stays with the event whose text it
/// is in, as long as that is listed.
class OverViewerScene : public PromptScene
{
    Q_OBJECT

public:
    OverViewerScene();
    ~OverViewerScene() override;

    /// The entries shown, top first. Whoever asks has all of them made; the rows are there anyway.
    const std::vector<OvNode *> &ovNodes() const { return list->entries(); }
    const std::vector<PanelRow> &rows() const { return list->rows(); }
    OvNode *entryOfRow(std::size_t place) { return list->entry(place); }
    /// Shows that story, first event first, instead of the last one.
    void showStory(std::vector<Node *> nodes);
    /// The scene whose story it is; null while there are no entries.
    const QGraphicsScene *shownGraph() const;
    /// The gap between two entries, in scene units.
    int spacing() const { return spacing_; }
    /// Stacks the entries; returns the y after the last one.
    int layoutOvNodes();
    /// The first entry with that index, null if there is none.
    OvNode *findOvNode(int index);
    /// Empties the panel if it shows the story of `graph`, which is about to go.
    void forgetScene(const QGraphicsScene *graph);

    /// The entry whose text has the keyboard, null if there is none.
    OvNode *writtenEntry() const;
    /// No text has the keyboard any more, and none waits for it.
    void endWriting();
    PanelMark &mark() { return entryMark; }
    /// Tells that one, which may be null, when entries move.
    void setObserver(PanelObserver *newObserver) { observer = newObserver; }

signals:
    /// An entry was edited: its EventData, which stays the entry's, and the index of its node.
    void s_nodeChanged(QGraphicsItem *nodeData, int index);

public slots:
    void sl_recieveNodes(std::vector<Node *> nodes);
    void sl_updatedNode(Node *node);
    void sl_updateOvNode(OvNode *node);
    void sl_nodeIndexChanged(Node *node, int index);
    void sl_importanceChanged(Node *node, bool isImportant);
    void sl_setFilter_important(bool show);

protected:
    bool event(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    /// No text is reached by Tab, which would be taken by it from then on.
    bool focusNextPrevChild(bool) override { return false; }
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    void drawForeground(QPainter *painter, const QRectF &rect) override;

private:
    void rebuildOvNodes();
    void tellCount() const;
    OvNode *makeEntry(const PanelRow &row);
    void makeFirstEntries();
    void clearOvNodes();

    std::vector<Node *> storyNodes; // not owned; refreshed or emptied before any of them goes
    std::unique_ptr<PanelList> list;
    QPointer<const QGraphicsScene> listedGraph; // of the entries, or of the last ones if there are none
    QColor backgroundColor{QStringLiteral("#EAEAEA")};
    int spacing_ = 5; // scene units
    OvNode *currentOvNode = nullptr;
    bool showImportantOnly = false;
    PanelMark entryMark;
    PanelObserver *observer = nullptr; // not owned
    PanelFocus keyboard{*this};
};
