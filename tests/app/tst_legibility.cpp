#include "app/applicationpalette.h"
#include "app/contrast.h"
#include "app/windowsupport.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QComboBox>
#include <QDockWidget>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStyle>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>
#include <QTreeView>

// Every text that the program shows, measured from what is painted.

namespace {

QString told(const Painted &colours)
{
    return QStringLiteral("%1 on %2: %3")
        .arg(colours.text.name(), colours.background.name())
        .arg(contrast(colours.text, colours.background), 0, 'f', 2);
}

/// As failOnWarnings(), except for what the offscreen platform says of itself when menus and tool tips come
/// up.
void failOnWarningsButThePlatforms()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support )")));
}

bool isReadable(const Painted &colours) { return contrast(colours.text, colours.background) >= readable; }

/// The part of a widget, without the pixels of its frame.
Painted paintedIn(QWidget *widget, const QRect &part, int frame = 3)
{
    return painted(widget->grab(part.adjusted(frame, frame, -frame, -frame)).toImage());
}

enum class EntryState { normal, selected, disabled };

} // namespace

Q_DECLARE_METATYPE(EntryState)

class tst_Legibility : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        dressApplication();
    }
    void init()
    {
        failOnWarningsButThePlatforms();
        window = std::make_unique<MainWindow>();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    void cleanup()
    {
        QToolTip::hideText();
        window.reset();
        flushDeferredDeletes();
    }

    void tabTitle_data();
    void tabTitle();
    void menuTitle();
    void menuEntry_data();
    void menuEntry();
    void entryUnderThePointerStandsOut();
    void button_data();
    void button();
    void dockTitle();
    void question();
    void fileDialog_data();
    void fileDialog();
    void toolTip_data();
    void toolTip();
    void eventTexts_data();
    void eventTexts();
    void selectedEventTexts();
    void panelEntry();
    void outlineOfAnImportantEntry();

private:
    QRect titleRect(int tab) const;
    Painted paintedText(const QGraphicsItem *item) const;

    PrivateHome home;
    std::unique_ptr<MainWindow> window;
};

/// The tab's title without its close button.
QRect tst_Legibility::titleRect(int tab) const
{
    const QTabBar *bar = tabsOf(*window)->tabBar();
    QRect title = bar->tabRect(tab).adjusted(4, 4, -4, -4);
    if (const QWidget *close = bar->tabButton(tab, QTabBar::RightSide))
        title.setRight(close->x() - 1);
    return title;
}

void tst_Legibility::tabTitle_data()
{
    QTest::addColumn<int>("tab");
    QTest::newRow("current") << 0;
    QTest::newRow("other") << 1;
}

void tst_Legibility::tabTitle()
{
    QFETCH(const int, tab);
    window->addNodeGraphTab();
    const Painted colours = paintedIn(tabsOf(*window)->tabBar(), titleRect(tab), 0);
    QVERIFY2(isReadable(colours), qPrintable(told(colours)));
}

void tst_Legibility::menuTitle()
{
    QMenuBar *bar = window->menuBar();
    for (const char *name : {"menuFile", "menuEdit", "menuView", "menuTools", "menuHelp"}) {
        QAction *title = window->findChild<QMenu *>(QString::fromLatin1(name))->menuAction();
        const Painted colours = paintedIn(bar, bar->actionGeometry(title));
        QVERIFY2(isReadable(colours), qPrintable(told(colours)));
        title->menu()->popup(bar->mapToGlobal(bar->actionGeometry(title).bottomLeft()));
        bar->setActiveAction(title);
        const Painted open = paintedIn(bar, bar->actionGeometry(title));
        QVERIFY2(isReadable(open), qPrintable(told(open)));
        title->menu()->close();
        bar->setActiveAction(nullptr);
    }
}

void tst_Legibility::menuEntry_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<EntryState>("state");
    for (const char *name : {"menuFile", "menuEdit", "menuView", "menuTools", "menuHelp"}) {
        QTest::addRow("%s, normal", name) << QString::fromLatin1(name) << EntryState::normal;
        QTest::addRow("%s, selected", name) << QString::fromLatin1(name) << EntryState::selected;
        QTest::addRow("%s, disabled", name) << QString::fromLatin1(name) << EntryState::disabled;
    }
}

