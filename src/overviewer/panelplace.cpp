#include "overviewer/panelplace.h"

#include "overviewer/overviewerscene.h"

#include <QEvent>
#include <QGraphicsView>
#include <QHash>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace {

/// Which comes before every command that is given by key.
bool isModifier(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Control || event.key() == Qt::Key_Shift || event.key() == Qt::Key_Alt ||
           event.key() == Qt::Key_Meta || event.key() == Qt::Key_AltGr;
}

} // namespace

PanelPlace::PanelPlace(QGraphicsView *panelView)
    : QObject(panelView), view(panelView), scene(dynamic_cast<OverViewerScene *>(panelView->scene()))
{
    scene->setObserver(this);
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, &PanelPlace::scrolled);
}

PanelPlace::~PanelPlace()
{
    if (scene)
        scene->setObserver(nullptr);
}

bool PanelPlace::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool isKey = type == QEvent::KeyPress && !isModifier(*static_cast<QKeyEvent *>(event));
    if (isKey || type == QEvent::MouseButtonPress || type == QEvent::Wheel)
        kept.reset();
    return QObject::eventFilter(watched, event);
}

void PanelPlace::scrolled()
{
    if (!isPlacing)
        kept.reset();
}

double PanelPlace::pixelY(double sceneY) const
{
    return view->viewportTransform().map(QPointF(0, sceneY)).y();
}

void PanelPlace::aboutToPlaceEntries()
{
    const bool isFirst = !std::exchange(isPlacing, true);
    const std::vector<PanelRow> &rows = scene->rows();
    if (!isFirst || kept || rows.empty())
        return;
    // By the upper edges alone: an entry that grows has its new height already.
    const double edge = view->viewportTransform().inverted().map(QPointF(0, 0)).y();
    const auto below = std::upper_bound(rows.begin() + 1, rows.end(), edge + scene->spacing(),
                                        [](double y, const PanelRow &row) { return y < row.top(); });
    const auto top = static_cast<std::size_t>(below - rows.begin() - 1);
    keep(top, pixelY(rows[top].top()));
}

void PanelPlace::keep(std::size_t top, double y)
{
    Place place;
    place.graph = scene->shownGraph();
    place.top = top;
    place.y = y;
    // Not what the entries have meanwhile: a new event announces its index as a change from 0.
    place.indices.reserve(scene->rows().size());
    for (const PanelRow &row : scene->rows())
        place.indices.push_back(row.index);
    kept = std::move(place);
}

void PanelPlace::entriesPlaced()
{
    const std::vector<PanelRow> &rows = scene->rows();
    if (!rows.empty()) {
        choosePlaceOf(scene->shownGraph());
        QScrollBar *bar = view->verticalScrollBar();
        const int listed = kept ? listedFrom(*kept) : -1;
        if (listed >= 0) {
            const auto place = static_cast<std::size_t>(listed);
            bar->setValue(bar->value() + qRound(pixelY(rows[place].top()) - kept->y));
            if (rows[place].index == kept->indices[kept->top])
                keep(place, kept->y); // with those that have come around it
        } else {
            bar->setValue(bar->minimum());
        }
    }
    isPlacing = false;
}

/// Puts the place in another tab's list away and takes out the one in this tab's, if it has one.
void PanelPlace::choosePlaceOf(const QGraphicsScene *graph)
{
    if (kept && kept->graph == graph)
        return;
    std::erase_if(ofOtherTabs, [](const Place &place) { return !place.graph; });
    if (kept && kept->graph)
        ofOtherTabs.push_back(*std::exchange(kept, std::nullopt));
    kept.reset();
    const auto own = std::find_if(ofOtherTabs.begin(), ofOtherTabs.end(),
                                  [graph](const Place &place) { return place.graph == graph; });
    if (own == ofOtherTabs.end())
        return;
    kept = std::move(*own);
    ofOtherTabs.erase(own);
}

int PanelPlace::listedFrom(const Place &wanted) const
{
    const std::vector<PanelRow> &rows = scene->rows();
    const int top = wanted.indices[wanted.top];
    const auto found =
        std::find_if(rows.begin(), rows.end(), [top](const PanelRow &row) { return row.index == top; });
    if (found != rows.end())
        return static_cast<int>(found - rows.begin());
    QHash<int, int> places;
    for (std::size_t i = rows.size(); i-- > 0;)
        places.insert(rows[i].index, static_cast<int>(i));
    const auto listed = [&places](int index) { return places.contains(index); };
    const auto start = wanted.indices.begin() + static_cast<std::ptrdiff_t>(wanted.top);
    if (const auto after = std::find_if(start, wanted.indices.end(), listed); after != wanted.indices.end())
        return places.value(*after);
    const auto before = std::find_if(std::make_reverse_iterator(start), wanted.indices.rend(), listed);
    return before == wanted.indices.rend() ? -1 : places.value(*before);
}
