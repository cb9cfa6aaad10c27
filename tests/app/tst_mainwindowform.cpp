#include "app/mainwindowform.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>

#include <array>
#include <bit>
#include <cstddef>
#include <iterator>
#include <memory>

namespace {

const QString windowIconPath = QStringLiteral(":/Logo/Assets/Logo/logo - Square (Fill) - App 1.svg");
const QString addNodePath = QStringLiteral(":/Icons/Assets/Icons/Add Node.png");

struct ObjectRow
{
    const char *name;
    const char *type;
    const char *parent;
};

constexpr ObjectRow objectRows[] = {
    {"centralwidget", "QWidget", "MainWindow"},
    {"gridLayout", "QGridLayout", "centralwidget"},
    {"horizontalLayout", "QHBoxLayout", "gridLayout"},
    {"Toolbar", "QFrame", "centralwidget"},
    {"Toolbar_2", "QVBoxLayout", "Toolbar"},
    {"AddNodeGraph_tool_button", "QToolButton", "Toolbar"},
    {"Add_NodeButton", "QToolButton", "Toolbar"},
    {"Nodegraph", "QTabWidget", "centralwidget"},
    {"Menubar", "QMenuBar", "MainWindow"},
    {"menuFile", "QMenu", "Menubar"},
    {"menuEdit", "QMenu", "Menubar"},
    {"menuView", "QMenu", "Menubar"},
    {"menuHelp", "QMenu", "Menubar"},
    {"menuTools", "QMenu", "Menubar"},
    {"menuLogo", "QMenu", "Menubar"},
    {"Overviewer", "QDockWidget", "MainWindow"},
    {"Overviewer_frame", "QWidget", "Overviewer"},
    {"verticalLayout_2", "QVBoxLayout", "Overviewer_frame"},
    {"Filter_bar", "QFrame", "Overviewer_frame"},
    {"horizontalLayout_2", "QHBoxLayout", "Filter_bar"},
    {"F1_button", "QPushButton", "Filter_bar"},
    {"OverviewerFrame", "QFrame", "Overviewer_frame"},
    {"gridLayout_2", "QGridLayout", "OverviewerFrame"},
    {"OverviewerLayout", "QVBoxLayout", "gridLayout_2"},
};

void compareFrame(const QFrame *frame)
{
    QCOMPARE(frame->frameShape(), QFrame::StyledPanel);
    QCOMPARE(frame->frameShadow(), QFrame::Raised);
}

} // namespace

class tst_MainWindowForm : public FormTest
{
    Q_OBJECT

private slots:
    void membersStandInOrder();
    void objects_data();
    void objects();
    void objectsAreComplete();
    void mainWindow();
    void keepsExistingObjectName();
    void refusesToShrinkBelowMinimum();
    void centralLayouts();
    void toolColumn();
    void addTabButton();
    void addNodeButton();
    void tabWidget();
    void dock();
    void dockKeepsItsWidth();
    void dockCanBeMovedButNotClosed();
    void dockContents();
    void filterButton();
};

void tst_MainWindowForm::membersStandInOrder()
{
    // The two spacers are no QObjects and have no names.
    QObjectList members;
    members << form.actionNew << form.actionOpen << form.actionSave << form.actionSave_As << form.actionClose
            << form.actionUndo << form.actionRedo << form.actionCut << form.actionCopy << form.actionPaste
            << form.actionSelect_All << form.actionDeselect_All << form.actionDelete << form.actionZoom_In
            << form.actionZoom_Out << form.actionZoom_to_50 << form.actionZoom_to_100
            << form.actionZoom_to_200 << form.actionShortcuts << form.actionHelp_and_Support
            << form.actionFrame << form.actionSet_End_of_Story << form.actionSet_as_Important
            << form.actionAdd_Event << form.centralwidget << form.gridLayout << form.horizontalLayout
            << form.Toolbar << form.Toolbar_2 << form.AddNodeGraph_tool_button << form.Add_NodeButton
            << nullptr << form.Nodegraph << form.Menubar << form.menuFile << form.menuEdit << form.menuView
            << form.menuHelp << form.menuTools << form.menuLogo << form.Overviewer << form.Overviewer_frame
            << form.verticalLayout_2 << form.Filter_bar << form.horizontalLayout_2 << nullptr
            << form.F1_button << form.OverviewerFrame << form.gridLayout_2 << form.OverviewerLayout;
    constexpr std::size_t count = 50;
    QCOMPARE(members.size(), qsizetype(count));
    QStringList names;
    for (const ActionRow &row : actionRows)
        names.append(QString::fromLatin1(row.name));
    for (const ObjectRow &row : objectRows)
        names.append(QString::fromLatin1(row.name));

    const auto stored = std::bit_cast<std::array<quintptr, count>>(form);
    for (std::size_t i = 0; i < count; ++i) {
        const QObject *member = members.at(qsizetype(i));
        if (!member)
            continue;
        QCOMPARE(stored[i], reinterpret_cast<quintptr>(member));
        QCOMPARE(member->objectName(), names.takeFirst());
    }
    QVERIFY(names.isEmpty());
    QCOMPARE(stored[31], reinterpret_cast<quintptr>(form.verticalSpacer));
    QCOMPARE(stored[45], reinterpret_cast<quintptr>(form.horizontalSpacer));
}