void tst_Legibility::menuEntry()
{
    QFETCH(const QString, menu);
    QFETCH(const EntryState, state);
    auto *shown = window->findChild<QMenu *>(menu);
    for (QAction *action : shown->actions()) {
        if (action->isSeparator())
            continue;
        action->setEnabled(state != EntryState::disabled);
        shown->popup(window->mapToGlobal(QPoint(100, 100)));
        shown->setActiveAction(state == EntryState::selected ? action : nullptr);
        const Painted colours = paintedIn(shown, shown->actionGeometry(action), 4);
        QVERIFY2(isReadable(colours), qPrintable(action->text() + u' ' + told(colours)));
    }
    shown->close();
}

void tst_Legibility::entryUnderThePointerStandsOut()
{
    auto *menu = window->findChild<QMenu *>(QStringLiteral("menuEdit"));
    menu->popup(window->mapToGlobal(QPoint(100, 100)));
    QAction *action = menu->actions().at(2);
    const QRect place = menu->actionGeometry(action);
    const auto edge = [menu, place] {
        return QColor(menu->grab(place).toImage().pixel(place.width() / 2, 0));
    };
    menu->setActiveAction(nullptr);
    const QColor before = edge();
    menu->setActiveAction(action);
    const QColor during = edge();
    QVERIFY2(contrast(before, during) >= discernible, qPrintable(before.name() + during.name()));
    // All along the entry, and not around its neighbours.
    const QImage picture = menu->grab(place).toImage();
    for (int x = 2; x < picture.width() - 2; ++x)
        QCOMPARE(QColor(picture.pixel(x, 0)), during);
    const QRect next = menu->actionGeometry(menu->actions().at(4));
    QCOMPARE(QColor(menu->grab(next).toImage().pixel(next.width() / 2, 0)), before);
    menu->close();
}

void tst_Legibility::button_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("down");
    QTest::newRow("tab button") << QStringLiteral("AddNodeGraph_tool_button") << false;
    QTest::newRow("tab button, down") << QStringLiteral("AddNodeGraph_tool_button") << true;
    QTest::newRow("filter") << QStringLiteral("F1_button") << false;
    QTest::newRow("filter, down") << QStringLiteral("F1_button") << true;
}

void tst_Legibility::button()
{
    QFETCH(const QString, name);
    QFETCH(const bool, down);
    auto *shown = window->findChild<QAbstractButton *>(name);
    shown->setChecked(down);
    const Painted colours = paintedIn(shown, shown->rect());
    QVERIFY2(isReadable(colours), qPrintable(told(colours)));
}

void tst_Legibility::dockTitle()
{
    auto *dock = window->findChild<QDockWidget *>();
    const Painted colours = paintedIn(dock, QRect(0, 0, 120, dock->widget()->y()));
    QVERIFY2(isReadable(colours), qPrintable(told(colours)));
}

void tst_Legibility::question()
{
    window->addNodeGraphTab();
    QStringList seen;
    const DialogAnswers answers({[&seen](QDialog *dialog) {
        auto *label = dialog->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
        QList<Painted> all{paintedIn(label, label->rect(), 0)};
        for (QPushButton *button : dialog->findChildren<QPushButton *>())
            all << paintedIn(button, button->rect(), 4);
        for (const Painted &colours : all)
            seen << (isReadable(colours) ? QStringLiteral("readable") : told(colours));
        press(QMessageBox::Cancel)(dialog);
    }});
    window->closeTab(1);
    QCOMPARE(seen, QStringList(4, QStringLiteral("readable")));
}

void tst_Legibility::fileDialog_data()
{
    QTest::addColumn<bool>("opens");
    QTest::newRow("open") << true;
    QTest::newRow("save as") << false;
}

