#include "ui_mainwindow.h"

#include <QApplication>
#include <QDockWidget>
#include <QImage>
#include <QKeySequence>
#include <QMainWindow>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>
#include <QTranslator>

#include <array>
#include <bit>
#include <cstddef>
#include <iterator>
#include <memory>

// The macro declares a function, so it has to be used outside every namespace and class.
static void initResources() { Q_INIT_RESOURCE(fablegrid); }

namespace {

const QString windowIconPath = QStringLiteral(":/Logo/Assets/Logo/logo - Square (Fill) - App 1.svg");
const QString logoPath = QStringLiteral(":/Logo/Assets/Logo/logo - Fill Clipped 4.png");
const QString addNodePath = QStringLiteral(":/Icons/Assets/Icons/Add Node.png");

constexpr QSize iconProbe(24, 24);

struct ActionRow
{
    const char *name;
    const char *text;
    const char *shortcut = "";
    const char *toolTip = "";
};

constexpr ActionRow actionRows[] = {
    {"actionNew", "New", "Ctrl+N"},
    {"actionOpen", "Open", "Ctrl+O"},
    {"actionSave", "Save", "Ctrl+S"},
    {"actionSave_As", "Save As"},
    {"actionClose", "Close/Exit"},
    {"actionUndo", "Undo", "Ctrl+Z"},
    {"actionRedo", "Redo", "Ctrl+Y"},
    {"actionCut", "Cut", "Ctrl+X"},
    {"actionCopy", "Copy", "Ctrl+C"},
    {"actionPaste", "Paste", "Ctrl+V"},
    {"actionSelect_All", "Select All", "Ctrl+A"},
    {"actionDeselect_All", "Deselect All"},
    {"actionDelete", "Delete", "Del"},
    {"actionZoom_In", "Zoom In", "Ctrl++"},
    {"actionZoom_Out", "Zoom Out", "Ctrl+-"},
    {"actionZoom_to_50", "Zoom to 50%"},
    {"actionZoom_to_100", "Zoom to 100%"},
    {"actionZoom_to_200", "Zoom to 200%"},
    {"actionShortcuts", "Shortcuts", "Ctrl+/", "Shortcuts page (Under development)"},
    {"actionHelp_and_Support", "Help and Support", "",
     "Check the documentation to figure things out and how to utilize it to the fullest to Tell a story."},
    {"actionFrame", "Frame", "Ctrl+F",
     "Set the point of view to selected node(s). Set it to all of the nodes if none are selected."},
    {"actionSet_End_of_Story", "Set End of Story", "Ctrl+E",
     "This will set the current end of the story. Story will be acculumated upstream of this"},
    {"actionSet_as_Important", "Set as Important", "Ctrl+I",
     "Mark as an Important event in the story. Useful for summarizing later."},
    {"actionAdd_Event", "Add Event", "Ctrl+Shift+A", "Add Event Node in your Story."},
};

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

/// Answers every text of the form with "Alt+" in front, which reads as a text and as a key sequence
/// alike, and remembers what it was asked for.
class PrefixTranslator : public QTranslator
{
public:
    static QString altered(const QString &text) { return QStringLiteral("Alt+") + text; }

    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        if (qstrcmp(context, "MainWindow") != 0)
            return {};
        const QString text = QString::fromUtf8(sourceText);
        asked.append(text);
        return altered(text);
    }

    QStringList sortedTexts() const
    {
        QStringList texts = asked;
        texts.sort();
        return texts;
    }

private:
    mutable QStringList asked;
};

/// Has a slot named for automatic connection.
class NamedSlotWindow : public QMainWindow
{
    Q_OBJECT
public:
    int calls = 0;

public slots:
    void on_actionNew_triggered() { ++calls; }
};

QImage image(const QIcon &icon, QSize size = iconProbe, QIcon::Mode mode = QIcon::Normal)
{
    return icon.pixmap(size, mode, QIcon::Off).toImage();
}

QStringList actionNames(const QWidget *widget)
{
    QStringList names;
    for (const QAction *action : widget->actions())
        names.append(action->isSeparator() ? QStringLiteral("separator") : action->objectName());
    return names;
}

