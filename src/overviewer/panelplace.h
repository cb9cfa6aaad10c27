#pragma once

#include "overviewer/panelobserver.h"

#include <QGraphicsScene>
#include <QObject>
#include <QPointer>

#include <optional>
#include <vector>

class OverViewerScene;
class QGraphicsView;

/// Keeps the entry at the top of the panel's view where it is while entries come, go and grow, as far as the
/// list is long enough.
///
/// A place is kept until the user does something in the panel: what is published on the way from one story to
/// the next, even an empty list, does not lose it, and what is taken back brings it back. Every tab has its
/// own. Owned by the panel's view.
class PanelPlace : public QObject, public PanelObserver
{
    Q_OBJECT

public:
    /// `view` must have the panel's scene.
    explicit PanelPlace(QGraphicsView *panelView);
    ~PanelPlace() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    void aboutToPlaceEntries() override;
    void entriesPlaced() override;

private:
    struct Place
    {
        QPointer<const QGraphicsScene> graph; // whose events they are
        std::vector<int> indices;             // of all events that were listed, top first
        std::size_t top = 0;                  // which of them is the one at the top
        double y = 0;                         // of its upper edge, in pixels of the view
    };

    void scrolled();
    void keep(std::size_t top, double y);
    void choosePlaceOf(const QGraphicsScene *graph);
    /// The one at the top, or else the next that is still listed; -1 if none of them is.
    int listedFrom(const Place &wanted) const;
    double pixelY(double sceneY) const;

    QGraphicsView *view;
    QPointer<OverViewerScene> scene;
    std::optional<Place> kept;
    std::vector<Place> ofOtherTabs;
    bool isPlacing = false; // the view scrolls because the entries change
};
