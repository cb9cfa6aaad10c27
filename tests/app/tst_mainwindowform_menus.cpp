#include "app/mainwindowform.h"

#include <QApplication>
#include <QImage>
#include <QKeySequence>
#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

#include <memory>

namespace {

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

} // namespace

class tst_MainWindowForm_Menus : public FormTest
{
    Q_OBJECT

private slots:
    void menuBar();
    void menuStyleSheets_data();
    void menuStyleSheets();
    void menuContents_data();
    void menuContents();
    void logoMenu();
    void logoMenuHasItsOwnFontSize();
    void logoMenuShowsItsIcon();
    void actions_data();
    void actions();
    void shortcutsPageIsOutOfReach();
    void setsUntranslatedTexts();
    void translatesEveryTextButTheLogoTitle();
    void connectsSlotsByName();
};

void tst_MainWindowForm_Menus::menuBar()
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

void tst_MainWindowForm_Menus::menuStyleSheets_data()
{
    QTest::addColumn<QString>("styleSheet");
    for (const char *name : {"menuFile", "menuEdit", "menuView", "menuHelp"})
        QTest::newRow(name) << QStringLiteral("selection-background-color: rgb(68,68,68);");
    for (const char *name : {"menuTools", "menuLogo"})
        QTest::newRow(name) << QString();
}

void tst_MainWindowForm_Menus::menuStyleSheets()
{
    QFETCH(const QString, styleSheet);
    QCOMPARE(window->findChild<QMenu *>(QString::fromLatin1(QTest::currentDataTag()))->styleSheet(),
             styleSheet);
}

void tst_MainWindowForm_Menus::menuContents_data()
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

void tst_MainWindowForm_Menus::menuContents()
{
    QFETCH(const QString, entries);
    const auto *menu = window->findChild<QMenu *>(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(actionNames(menu).join(QLatin1Char(' ')), entries);
}

void tst_MainWindowForm_Menus::logoMenu()
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

void tst_MainWindowForm_Menus::logoMenuHasItsOwnFontSize()
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

void tst_MainWindowForm_Menus::logoMenuShowsItsIcon()
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

void tst_MainWindowForm_Menus::actions_data()
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

void tst_MainWindowForm_Menus::actions()
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

void tst_MainWindowForm_Menus::shortcutsPageIsOutOfReach()
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

void tst_MainWindowForm_Menus::setsUntranslatedTexts()
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

void tst_MainWindowForm_Menus::translatesEveryTextButTheLogoTitle()
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

void tst_MainWindowForm_Menus::connectsSlotsByName()
{
    NamedSlotWindow named;
    Ui::MainWindow namedForm;
    namedForm.setupUi(&named);
    namedForm.actionNew->trigger();
    QCOMPARE(named.calls, 1);
}

QTEST_MAIN(tst_MainWindowForm_Menus)
#include "tst_mainwindowform_menus.moc"
