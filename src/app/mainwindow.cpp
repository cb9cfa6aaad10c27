#include "app/mainwindow.h"

#include "app/keyboardaccess.h"
#include "app/notices.h"
#include "app/scenedocument.h"
#include "app/storytabs.h"
#include "app/wording.h"
#include "app/workkeeper.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/panelfitter.h"
#include "overviewer/panelkeys.h"
#include "overviewer/panelplace.h"
#include "overviewer/panelviewport.h"
#include "scene/nodegraphscene.h"
#include "ui_mainwindow.h"
#include "view/nodegraphview.h"

#include <QCloseEvent>
#include <QDebug>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGraphicsView>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <QUndoStack>
#include <QUrl>

namespace {
constexpr QMessageBox::StandardButtons answers = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
} // namespace

// The collection sits in a library, where nothing registers it by itself. Must stand outside any namespace.
static void registerResources() { Q_INIT_RESOURCE(fablegrid); }

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent)
{
    registerResources();
    ui = std::make_unique<Ui::MainWindow>();
    ui->setupUi(this);
    setupOverviewer();
    tabs = std::make_unique<StoryTabs>(ui->Nodegraph, overviewerScene_);
    sceneDocument = std::make_unique<SceneDocument>(*tabs);
    notices = std::make_unique<Notices>(ui->Nodegraph);
    work = std::make_unique<WorkKeeper>(*sceneDocument, *notices);
    addNodeGraphTab();
    connect(ui->AddNodeGraph_tool_button, &QAbstractButton::clicked, this, &MainWindow::addNodeGraphTab);
    connect(ui->Nodegraph, &QTabWidget::tabCloseRequested, this, &MainWindow::closeTab);
    connect(ui->Nodegraph, &QTabWidget::currentChanged, this, &MainWindow::currentTabChanged);
    connectCommands();
    startAutosave();
}

MainWindow::~MainWindow()
{
    // The tabs go with the widget tree, after this class is no more: their leaving must not be told to it.
    ui->Nodegraph->disconnect(this);
}

void MainWindow::setupOverviewer()
{
    auto *panel = new QGraphicsView;
    auto *scene = new OverViewerScene;
    overviewerScene_ = scene;
    panel->setViewport(new PanelViewport);
    panel->setScene(scene);
    panel->setViewportUpdateMode(
        QGraphicsView::FullViewportUpdate); // at the seams of parts edges come out lighter
    panel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    panel->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    // The colour of the outlines of important entries; the dock's white would not show.
    panel->setStyleSheet(QStringLiteral("QGraphicsView { color: rgb(0, 0, 192); }"));
    ui->OverviewerLayout->addWidget(panel);
    // The face that the style gives a pressed button is a shade of the other one.
    ui->Filter_bar->setStyleSheet(
        QStringLiteral("QPushButton:checked, QPushButton:pressed { background-color: rgb(30, 88, 160); }"));
    connect(ui->F1_button, SIGNAL(clicked(bool)), scene, SLOT(sl_setFilter_important(bool)));
    new PanelFitter(panel);
    new PanelPlace(panel);
    new PanelKeys(panel);
    new KeyboardAccess(this, *ui, panel);
    connect(panel, &QObject::destroyed, scene, [scene] { delete scene; });
}

void MainWindow::addNodeGraphTab() { tabs->add(); }

void MainWindow::connectCommands()
{
    connect(ui->Add_NodeButton, SIGNAL(clicked(bool)), this, SLOT(addEventNode()));
    connect(ui->actionAdd_Event, SIGNAL(triggered(bool)), this, SLOT(addEventNode()));
    connect(ui->actionSave, SIGNAL(triggered(bool)), this, SLOT(sl_saveFile()));
    connect(ui->actionOpen, SIGNAL(triggered(bool)), this, SLOT(sl_loadFile()));
    connect(ui->actionSave_As, SIGNAL(triggered(bool)), this, SLOT(sl_saveAsFile()));
    connect(ui->actionNew, SIGNAL(triggered(bool)), this, SLOT(clearTabs()));
    connect(ui->actionUndo, SIGNAL(triggered(bool)), this, SLOT(sl_undo()));
    connect(ui->actionRedo, SIGNAL(triggered(bool)), this, SLOT(sl_redo()));
    connect(ui->actionCopy, SIGNAL(triggered(bool)), this, SLOT(sl_copy()));
    connect(ui->actionCut, SIGNAL(triggered(bool)), this, SLOT(sl_cut()));
    connect(ui->actionPaste, SIGNAL(triggered(bool)), this, SLOT(sl_paste()));
    connect(ui->actionSet_End_of_Story, SIGNAL(triggered(bool)), this, SLOT(sl_setEndOfStory()));
    connect(ui->actionSet_as_Important, SIGNAL(triggered(bool)), this, SLOT(sl_setAsImportant()));
    connect(ui->actionSelect_All, SIGNAL(triggered(bool)), this, SLOT(sl_selectAll()));
    connect(ui->actionDeselect_All, SIGNAL(triggered(bool)), this, SLOT(sl_deselectAll()));
    connect(ui->actionDelete, SIGNAL(triggered(bool)), this, SLOT(sl_delete()));
    connect(ui->actionZoom_In, SIGNAL(triggered(bool)), this, SLOT(zoomIn()));
    connect(ui->actionZoom_Out, SIGNAL(triggered(bool)), this, SLOT(zoomOut()));
    connect(ui->actionZoom_to_50, SIGNAL(triggered(bool)), this, SLOT(zoom_50()));
    connect(ui->actionZoom_to_100, SIGNAL(triggered(bool)), this, SLOT(zoom_100()));
    connect(ui->actionZoom_to_200, SIGNAL(triggered(bool)), this, SLOT(zoom_200()));
    connect(ui->actionFrame, SIGNAL(triggered(bool)), this, SLOT(sl_frame()));
    connect(ui->actionHelp_and_Support, SIGNAL(triggered(bool)), this, SLOT(helpSupport()));
}

