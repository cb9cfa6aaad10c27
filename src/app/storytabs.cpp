#include "app/storytabs.h"

#include "app/tabsaside.h"
#include "overviewer/overviewerscene.h"
#include "scene/clearinglog.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTabWidget>

StoryTabs::StoryTabs(QTabWidget *tabWidget, OverViewerScene *sharedPanel)
    : tabs(tabWidget), panel(sharedPanel)
{
    QObject::connect(tabs, &QTabWidget::currentChanged, tabs,
                     [bar = tabs](int place) { TabsAside::bringCloseButton(*bar, place); });
}

NodegraphView *StoryTabs::current() const { return dynamic_cast<NodegraphView *>(tabs->currentWidget()); }

NodegraphView *StoryTabs::at(int place) const { return dynamic_cast<NodegraphView *>(tabs->widget(place)); }

void StoryTabs::add()
{
    auto *view = new NodegraphView(nullptr);
    view->setAccessibleName(QCoreApplication::translate("MainWindow", "Graph of events"));
    tabs->addTab(view, QCoreApplication::translate("MainWindow", "Story %1").arg(all.size() + 1));
    all.push_back(view);
    tabs->setTabsClosable(true);

    NodegraphScene *scene = view->nodegraphScene();
    QObject::connect(scene, SIGNAL(s_updateStory(std::vector<Node*>)), panel,
                                   SLOT(sl_recieveNodes(std::vector<Node*>)));
    QObject::connect(scene, SIGNAL(s_updateNode(Node*)), panel, SLOT(sl_updatedNode(Node*)));
    QObject::connect(panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)), scene,
                                   SLOT(sl_ovNodeChanged(QGraphicsItem*,int)));
    QObject::connect(scene, SIGNAL(s_nodeIndexChanged(Node*,int)), panel,
                                   SLOT(sl_nodeIndexChanged(Node*,int)));
    QObject::connect(scene, SIGNAL(s_importanceChanged(Node*,bool)), panel,
                                   SLOT(sl_importanceChanged(Node*,bool)));

    // The view does not own its scene; here the two are tied together. The panel lets go of the nodes first.
    QObject::connect(view, &QObject::destroyed, panel, [told = panel, scene] { told->forgetScene(scene); });
    QObject::connect(view, &QObject::destroyed, scene, [scene] { delete scene; });

    if (view == current())
        view->setFocus(); // the keys that go about the canvas work from the start
}

void StoryTabs::add(int count)
{
    TabsAside aside(tabs, count);
    for (int i = 0; i < count; ++i) {
        qInfo() << "Adding tabs";
        add();
        aside.tabWasAdded();
    }
}

void StoryTabs::close(NodegraphView *view)
{
    const bool wasCurrent = view == tabs->currentWidget();
    // By the view, not by the number: tabs may have been dragged.
    tabs->removeTab(tabs->indexOf(view));
    std::erase(all, view);
    view->deleteLater(); // the close button that was pressed belongs to this tab
    if (NodegraphView *next = current()) {
        next->nodegraphScene()->updateStory();
        if (wasCurrent)
            next->setFocus(); // or the keyboard would be on whatever comes next in the window
    }
}

void StoryTabs::closeAll()
{
    panel->showStory({});
    for (const NodegraphView *view : all)
        logClearing(*view->nodegraphScene());
    const TabsAside aside(tabs, tabs->count());
    all.clear(); // whoever asks from now on must not meet one that is half gone
    while (tabs->count() > 0) {
        const int place = aside.nextToGo();
        QWidget *page = tabs->widget(place);
        tabs->removeTab(place);
        delete page;
    }
}