void compareFrame(const QFrame *frame)
{
    QCOMPARE(frame->frameShape(), QFrame::StyledPanel);
    QCOMPARE(frame->frameShadow(), QFrame::Raised);
}

} // namespace

class tst_MainWindowForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

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
    void menuBar();
    void menuStyleSheets_data();
    void menuStyleSheets();
    void menuContents_data();
    void menuContents();
    void logoMenu();
    void logoMenuHasItsOwnFontSize();
    void logoMenuShowsItsIcon();
    void dock();
    void dockKeepsItsWidth();
    void dockCanBeMovedButNotClosed();
    void dockContents();
    void filterButton();

    void actions_data();
    void actions();
    void shortcutsPageIsOutOfReach();
    void setsUntranslatedTexts();
    void translatesEveryTextButTheLogoTitle();
    void connectsSlotsByName();

private:
    std::unique_ptr<QMainWindow> window;
    Ui::MainWindow form;
};

void tst_MainWindowForm::initTestCase() { initResources(); }

void tst_MainWindowForm::init()
{
    // The offscreen platform says this whenever a dock starts to float; every other warning is a fault.
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!This plugin does not support raise\\(\\)$)")));
    window = std::make_unique<QMainWindow>();
    form.setupUi(window.get());
}

void tst_MainWindowForm::cleanup() { window.reset(); }

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

void tst_MainWindowForm::menuBar()
{
    QCOMPARE(form.Menubar->geometry(), QRect(0, 0, 1440, 24));
    QCOMPARE(form.Menubar->minimumSize(), QSize(0, 24));
    QCOMPARE(form.Menubar->layoutDirection(), Qt::LeftToRight);
    QVERIFY(form.Menubar->testAttribute(Qt::WA_SetLayoutDirection));
    QCOMPARE(form.Menubar->styleSheet(),
             QStringLiteral("color: rgb(255, 255, 255);\nbackground-color: rgb(66,66,66);"));
    QVERIFY(!form.Menubar->isDefaultUp());
    // Only a platform that has menus of its own answers yes, but it then does so for every default bar.
    QCOMPARE(form.Menubar->isNativeMenuBar(), QMenuBar().isNativeMenuBar());

    const QList<QAction *> order = {form.menuLogo->menuAction(),  form.menuFile->menuAction(),
                                    form.menuEdit->menuAction(),  form.menuView->menuAction(),
                                    form.menuTools->menuAction(), form.menuHelp->menuAction()};
    QCOMPARE(form.Menubar->actions(), order);
}

void tst_MainWindowForm::menuStyleSheets_data()
{
    QTest::addColumn<QString>("styleSheet");
    for (const char *name : {"menuFile", "menuEdit", "menuView", "menuHelp"})
        QTest::newRow(name) << QStringLiteral("selection-background-color: rgb(68,68,68);");
    for (const char *name : {"menuTools", "menuLogo"})
        QTest::newRow(name) << QString();
}

void tst_MainWindowForm::menuStyleSheets()
{
    QFETCH(const QString, styleSheet);
    QCOMPARE(window->findChild<QMenu *>(QString::fromLatin1(QTest::currentDataTag()))->styleSheet(),
             styleSheet);
}

void tst_MainWindowForm::menuContents_data()
{
    QTest::addColumn<QString>("entries");
    QTest::newRow("menuLogo") << QString();
    QTest::newRow("menuFile") << QStringLiteral("actionNew actionOpen actionSave actionSave_As actionClose");
    QTest::newRow("menuEdit") << QStringLiteral("actionUndo actionRedo actionCut actionCopy actionPaste "
                                                "actionSelect_All actionDeselect_All actionDelete");
    QTest::newRow("menuView") << QStringLiteral(
        "actionZoom_In actionZoom_Out actionZoom_to_50 actionZoom_to_100 "
        "actionZoom_to_200 separator actionFrame");
    QTest::newRow("menuTools") << QStringLiteral(
        "actionSet_End_of_Story actionSet_as_Important actionAdd_Event");
    QTest::newRow("menuHelp") << QStringLiteral("actionHelp_and_Support");
}