void tst_MainWindowForm::objects_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("parent");
    for (const ObjectRow &row : objectRows)
        QTest::newRow(row.name) << QString::fromLatin1(row.type) << QString::fromLatin1(row.parent);
    for (const ActionRow &row : actionRows)
        QTest::newRow(row.name) << QStringLiteral("QAction") << QStringLiteral("MainWindow");
}

void tst_MainWindowForm::objects()
{
    QFETCH(const QString, type);
    QFETCH(const QString, parent);
    const auto found = window->findChildren<QObject *>(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(found.size(), 1);
    QCOMPARE(QString::fromLatin1(found.first()->metaObject()->className()), type);
    QCOMPARE(found.first()->parent()->objectName(), parent);
}

void tst_MainWindowForm::objectsAreComplete()
{
    QCOMPARE(window->findChildren<QAction *>(QRegularExpression(QStringLiteral("^action"))).size(),
             qsizetype(std::size(actionRows)));
    QCOMPARE(window->findChildren<QMenu *>().size(), 6);
    QCOMPARE(window->findChildren<QDockWidget *>().size(), 1);
    QVERIFY(!window->findChild<QStatusBar *>());
    QVERIFY(!window->findChild<QToolBar *>());
}

void tst_MainWindowForm::mainWindow()
{
    QCOMPARE(window->objectName(), QStringLiteral("MainWindow"));
    QCOMPARE(window->size(), QSize(1440, 748));
    QCOMPARE(window->minimumSize(), QSize(962, 601));
    QCOMPARE(window->baseSize(), QSize(0, 0));
    QCOMPARE(window->styleSheet(), QStringLiteral("background-color: rgb(54, 54, 54);"));
    QVERIFY(!window->windowIcon().isNull());
    QCOMPARE(image(window->windowIcon()), image(QIcon(windowIconPath)));
    QCOMPARE(window->centralWidget(), form.centralwidget);
    QCOMPARE(window->menuBar(), form.Menubar);
}

void tst_MainWindowForm::keepsExistingObjectName()
{
    QMainWindow named;
    named.setObjectName(QStringLiteral("Named"));
    Ui::MainWindow namedForm;
    namedForm.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("Named"));
}

void tst_MainWindowForm::refusesToShrinkBelowMinimum()
{
    window->resize(100, 100);
    QCOMPARE(window->size(), QSize(962, 601));
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QCOMPARE(window->size(), QSize(962, 601));
    window->resize(961, 800);
    QTRY_COMPARE(window->size(), QSize(962, 800));
    window->resize(1000, 600);
    QTRY_COMPARE(window->size(), QSize(1000, 601));
}

void tst_MainWindowForm::centralLayouts()
{
    QCOMPARE(form.centralwidget->layout(), form.gridLayout);
    QCOMPARE(form.gridLayout->contentsMargins(), QMargins());
    QCOMPARE(form.gridLayout->count(), 1);
    QCOMPARE(form.gridLayout->rowCount(), 1);
    QCOMPARE(form.gridLayout->columnCount(), 1);
    QCOMPARE(form.gridLayout->itemAtPosition(0, 0)->layout(), form.horizontalLayout);

    QCOMPARE(form.horizontalLayout->spacing(), 0);
    QCOMPARE(form.horizontalLayout->count(), 2);
    QCOMPARE(form.horizontalLayout->itemAt(0)->widget(), form.Toolbar);
    QCOMPARE(form.horizontalLayout->itemAt(1)->widget(), form.Nodegraph);
    QCOMPARE(form.horizontalLayout->stretch(0), 5);
    QCOMPARE(form.horizontalLayout->stretch(1), 0);
}