void MainWindow::startAutosave()
{
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &MainWindow::autosave);
    timer->start(autosaveInterval);
}

QString MainWindow::currentFilePath() const { return sceneDocument->path(); }

const std::vector<NodegraphView *> &MainWindow::views() const { return tabs->views(); }

bool MainWindow::saveTo(const QString &path) { return work->saveTo(path); }

void MainWindow::loadFrom(const QString &path) { work->loadFrom(path); }

void MainWindow::keepForTheEnd() { work->keep(KeptCopies::Occasion::end); }

void MainWindow::keepWithoutWords() const { work->keepWithoutWords(KeptCopies::Occasion::end); }

void MainWindow::clearTabs() { work->startAnew(); }

void MainWindow::autosave() { work->autosave(); }

QString MainWindow::askForSavePath()
{
    return QFileDialog::getSaveFileName(this, tr("Save Scene"), QString(), tr("Scene Files (*.scene)"));
}

void MainWindow::sl_saveFile() { save(); }

void MainWindow::sl_saveAsFile() { saveAs(); }

/// Whether all tabs are in a file now.
bool MainWindow::save() { return sceneDocument->path().isEmpty() ? saveAs() : saveTo(sceneDocument->path()); }

bool MainWindow::saveAs()
{
    const QString path = askForSavePath();
    if (path.isEmpty())
        return false;
    sceneDocument->setPath(path);
    return saveTo(path);
}

void MainWindow::sl_loadFile()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Load Scene"), QString(), tr("Scene Files (*.scene)"));
    if (!path.isEmpty())
        loadFrom(path);
}

void MainWindow::closeTab(int index)
{
    if (ui->Nodegraph->count() == 1)
        return;
    const QPointer<NodegraphView> closing = tabs->at(index);
    const auto answer = QMessageBox::question(
        this, tr("Save Changes"),
        tr("This tab has unsaved changes. Do you want to save them before closing?"), answers);
    if (answer != QMessageBox::Yes && answer != QMessageBox::No)
        return; // without any answer the program is about to end
    if (answer == QMessageBox::No || !save())
        work->keep(KeptCopies::Occasion::tab);
    if (closing)
        tabs->close(closing);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    const auto answer = QMessageBox::question(
        this, tr("Save Changes"),
        tr("The file has unsaved changes. Do you want to save them before closing?"), answers);
    if (answer == QMessageBox::No || (answer == QMessageBox::Yes && !save()))
        work->keep(KeptCopies::Occasion::close);
    event->setAccepted(answer == QMessageBox::No || answer == QMessageBox::Yes);
}

void MainWindow::addEventNode()
{
    if (NodegraphView *view = tabs->current()) {
        qInfo() << "Undoing"; // the same line as for undo, and for a change of tabs
        view->nodegraphScene()->addEvent();
    }
}

void MainWindow::currentTabChanged(int)
{
    qInfo() << "Undoing";
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->updateStory();
}

void MainWindow::sl_undo()
{
    if (NodegraphView *view = tabs->current()) {
        qInfo() << "Undoing";
        view->undoStack()->undo();
    }
}

void MainWindow::sl_redo()
{
    if (NodegraphView *view = tabs->current()) {
        qInfo() << "Redoing";
        view->undoStack()->redo();
    }
}

void MainWindow::sl_copy()
{
    qInfo() << "Copy";
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->copyNodes();
}

void MainWindow::sl_cut()
{
    qInfo() << "cut";
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->cutNodes();
}

void MainWindow::sl_paste()
{
    qInfo() << "paste";
    NodegraphView *view = tabs->current();
    if (!view)
        return;
    if (!view->nodegraphScene()->canPasteNodes()) {
        qWarning() << "Couldn't paste: there is not enough memory.";
        notices->fail(Notices::Subject::pasting, Wording::notPasted());
        return;
    }
    notices->succeed(Notices::Subject::pasting);
    view->nodegraphScene()->pasteNodes();
}

void MainWindow::sl_selectAll()
{
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->selectAll();
}

void MainWindow::sl_deselectAll()
{
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->deselectAll();
}

void MainWindow::sl_delete()
{
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->deleteSelectedNodes(nullptr);
}

void MainWindow::sl_setEndOfStory()
{
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->setEndOfStoryNode();
}

void MainWindow::sl_setAsImportant()
{
    if (NodegraphView *view = tabs->current())
        view->nodegraphScene()->toggleImportance(nullptr);
}

void MainWindow::sl_frame()
{
    if (NodegraphView *view = tabs->current()) {
        view->nodegraphScene()->frameSelectedNodes();
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::zoomIn()
{
    qInfo() << "ZoomingIn";
    if (NodegraphView *view = tabs->current()) {
        view->scale(1.2, 1.2);
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::zoomOut()
{
    if (NodegraphView *view = tabs->current()) {
        view->scale(0.8, 0.8);
        view->setZoomDivisor(1.0);
    }
}

void MainWindow::zoom_50() { setZoom(0.5); }

void MainWindow::zoom_100() { setZoom(1.0); }

void MainWindow::zoom_200() { setZoom(2.0); }

void MainWindow::setZoom(double scale)
{
    if (NodegraphView *view = tabs->current()) {
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
