#include "story.h"

#include "app/documentstream.h"
#include "app/mainwindow.h"
#include "items/node.h"
#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QApplication>
#include <QDockWidget>
#include <QFile>
#include <QPointF>

namespace {

/// Which event feeds that one, -1 if none does.
int feederOf(int event, int events, StoryShape shape)
{
    const int chain = shape == StoryShape::chain ? events : events / 2;
    if (event < chain)
        return event - 1;
    const bool isFirstStored = (event - chain) % 2 == 0;
    return isFirstStored && event + 1 < events ? event + 1 : chain - 1;
}

} // namespace

void writeStory(const QString &path, int events, StoryShape shape)
{
    constexpr int inARow = 100;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    DocumentStream stream(&file);
    stream << qint32(1) << qint32(events);
    const QString words = QStringLiteral("The tide turns and the keeper counts the lamps. ").repeated(7);
    for (int i = 0; i < events; ++i) {
        const QString text = (QString::number(i) + QLatin1Char(' ') + words).left(300);
        stream << QStringLiteral("Event") << QStringLiteral("Event %1").arg(i)
               << QPointF(600.0 * (i % inARow), 500.0 * (i / inARow)) // NOLINT(bugprone-integer-division)
               << qint32(i) << qint32(feederOf(i, events, shape)) << qint32(i == events - 1 ? 1 : 0)
               << qint32(i % 7 == 3 ? 1 : 0) << text;
    }
}

StoryWindow::StoryWindow() : main(new MainWindow)
{
    main->resize(1440, 748);
    main->show();
    panelView()->viewport()->installEventFilter(this);
    QApplication::processEvents();
}

StoryWindow::~StoryWindow() { delete main; }

NodegraphView *StoryWindow::view() const { return main->views().front(); }

NodegraphScene *StoryWindow::scene() const { return view()->nodegraphScene(); }

OverViewerScene *StoryWindow::panel() const { return main->overviewerScene(); }

QGraphicsView *StoryWindow::panelView() const { return panel()->views().first(); }

Node *StoryWindow::node(double part) const
{
    const std::vector<Node *> &nodes = scene()->nodes();
    return nodes.at(std::size_t(part * double(nodes.size() - 1)));
}

void StoryWindow::show()
{
    canvasPaints = 0;
    panelPaints = 0;
    if (!main->views().empty())
        view()->viewport()->installEventFilter(this); // the last one installed; twice is once
    QApplication::sendPostedEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    // Whatever was not changed is painted all the same, so that each figure holds both.
    if (canvasPaints == 0 && !main->views().empty())
        view()->viewport()->repaint();
    if (panelPaints == 0)
        panelView()->viewport()->repaint();
}

void StoryWindow::lookAt(Node *node)
{
    main->zoom_100();
    view()->centerOn(node->sceneBoundingRect().center());
    show();
}

bool StoryWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint)
        ++(watched == panelView()->viewport() ? panelPaints : canvasPaints);
    return QObject::eventFilter(watched, event);
}