void tst_Legibility::fileDialog()
{
    QFETCH(const bool, opens);
    const QTemporaryDir folder;
    QVERIFY(writeFile(folder.filePath(QStringLiteral("a story.scene")), "x"));
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("older stories")));
    QDir::setCurrent(folder.path());
    QStringList seen;
    int measured = 0;
    const DialogAnswers answers({[&](QDialog *dialog) {
        auto *files = qobject_cast<QFileDialog *>(dialog);
        files->setDirectory(folder.path());
        files->setViewMode(QFileDialog::Detail);
        auto *list = dialog->findChild<QTreeView *>(QStringLiteral("treeView"));
        QTRY_COMPARE_WITH_TIMEOUT(list->model()->rowCount(list->rootIndex()), 2, 5000);
        const auto look = [&](const QString &what, const Painted &colours) {
            ++measured;
            if (!isReadable(colours))
                seen << what + QStringLiteral(": ") + told(colours);
        };
        for (QLabel *label : dialog->findChildren<QLabel *>()) {
            if (label->isVisible() && !label->text().isEmpty())
                look(label->text(), paintedIn(label, label->rect(), 0));
        }
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (!button->isVisible())
                continue;
            button->setEnabled(true);
            look(button->text(), paintedIn(button, button->rect(), 4));
            button->setEnabled(false);
            look(button->text() + QStringLiteral(" disabled"), paintedIn(button, button->rect(), 4));
        }
        for (QComboBox *box : dialog->findChildren<QComboBox *>()) {
            if (box->isVisible())
                look(box->currentText(), paintedIn(box, box->rect().adjusted(0, 0, -24, 0), 5));
        }
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        name->setText(QStringLiteral("a story.scene"));
        name->deselect();
        look(QStringLiteral("name"), paintedIn(name, name->rect(), 4));
        name->selectAll();
        look(QStringLiteral("selected name"), paintedIn(name, QRect(4, 0, 60, name->height()), 5));
        look(QStringLiteral("header"), paintedIn(list->header(), QRect(0, 0, 60, list->header()->height())));
        for (int row = 0; row < 2; ++row) {
            const QModelIndex index = list->model()->index(row, 0, list->rootIndex());
            list->clearSelection();
            const QRect text = list->visualRect(index).adjusted(22, 0, 0, 0); // without the icon
            look(QStringLiteral("file"), paintedIn(list->viewport(), text, 1));
            list->setCurrentIndex(index);
            look(QStringLiteral("selected file"), paintedIn(list->viewport(), text, 1));
        }
        dialog->reject();
    }});
    if (opens)
        window->sl_loadFile();
    else
        window->sl_saveAsFile();
    QVERIFY2(seen.isEmpty(), qPrintable(seen.join(u'\n')));
    QVERIFY2(measured >= 14, qPrintable(QString::number(measured)));
}

void tst_Legibility::toolTip_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("event button") << QStringLiteral("Add_NodeButton");
    QTest::newRow("tab button") << QStringLiteral("AddNodeGraph_tool_button");
    QTest::newRow("filter") << QStringLiteral("F1_button");
}

void tst_Legibility::toolTip()
{
    QFETCH(const QString, name);
    auto *owner = window->findChild<QWidget *>(name);
    QVERIFY(!owner->toolTip().isEmpty());
    QToolTip::showText(owner->mapToGlobal(QPoint(2, 2)), owner->toolTip(), owner);
    const QWidgetList all = QApplication::topLevelWidgets();
    const auto tip = std::find_if(all.begin(), all.end(), [](const QWidget *widget) {
        return widget->inherits("QTipLabel") && widget->isVisible();
    });
    QVERIFY(tip != all.end());
    const Painted colours = paintedIn(*tip, (*tip)->rect());
    QVERIFY2(isReadable(colours), qPrintable(told(colours)));
}

/// What the canvas shows where the item's text is, at 100 %.
Painted tst_Legibility::paintedText(const QGraphicsItem *item) const
{
    NodegraphView *view = window->views().front();
    view->centerOn(item);
    // The text itself: between its margins there is nothing but ground.
    const QRectF part = item->mapRectToScene(item->boundingRect());
    return painted(
        view->viewport()->grab(view->mapFromScene(part).boundingRect().adjusted(8, 4, -8, -4)).toImage());
}

