#include "app/mainwindow.h"

#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"
#include "ui_mainwindow.h"
#include "view/nodegraphview.h"

#include <QDebug>
#include <QDesktopServices>
#include <QUndoStack>
#include <QUrl>

void MainWindow::addEventNode()
{
    if (NodegraphView *view = currentView()) {
        qInfo() << "Undoing"; // the same line as for undo, and for a change of tabs
        view->nodegraphScene()->sl_addEventNode();
    }
}

void MainWindow::currentTabChanged(int)
{
    qInfo() << "Undoing";
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->updateStory();
}

void MainWindow::sl_undo()
{
    if (NodegraphView *view = currentView()) {
        qInfo() << "Undoing";
        view->undoStack()->undo();
    }
}

void MainWindow::sl_redo()
{
    if (NodegraphView *view = currentView()) {
        qInfo() << "Redoing";
        view->undoStack()->redo();
    }
}

void MainWindow::sl_copy()
{
    qInfo() << "Copy";
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->copyNodes();
}

void MainWindow::sl_cut()
{
    qInfo() << "cut";
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->cutNodes();
}

void MainWindow::sl_paste()
{
    qInfo() << "paste";
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->pasteNodes();
}

void MainWindow::sl_selectAll()
{
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->selectAll();
}

void MainWindow::sl_deselectAll()
{
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->deselectAll();
}

void MainWindow::sl_delete()
{
    NodegraphView *view = currentView();
    if (!view)
        return;
    NodegraphScene *scene = view->nodegraphScene();
    const bool many = scene->getSelectedNodes().size() > 1;
    if (many)
        hideStoryOf(scene);
    scene->deleteSelectedNodes(nullptr);
    if (many) {
        showStoryOf(scene);
        overviewerScene->sl_recieveNodes(scene->getStory());
    }
}

void MainWindow::sl_setEndOfStory()
{
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->setEndOfStoryNode();
}

void MainWindow::sl_setAsImportant()
{
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->toggleImportance(nullptr);
}

void MainWindow::sl_frame()
{
    if (NodegraphView *view = currentView()) {
        view->nodegraphScene()->frameSelectedNodes();
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::zoomIn()
{
    qInfo() << "ZoomingIn";
    if (NodegraphView *view = currentView()) {
        view->scale(1.2, 1.2);
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::zoomOut()
{
    if (NodegraphView *view = currentView()) {
        view->scale(0.8, 0.8);
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::zoom_50() { setZoom(0.5); }

void MainWindow::zoom_100() { setZoom(1.0); }

void MainWindow::zoom_200() { setZoom(2.0); }

void MainWindow::setZoom(double scale)
{
    if (NodegraphView *view = currentView()) {
        view->resetTransform();
        view->scale(scale, scale);
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::helpSupport()
{
    const QUrl page(QStringLiteral("https://" FABLEGRID_DOCUMENTATION_HOST "/documentation"));
    QDesktopServices::openUrl(page);
    qInfo() << "Opening Support page";
}
