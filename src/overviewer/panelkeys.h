#pragma once

#include <QObject>

class OvNode;
class OverViewerScene;
class QGraphicsView;
class QKeyEvent;

/// Going about the panel without a mouse: Tab comes and goes, the arrows, Home, End and the page keys mark an
/// entry, Enter or F2 begins to write in it, and Escape leaves the text.
///
/// While the panel has the keyboard and no text is being written in, the keys that edit a text do nothing.
/// The window's commands, which they are as well, would take events off the canvas, or bring them back, by a
/// key that was meant for the text of an entry; the menu does so for those who mean it. Owned by the panel's
/// view.
class PanelKeys : public QObject
{
    Q_OBJECT

public:
    /// `view` must have the panel's scene.
    explicit PanelKeys(QGraphicsView *panelView);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool press(const QKeyEvent &event);
    void noteFocus(const QEvent &event);
    void focusItemMoved();
    void goAbout(bool byKeys);
    void updateMark();

    /// The first entry that is shown; null if there is none.
    OvNode *topEntry() const;
    /// Where a key leads from the marked entry; null if it leads nowhere.
    OvNode *entryAt(int key) const;
    double pageHeight() const; // scene units
    void markEntry(OvNode *entry);
    void bringIntoSight(const OvNode *entry) const;
    void writeIn(OvNode *entry);

    QGraphicsView *view;
    OverViewerScene *scene;   // lives as long as the view
    bool isAboutKeys = false; // the user goes about the entries by keys
};