void tst_MainWindowForm::toolColumn()
{
    QCOMPARE(form.Toolbar->sizePolicy(), QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred));
    compareFrame(form.Toolbar);

    QCOMPARE(form.Toolbar->layout(), form.Toolbar_2);
    QCOMPARE(form.Toolbar_2->spacing(), 6);
    QCOMPARE(form.Toolbar_2->contentsMargins(), QMargins());
    QCOMPARE(form.Toolbar_2->count(), 3);
    QCOMPARE(form.Toolbar_2->itemAt(0)->widget(), form.AddNodeGraph_tool_button);
    QCOMPARE(form.Toolbar_2->itemAt(1)->widget(), form.Add_NodeButton);
    QCOMPARE(form.Toolbar_2->itemAt(2)->spacerItem(), form.verticalSpacer);
    QCOMPARE(form.Toolbar_2->stretch(0), 1);
    QCOMPARE(form.Toolbar_2->stretch(1), 1);
    QCOMPARE(form.Toolbar_2->stretch(2), 18);

    QCOMPARE(form.verticalSpacer->sizeHint(), QSize(20, 40));
    QCOMPARE(form.verticalSpacer->sizePolicy(), QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Expanding));
}

void tst_MainWindowForm::addTabButton()
{
    const QToolButton *button = form.AddNodeGraph_tool_button;
    QCOMPARE(button->minimumSize(), QSize(40, 32));
    QCOMPARE(button->maximumSize(), QSize(40, 32));
    QCOMPARE(button->font().weight(), 700);
    QVERIFY(!button->autoFillBackground());
    QCOMPARE(button->styleSheet(),
             QStringLiteral("selection-background-color: rgb(77, 77, 77);\ncolor: rgb(255, 255, 255);"));
    QVERIFY(!button->icon().isNull());
    QCOMPARE(image(button->icon()), image(QIcon(addNodePath)));
    QCOMPARE(button->iconSize(), QSize(40, 46));
    QVERIFY(button->isCheckable());
    QVERIFY(!button->isChecked());
    QVERIFY(button->autoExclusive());
    QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonTextOnly);
    QVERIFY(!button->autoRaise());
}

void tst_MainWindowForm::addNodeButton()
{
    const QToolButton *button = form.Add_NodeButton;
    QCOMPARE(button->minimumSize(), QSize(40, 40));
    QCOMPARE(button->maximumSize(), QSize(40, 40));
    QCOMPARE(button->styleSheet(), QString());
    QVERIFY(!button->icon().isNull());
    QCOMPARE(image(button->icon()), image(QIcon(addNodePath)));
    QCOMPARE(button->iconSize(), QSize(24, 24));
    QVERIFY(!button->isCheckable());
    QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonIconOnly);
    QVERIFY(button->autoRaise());
}

void tst_MainWindowForm::tabWidget()
{
    QCOMPARE(form.Nodegraph->minimumSize(), QSize(0, 0));
    QCOMPARE(form.Nodegraph->styleSheet(), QStringLiteral("border-color: rgb(52, 52, 52);\n"
                                                          "border-bottom-color: rgb(36, 36, 36);\n"
                                                          "border-right-color: rgb(36, 36, 36);\n"
                                                          "background-color: rgb(66, 66, 66);"));
    QVERIFY(!form.Nodegraph->documentMode());
    QVERIFY(form.Nodegraph->tabsClosable());
    QVERIFY(form.Nodegraph->isMovable());
    QVERIFY(!form.Nodegraph->tabBarAutoHide());
    QCOMPARE(form.Nodegraph->count(), 0);
    QCOMPARE(form.Nodegraph->currentIndex(), -1);
}