void tst_Legibility::eventTexts_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"normal", "current", "important", "end of story", "important end", "edited"})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void tst_Legibility::eventTexts()
{
    QFETCH(const QString, state);
    NodegraphScene *scene = sceneOf(*window, 0);
    addEvent(scene, QStringLiteral("The end"), QString()); // an only event would be the end by itself
    scene->sl_deselectCurrentNode();
    Node *node = addEvent(scene, QStringLiteral("A title"), QStringLiteral("What happens then"));
    scene->sl_deselectCurrentNode();
    QVERIFY(!node->isEndOfStory());
    if (state == QLatin1String("current"))
        scene->sl_selectCurrentNode(node);
    if (state.contains(QLatin1String("important")))
        scene->toggleImportance(node);
    if (state.contains(QLatin1String("end")))
        scene->setEndOfStory(node);
    const bool edited = state == QLatin1String("edited");
    if (edited)
        node->nameItem()->setFocus();
    // The colours of titles are the design's own; bold and this large they can be read with less.
    const Painted title = paintedText(node->nameItem());
    QVERIFY2(contrast(title.text, title.background) >= (edited ? 3.3 : 4.2), qPrintable(told(title)));
    if (edited)
        descriptionOf(node)->setFocus();
    const Painted description = paintedText(descriptionOf(node));
    QVERIFY2(isReadable(description), qPrintable(told(description)));
}

void tst_Legibility::selectedEventTexts()
{
    NodegraphScene *scene = sceneOf(*window, 0);
    Node *node = addEvent(scene, QStringLiteral("Title"), QStringLiteral("Words").repeated(4));
    const QColor plain = paintedText(descriptionOf(node)).background;
    for (QGraphicsTextItem *item : {static_cast<QGraphicsTextItem *>(node->nameItem()),
                                    static_cast<QGraphicsTextItem *>(descriptionOf(node))}) {
        item->setFocus();
        QTextCursor cursor(item->document());
        cursor.select(QTextCursor::Document);
        item->setTextCursor(cursor);
        NodegraphView *view = window->views().front();
        view->centerOn(item);
        const QRectF line = cursor.document()->firstBlock().layout()->lineAt(0).naturalTextRect();
        const qreal margin = cursor.document()->documentMargin();
        const QRectF part = item->mapRectToScene(line.translated(margin, margin).adjusted(2, 2, -2, -2));
        const Painted colours =
            painted(view->viewport()->grab(view->mapFromScene(part).boundingRect()).toImage());
        QVERIFY2(isReadable(colours), qPrintable(told(colours)));
        QVERIFY2(contrast(colours.background, plain) >= discernible, qPrintable(colours.background.name()));
    }
}

void tst_Legibility::panelEntry()
{
    NodegraphScene *scene = sceneOf(*window, 0);
    scene->setEndOfStory(addEvent(scene, QStringLiteral("A title"), QStringLiteral("What happens then")));
    OvNode *entry = window->overviewerScene()->ovNodes().at(0);
    QGraphicsView *panel = window->overviewerScene()->views().at(0);
    const QRectF part = descriptionOf(entry)->sceneBoundingRect().adjusted(14, 14, -14, -14);
    const Painted colours =
        painted(panel->viewport()->grab(panel->mapFromScene(part).boundingRect()).toImage());
    QVERIFY2(isReadable(colours), qPrintable(told(colours)));
}

void tst_Legibility::outlineOfAnImportantEntry()
{
    NodegraphScene *scene = sceneOf(*window, 0);
    Node *node = addEvent(scene, QStringLiteral("A title"), QStringLiteral("What happens then"));
    scene->setEndOfStory(node);
    QGraphicsView *panel = window->overviewerScene()->views().at(0);
    const auto edge = [this, panel] {
        const OvNode *entry = window->overviewerScene()->ovNodes().at(0);
        const QRectF top(entry->sceneBoundingRect().center().x(), entry->sceneBoundingRect().top() - 4, 1, 8);
        return painted(panel->viewport()->grab(panel->mapFromScene(top).boundingRect()).toImage());
    };
    const Painted without = edge();
    QVERIFY2(contrast(without.text, without.background) < 1.5, qPrintable(told(without)));
    scene->toggleImportance(node);
    const Painted with = edge();
    QVERIFY2(contrast(with.text, with.background) >= discernible, qPrintable(told(with)));
}

QTEST_MAIN(tst_Legibility)
#include "tst_legibility.moc"
