#include "app/mainwindow.h"

#include "app/tabsaside.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/panelfitter.h"
#include "overviewer/panelkeys.h"
#include "overviewer/panelplace.h"
#include "overviewer/panelviewport.h"
#include "scene/nodegraphscene.h"
#include "ui_mainwindow.h"
#include "view/nodegraphview.h"

#include <QGraphicsView>
#include <QTimer>

// The collection sits in a library, where nothing registers it by itself. Must stand outside any namespace.
static void registerResources() { Q_INIT_RESOURCE(fablegrid); }

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent)
{
    registerResources();
    ui = std::make_unique<Ui::MainWindow>();
    ui->setupUi(this);
    setupOverviewer();
    addNodeGraphTab();
    connect(ui->AddNodeGraph_tool_button, &QAbstractButton::clicked, this, &MainWindow::addNodeGraphTab);
    connect(ui->Nodegraph, &QTabWidget::tabCloseRequested, this, &MainWindow::closeTab);
    connect(ui->Nodegraph, &QTabWidget::currentChanged, this, &MainWindow::currentTabChanged);
    connect(ui->Nodegraph, &QTabWidget::currentChanged, ui->Nodegraph,
            [tabs = ui->Nodegraph](int place) { TabsAside::bringCloseButton(*tabs, place); });
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
    overviewerScene = scene;
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
    makeAccessible(panel);
    connect(panel, &QObject::destroyed, scene, [scene] { delete scene; });
}

void MainWindow::addNodeGraphTab()
{
    auto *view = new NodegraphView(nullptr);
    view->setAccessibleName(tr("Graph of events"));
    ui->Nodegraph->addTab(view, tr("Story %1").arg(views.size() + 1));
    views.push_back(view);
    ui->Nodegraph->setTabsClosable(true);

    NodegraphScene *scene = view->nodegraphScene();
    OverViewerScene *panel = overviewerScene;
    showStoryOf(scene);
    connect(scene, SIGNAL(s_updateNode(Node*)), panel, SLOT(sl_updatedNode(Node*)));
    connect(panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)), scene,
                          SLOT(sl_ovNodeChanged(QGraphicsItem*,int)));
    connect(scene, SIGNAL(s_nodeIndexChanged(Node*,int)), panel, SLOT(sl_nodeIndexChanged(Node*,int)));
    connect(scene, SIGNAL(s_importanceChanged(Node*,bool)), panel, SLOT(sl_importanceChanged(Node*,bool)));

    // The view does not own its scene; here the two are tied together. The panel lets go of the nodes first.
    connect(view, &QObject::destroyed, panel, [panel, scene] { panel->forgetScene(scene); });
    connect(view, &QObject::destroyed, scene, [scene] { delete scene; });

    if (view == currentView())
        view->setFocus(); // the keys that go about the canvas work from the start
}

void MainWindow::showStoryOf(NodegraphScene *scene)
{
    connect(scene, SIGNAL(s_updateStory(std::vector<Node*>)), overviewerScene,
                          SLOT(sl_recieveNodes(std::vector<Node*>)), Qt::UniqueConnection);
}

/// Emptying or filling a graph of n events changes its story several times n times. The panel, which is made
/// anew each time, is shown the last one only.
void MainWindow::hideStoryOf(NodegraphScene *scene)
{
    disconnect(scene, SIGNAL(s_updateStory(std::vector<Node*>)), overviewerScene,
                             SLOT(sl_recieveNodes(std::vector<Node*>)));
}

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

NodegraphView *MainWindow::currentView() const
{
    return dynamic_cast<NodegraphView *>(ui->Nodegraph->currentWidget());
}

NodegraphView *MainWindow::viewAt(int tabIndex) const
{
    return dynamic_cast<NodegraphView *>(ui->Nodegraph->widget(tabIndex));
}