void tst_MainWindowForm::dock()
{
    QCOMPARE(form.Overviewer->sizePolicy(), QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
    QCOMPARE(form.Overviewer->minimumSize(), QSize(424, 178));
    QCOMPARE(form.Overviewer->maximumSize(), QSize(424, 524287));
    QCOMPARE(form.Overviewer->styleSheet(), QStringLiteral("color: rgb(255, 255, 255);"));
    QVERIFY(!form.Overviewer->isFloating());
    QCOMPARE(form.Overviewer->features(), QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    QCOMPARE(form.Overviewer->allowedAreas(), Qt::AllDockWidgetAreas);
    QCOMPARE(window->dockWidgetArea(form.Overviewer), Qt::RightDockWidgetArea);
    QCOMPARE(form.Overviewer->widget(), form.Overviewer_frame);
}

void tst_MainWindowForm::dockKeepsItsWidth()
{
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QTRY_COMPARE(form.Overviewer->width(), 424);
    QVERIFY(form.Overviewer->x() > form.centralwidget->geometry().right());
    for (const QSize size : {QSize(962, 601), QSize(1900, 1000)}) {
        window->resize(size);
        QTRY_COMPARE(window->size(), size);
        QTRY_COMPARE(form.Overviewer->geometry().right(), size.width() - 1);
        QCOMPARE(form.Overviewer->width(), 424);
    }
}

void tst_MainWindowForm::dockCanBeMovedButNotClosed()
{
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QVERIFY(!form.Overviewer->toggleViewAction()->isEnabled());
    const auto *closeButton =
        form.Overviewer->findChild<QWidget *>(QStringLiteral("qt_dockwidget_closebutton"));
    const auto *floatButton =
        form.Overviewer->findChild<QWidget *>(QStringLiteral("qt_dockwidget_floatbutton"));
    QVERIFY(closeButton);
    QVERIFY(!closeButton->isVisible());
    QVERIFY(floatButton);
    QVERIFY(floatButton->isVisible());

    window->addDockWidget(Qt::LeftDockWidgetArea, form.Overviewer);
    QTRY_COMPARE(form.Overviewer->x(), 0);
    QCOMPARE(form.Overviewer->width(), 424);
    form.Overviewer->setFloating(true);
    QVERIFY(QTest::qWaitForWindowExposed(form.Overviewer));
    QVERIFY(form.Overviewer->isFloating());
    QCOMPARE(form.Overviewer->width(), 424);
}

void tst_MainWindowForm::dockContents()
{
    QCOMPARE(form.Overviewer_frame->layout(), form.verticalLayout_2);
    QCOMPARE(form.verticalLayout_2->spacing(), 0);
    QCOMPARE(form.verticalLayout_2->contentsMargins(), QMargins());
    QCOMPARE(form.verticalLayout_2->count(), 2);
    QCOMPARE(form.verticalLayout_2->itemAt(0)->widget(), form.Filter_bar);
    QCOMPARE(form.verticalLayout_2->itemAt(1)->widget(), form.OverviewerFrame);
    QCOMPARE(form.verticalLayout_2->stretch(0), 1);
    QCOMPARE(form.verticalLayout_2->stretch(1), 22);

    compareFrame(form.Filter_bar);
    QCOMPARE(form.Filter_bar->layout(), form.horizontalLayout_2);
    QCOMPARE(form.horizontalLayout_2->spacing(), 0);
    QCOMPARE(form.horizontalLayout_2->contentsMargins(), QMargins());
    QCOMPARE(form.horizontalLayout_2->count(), 2);
    QCOMPARE(form.horizontalLayout_2->itemAt(0)->spacerItem(), form.horizontalSpacer);
    QCOMPARE(form.horizontalLayout_2->itemAt(1)->widget(), form.F1_button);
    QCOMPARE(form.horizontalSpacer->sizeHint(), QSize(40, 20));
    QCOMPARE(form.horizontalSpacer->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));

    compareFrame(form.OverviewerFrame);
    QCOMPARE(form.OverviewerFrame->layout(), form.gridLayout_2);
    QCOMPARE(form.gridLayout_2->horizontalSpacing(), 0);
    QCOMPARE(form.gridLayout_2->verticalSpacing(), 0);
    QCOMPARE(form.gridLayout_2->contentsMargins(), QMargins());
    QCOMPARE(form.gridLayout_2->count(), 1);
    QCOMPARE(form.gridLayout_2->rowCount(), 1);
    QCOMPARE(form.gridLayout_2->columnCount(), 1);
    QCOMPARE(form.gridLayout_2->itemAtPosition(0, 0)->layout(), form.OverviewerLayout);
    QCOMPARE(form.OverviewerLayout->spacing(), 0);
    QCOMPARE(form.OverviewerLayout->count(), 0);
}

void tst_MainWindowForm::filterButton()
{
    QCOMPARE(form.F1_button->minimumSize(), QSize(104, 24));
    QCOMPARE(form.F1_button->maximumSize(), QSize(104, 24));
    QCOMPARE(form.F1_button->styleSheet(), QStringLiteral("color: rgb(255, 255, 255);"));
    QVERIFY(form.F1_button->isCheckable());
    QVERIFY(!form.F1_button->isChecked());
    QVERIFY(!form.F1_button->isFlat());
    QVERIFY(!form.F1_button->isDefault());

    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QTRY_COMPARE(form.F1_button->geometry().right(), form.Filter_bar->contentsRect().right());
}

QTEST_MAIN(tst_MainWindowForm)
#include "tst_mainwindowform.moc"