void tst_MainWindowForm::menuContents()
{
    QFETCH(const QString, entries);
    const auto *menu = window->findChild<QMenu *>(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(actionNames(menu).join(QLatin1Char(' ')), entries);
}

void tst_MainWindowForm::logoMenu()
{
    const QMenu *menu = form.menuLogo;
    QVERIFY(!menu->isEnabled());
    QVERIFY(!menu->menuAction()->isEnabled());

    QSizePolicy policy(QSizePolicy::Maximum, QSizePolicy::Maximum);
    policy.setHorizontalStretch(24);
    policy.setVerticalStretch(24);
    QCOMPARE(menu->sizePolicy(), policy);
    QCOMPARE(menu->minimumSize(), QSize(48, 48));
    QCOMPARE(menu->maximumSize(), QSize(48, 48));
    QCOMPARE(menu->sizeIncrement(), QSize(24, 24));
    QCOMPARE(menu->baseSize(), QSize(24, 24));
    QVERIFY(menu->hasMouseTracking());
    QVERIFY(!menu->acceptDrops());
    QVERIFY(!menu->autoFillBackground());
    QVERIFY(!menu->isTearOffEnabled());
    QCOMPARE(menu->title(), QStringLiteral("Logo"));

    const QIcon icon = menu->menuAction()->icon();
    QVERIFY(!icon.isNull());
    QCOMPARE(image(icon), image(QIcon(logoPath)));
    QCOMPARE(image(icon, iconProbe, QIcon::Disabled), image(icon));
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        QCOMPARE(icon.availableSizes(mode, QIcon::Off).size(), 1);
        QCOMPARE(icon.availableSizes(mode, QIcon::On).size(), 0);
    }
    QCOMPARE(icon.availableSizes(QIcon::Active, QIcon::Off).size(), 0);
}

void tst_MainWindowForm::logoMenuHasItsOwnFontSize()
{
    const QFont before = QApplication::font();
    const auto restoreFont = qScopeGuard([&before] { QApplication::setFont(before); });
    QFont large = before;
    large.setPointSize(21);
    QApplication::setFont(large);

    QMainWindow other;
    Ui::MainWindow otherForm;
    otherForm.setupUi(&other);
    QCOMPARE(otherForm.menuFile->font().pointSize(), 21);
    QCOMPARE(otherForm.menuLogo->font().pointSize(), 9);
}

void tst_MainWindowForm::logoMenuShowsItsIcon()
{
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QAction *logo = form.menuLogo->menuAction();
    QVERIFY(logo->isVisible());
    const QRect place = form.Menubar->actionGeometry(logo);
    QVERIFY(!place.isEmpty());
    const QImage shown = form.Menubar->grab(place).toImage();

    // An invisible icon of the same size keeps the place but shows nothing.
    QPixmap blank(logo->icon().actualSize(QSize(1024, 1024)));
    blank.fill(Qt::transparent);
    form.menuLogo->setIcon(QIcon(blank));
    QCOMPARE(form.Menubar->actionGeometry(logo), place);
    QVERIFY(form.Menubar->grab(place).toImage() != shown);
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

void tst_MainWindowForm::actions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<QString>("toolTip");
    for (const ActionRow &row : actionRows) {
        // Without a tip of its own an action answers with its text.
        const char *toolTip = *row.toolTip ? row.toolTip : row.text;
        QTest::newRow(row.name) << QString::fromLatin1(row.text) << QString::fromLatin1(row.shortcut)
                                << QString::fromLatin1(toolTip);
    }
}

