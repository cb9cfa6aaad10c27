#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QAbstractButton>
#include <QPointer>
#include <QTabBar>

// Documents of more tabs than anybody makes by hand.

class tst_MainWindowManyTabs : public WindowTest
{
    Q_OBJECT

private slots:
    void emptyTabsBehindAnEventAreKept_data() { addCounts(); }
    void emptyTabsBehindAnEventAreKept();
    void openedTabsAreShownAsFewAre_data() { addCounts(); }
    void openedTabsAreShownAsFewAre();
    void newLeavesNoneOfThem_data() { addCounts(); }
    void newLeavesNoneOfThem();
    void eachTabInFrontHasItsCloseButton_data() { addCounts(); }
    void eachTabInFrontHasItsCloseButton();
    void closeButtonsKeptBackGoWithTheirTabs();

private:
    void prepare() override { showWindow(); }
    static void addCounts()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("just many") << 101;
        QTest::newRow("more") << 150;
        QTest::newRow("many more") << 400;
    }
    /// Opens that many tabs, of which the first one has an event; their bytes.
    QByteArray open(int count)
    {
        std::vector<std::vector<Record>> tabs(static_cast<std::size_t>(count));
        tabs.front().push_back({QStringLiteral("Dawn"), QPointF(1, 2), 0, -1, true});
        const QByteArray bytes = documentBytes(tabs);
        writeFile(file(), bytes);
        window->loadFrom(file());
        return bytes;
    }
    QString file() const { return folder.filePath(QStringLiteral("many.scene")); }

    QTemporaryDir folder;
};

// Those beyond the hundredth were called damage and left out when no event stood in them, and saving lost
// them.
void tst_MainWindowManyTabs::emptyTabsBehindAnEventAreKept()
{
    QFETCH(const int, count);
    const QByteArray bytes = open(count); // a warning would fail the test
    QCOMPARE(tabsOf(*window)->count(), count);
    QCOMPARE(window->views().size(), std::size_t(count));
    QCOMPARE(titlesOf(sceneOf(*window, 0)), QStringList{QStringLiteral("Dawn")});
    QVERIFY(QFile::remove(file()));
    window->sl_saveFile();
    QCOMPARE(readFile(file()).toHex(), bytes.toHex());
}

void tst_MainWindowManyTabs::openedTabsAreShownAsFewAre()
{
    QFETCH(const int, count);
    open(count);
    const QTabWidget *tabs = tabsOf(*window);
    QVERIFY(tabs->isVisible());
    for (int i = 0; i < count; ++i)
        QVERIFY(tabs->isTabVisible(i));
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(tabTitles(*window).back(), QStringLiteral("Story %1").arg(count));
    QCOMPARE(QApplication::focusWidget(), window->views().front());
    QCOMPARE(panelTexts(*window).size(), 1);
}

void tst_MainWindowManyTabs::newLeavesNoneOfThem()
{
    QFETCH(const int, count);
    open(count);
    tabsOf(*window)->setCurrentIndex(count - 1);
    window->clearTabs();
    QCOMPARE(tabsOf(*window)->count(), 0);
    QVERIFY(tabsOf(*window)->isVisible());
    window->addNodeGraphTab();
    QCOMPARE(tabTitles(*window), QStringList{QStringLiteral("Story 1")});
    QVERIFY(tabsOf(*window)->isTabVisible(0));
    QVERIFY(tabsOf(*window)->tabsClosable());
    QCOMPARE(QApplication::focusWidget(), window->views().front());
}

void tst_MainWindowManyTabs::eachTabInFrontHasItsCloseButton()
{
    QFETCH(const int, count);
    open(count);
    QTabWidget *tabs = tabsOf(*window);
    QVERIFY(tabs->tabsClosable());
    for (const int place : {0, count / 2, count - 1, count / 2}) {
        tabs->setCurrentIndex(place);
        auto *button = qobject_cast<QAbstractButton *>(tabs->tabBar()->tabButton(place, QTabBar::RightSide));
        QVERIFY(button && button->isVisible());
        QVERIFY(tabs->tabBar()->tabRect(place).contains(button->geometry()));
        const DialogAnswers answers({press(QMessageBox::Cancel)});
        button->click();
        QCOMPARE(tabs->count(), count);
    }
    const QWidget *page = tabs->currentWidget();
    const DialogAnswers answers({press(QMessageBox::No)});
    qobject_cast<QAbstractButton *>(tabs->tabBar()->tabButton(count / 2, QTabBar::RightSide))->click();
    QCOMPARE(tabs->count(), count - 1);
    QCOMPARE(tabs->indexOf(page), -1);
    // The one that is in front now, and one that comes by itself, have theirs as well.
    QVERIFY(tabs->tabBar()->tabButton(tabs->currentIndex(), QTabBar::RightSide));
    window->addNodeGraphTab();
    QVERIFY(tabs->tabsClosable());
    QVERIFY(tabs->tabBar()->tabButton(count - 1, QTabBar::RightSide));
}

void tst_MainWindowManyTabs::closeButtonsKeptBackGoWithTheirTabs()
{
    open(400);
    const QPointer<QAbstractButton> button =
        window->views().back()->findChild<QAbstractButton *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(button && !button->isVisible());
    window->clearTabs();
    flushDeferredDeletes();
    QVERIFY(!button);
}

QTEST_MAIN(tst_MainWindowManyTabs)
#include "tst_mainwindow_manytabs.moc"