void tst_MainWindowForm::actions()
{
    QFETCH(const QString, text);
    QFETCH(const QString, shortcut);
    QFETCH(const QString, toolTip);
    const auto *action = window->findChild<QAction *>(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(action->text(), text);
    QCOMPARE(action->shortcuts(), shortcut.isEmpty() ? QList<QKeySequence>() : QList{QKeySequence(shortcut)});
    QCOMPARE(action->toolTip(), toolTip);
    QVERIFY(action->icon().isNull());
    QVERIFY(action->isEnabled());
    QVERIFY(!action->isCheckable());
}

void tst_MainWindowForm::shortcutsPageIsOutOfReach()
{
    QVERIFY(form.actionShortcuts->associatedObjects().isEmpty());

    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    const QSignalSpy shortcutsSpy(form.actionShortcuts, &QAction::triggered);
    const QSignalSpy frameSpy(form.actionFrame, &QAction::triggered);
    QTest::keyClick(window.get(), Qt::Key_Slash, Qt::ControlModifier);
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(frameSpy.count(), 1);
    QCOMPARE(shortcutsSpy.count(), 0);
}

void tst_MainWindowForm::setsUntranslatedTexts()
{
    QCOMPARE(window->windowTitle(), QStringLiteral("MainWindow"));
    QCOMPARE(form.AddNodeGraph_tool_button->text(), QStringLiteral("Tab +"));
    QCOMPARE(form.Add_NodeButton->text(), QString());
    QCOMPARE(form.menuFile->title(), QStringLiteral("File"));
    QCOMPARE(form.menuEdit->title(), QStringLiteral("Edit"));
    QCOMPARE(form.menuView->title(), QStringLiteral("View"));
    QCOMPARE(form.menuHelp->title(), QStringLiteral("Help"));
    QCOMPARE(form.menuTools->title(), QStringLiteral("Tools"));
    QCOMPARE(form.Overviewer->windowTitle(), QStringLiteral("Overviewer"));
    QCOMPARE(form.F1_button->text(), QStringLiteral("Important events"));
}

void tst_MainWindowForm::translatesEveryTextButTheLogoTitle()
{
    const auto altered = &PrefixTranslator::altered;
    PrefixTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const auto removeTranslator =
        qScopeGuard([&translator] { QCoreApplication::removeTranslator(&translator); });
    form.retranslateUi(window.get());

    QStringList expected = {
        QStringLiteral("MainWindow"), QStringLiteral("Tab +"),      QStringLiteral("File"),
        QStringLiteral("Edit"),       QStringLiteral("View"),       QStringLiteral("Help"),
        QStringLiteral("Tools"),      QStringLiteral("Overviewer"), QStringLiteral("Important events"),
    };
    for (const ActionRow &row : actionRows) {
        for (const char *text : {row.text, row.shortcut, row.toolTip}) {
            if (*text)
                expected.append(QString::fromLatin1(text));
        }
    }
    expected.sort();
    QCOMPARE(translator.sortedTexts(), expected);

    for (const ActionRow &row : actionRows) {
        const auto *action = window->findChild<QAction *>(QString::fromLatin1(row.name));
        QCOMPARE(action->text(), altered(QString::fromLatin1(row.text)));
        if (*row.shortcut)
            QCOMPARE(action->shortcut(), QKeySequence(altered(QString::fromLatin1(row.shortcut))));
        if (*row.toolTip)
            QCOMPARE(action->toolTip(), altered(QString::fromLatin1(row.toolTip)));
    }
    QCOMPARE(window->windowTitle(), altered(QStringLiteral("MainWindow")));
    QCOMPARE(form.AddNodeGraph_tool_button->text(), altered(QStringLiteral("Tab +")));
    QCOMPARE(form.Add_NodeButton->text(), QString());
    QCOMPARE(form.menuFile->title(), altered(QStringLiteral("File")));
    QCOMPARE(form.menuEdit->title(), altered(QStringLiteral("Edit")));
    QCOMPARE(form.menuView->title(), altered(QStringLiteral("View")));
    QCOMPARE(form.menuHelp->title(), altered(QStringLiteral("Help")));
    QCOMPARE(form.menuTools->title(), altered(QStringLiteral("Tools")));
    QCOMPARE(form.Overviewer->windowTitle(), altered(QStringLiteral("Overviewer")));
    QCOMPARE(form.F1_button->text(), altered(QStringLiteral("Important events")));
    QCOMPARE(form.menuLogo->title(), QStringLiteral("Logo"));

    // A form that is built with the translator in place is translated from the start.
    QMainWindow translated;
    Ui::MainWindow translatedForm;
    translatedForm.setupUi(&translated);
    QCOMPARE(translatedForm.actionNew->text(), altered(QStringLiteral("New")));
    QCOMPARE(translatedForm.menuLogo->title(), QStringLiteral("Logo"));
}

void tst_MainWindowForm::connectsSlotsByName()
{
    NamedSlotWindow named;
    Ui::MainWindow namedForm;
    namedForm.setupUi(&named);
    namedForm.actionNew->trigger();
    QCOMPARE(named.calls, 1);
}

QTEST_MAIN(tst_MainWindowForm)

#include "tst_mainwindowform.moc"
