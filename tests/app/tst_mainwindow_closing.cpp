#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QDir>
#include <QSignalSpy>

namespace {

const QString titleOfQuestions = QStringLiteral("Save Changes");
const QString tabQuestion =
    QStringLiteral("This tab has unsaved changes. Do you want to save them before closing?");
const QString windowQuestion =
    QStringLiteral("The file has unsaved changes. Do you want to save them before closing?");

void compareQuestion(const SeenDialog &dialog, const MainWindow &window, const QString &text)
{
    QCOMPARE(dialog.parent, &window);
    QCOMPARE(dialog.title, titleOfQuestions);
    QCOMPARE(dialog.text, text);
    QCOMPARE(dialog.icon, QMessageBox::Question);
    QCOMPARE(dialog.buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    QVERIFY(!dialog.hasDefaultButton);
}

/// The ways to take a question back.
enum class Refusal { Button, Escape, CloseBox };

DialogAnswers::Answer answerFor(Refusal refusal)
{
    switch (refusal) {
    case Refusal::Escape:
        return pressEscape();
    case Refusal::CloseBox:
        return closeDialog();
    case Refusal::Button:
        break;
    }
    return press(QMessageBox::Cancel);
}

void addRefusals()
{
    QTest::addColumn<int>("refusal");
    QTest::newRow("Cancel") << int(Refusal::Button);
    QTest::newRow("Escape") << int(Refusal::Escape);
    QTest::newRow("close box") << int(Refusal::CloseBox);
}

/// The close button in the tab bar.
QAbstractButton *closeButton(const MainWindow &window, int index)
{
    const QTabBar *bar = tabsOf(window)->tabBar();
    for (const QTabBar::ButtonPosition side : {QTabBar::RightSide, QTabBar::LeftSide}) {
        if (auto *button = qobject_cast<QAbstractButton *>(bar->tabButton(index, side)))
            return button;
    }
    return nullptr;
}

} // namespace

class tst_MainWindowClosing : public WindowTest
{
    Q_OBJECT

private slots:
    void lastTabStaysAndNothingIsAsked();
    void tabQuestion();
    void refusedTabStays_data() { addRefusals(); }
    void refusedTabStays();
    void tabGoesUnsaved();
    void tabGoesAfterSaving();
    void tabOfASavedDocumentGoesAfterSaving();
    void tabGoesWhenTheSaveIsCancelled();
    void tabGoesWhenTheSaveFails();
    void closeButtonOfATabCloses();
    void currentTabsStoryIsShownAfterClosing_data();
    void currentTabsStoryIsShownAfterClosing();
    void closedTabIsDestroyedLater();
    void draggedTabThatIsClosedIsTheOneThatGoes();
    void allButOneTabCanBeClosed();

    void windowQuestion();
    void refusedWindowStays_data() { addRefusals(); }
    void refusedWindowStays();
    void windowClosesUnsaved();
    void windowClosesAfterSaving();
    void windowOfASavedDocumentClosesAfterSaving();
    void windowClosesWhenTheSaveIsCancelled();
    void windowClosesWhenTheSaveFails();
    void windowWithoutTabsAsksToo();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(folder()));
        file = folder() + QStringLiteral("/story.scene");
        makeWindow();
        for (const char *description : {"first", "second", "third"}) {
            if (QLatin1String(description) != QLatin1String("first"))
                window->addNodeGraphTab();
            addEvent(window->views().back()->nodegraphScene(), QLatin1String(description),
                     QLatin1String(description));
        }
        sceneOf(*window, 0)->updateStory();
    }
    QString folder() const { return path(QStringLiteral("stories")); }
    static QByteArray document(const QStringList &descriptions)
    {
        std::vector<std::vector<Record>> tabs;
        for (const QString &description : descriptions) {
            Record event{description, QPointF(5, 6)};
            event.endOfStory = true;
            event.description = description;
            tabs.push_back({event});
        }
        return documentBytes(tabs);
    }
    QByteArray allTabs() const
    {
        for (const NodegraphView *view : window->views())
            view->nodegraphScene()->nodes().front()->setPos(5, 6);
        return document({QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")});
    }

    QString file;
};

void tst_MainWindowClosing::lastTabStaysAndNothingIsAsked()
{
    window->clearTabs();
    window->addNodeGraphTab();
    const std::vector<NodegraphView *> views = window->views();
    const DialogAnswers nothing;
    const LogCapture log;
    window->closeTab(0);
    QMetaObject::invokeMethod(tabsOf(*window), "tabCloseRequested", Q_ARG(int, 0));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(tabsOf(*window)->count(), 1);
    QVERIFY(window->views() == views);
}

void tst_MainWindowClosing::tabQuestion()
{
    const DialogAnswers answers({press(QMessageBox::No)});
    window->closeTab(1);
    QCOMPARE(answers.problem(), QString());
    compareQuestion(answers.seen().front(), *window, ::tabQuestion);
}

void tst_MainWindowClosing::refusedTabStays()
{
    QFETCH(const int, refusal);
    QCOMPARE(saveAs(*window, file), QString());
    const QByteArray before = readFile(file);
    addEvent(sceneOf(*window, 1), QStringLiteral("unsaved"));
    const std::vector<NodegraphView *> views = window->views();
    const QStringList titles = tabTitles(*window);
    const DialogAnswers answers({answerFor(Refusal(refusal))});
    window->closeTab(1);

    QCOMPARE(tabTitles(*window), titles);
    QVERIFY(window->views() == views);
    QCOMPARE(readFile(file).toHex(), before.toHex());
}

void tst_MainWindowClosing::tabGoesUnsaved()
{
    NodegraphView *first = window->views()[0];
    NodegraphView *third = window->views()[2];
    const LogCapture log;
    const DialogAnswers answers({press(QMessageBox::No)});
    window->closeTab(1);

    QCOMPARE(tabTitles(*window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 3")}));
    QVERIFY(window->views() == std::vector<NodegraphView *>({first, third}));
    QCOMPARE(window->currentFilePath(), QString());
    QVERIFY(!log.contains(QStringLiteral("Tabs to save 3")));
}

void tst_MainWindowClosing::tabGoesAfterSaving()
{
    const QByteArray whole = allTabs();
    const DialogAnswers answers({press(QMessageBox::Yes), chooseFile(file)});
    window->closeTab(1);

    QCOMPARE(answers.problem(), QString());
    QCOMPARE(answers.seen()[1].title, QStringLiteral("Save Scene"));
    QCOMPARE(readFile(file).toHex(), whole.toHex());
    QCOMPARE(window->currentFilePath(), file);
    QCOMPARE(tabTitles(*window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 3")}));
}

void tst_MainWindowClosing::tabOfASavedDocumentGoesAfterSaving()
{
    QCOMPARE(saveAs(*window, file), QString());
    const QByteArray whole = allTabs();
    const DialogAnswers answers({press(QMessageBox::Yes)});
    window->closeTab(0);
    QCOMPARE(answers.problem(), QString());
    QCOMPARE(readFile(file).toHex(), whole.toHex());
    QCOMPARE(window->views().size(), std::size_t(2));

    QCOMPARE(saveAgain(*window), QString());
    QCOMPARE(readFile(file).toHex(), document({QStringLiteral("second"), QStringLiteral("third")}).toHex());
}

void tst_MainWindowClosing::tabGoesWhenTheSaveIsCancelled()
{
    const DialogAnswers answers({press(QMessageBox::Yes), pressEscape()});
    window->closeTab(2);
    QCOMPARE(tabTitles(*window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 2")}));
    QCOMPARE(window->views().size(), std::size_t(2));
    QCOMPARE(window->currentFilePath(), QString());
    QVERIFY(QDir(folder()).isEmpty());
}

void tst_MainWindowClosing::tabGoesWhenTheSaveFails()
{
    const QString missing = path(QStringLiteral("missing/story.scene"));
    const DialogAnswers answers({press(QMessageBox::Yes), chooseFile(missing)});
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    window->closeTab(2);
    QCOMPARE(tabTitles(*window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 2")}));
    QCOMPARE(window->currentFilePath(), missing);
}

void tst_MainWindowClosing::closeButtonOfATabCloses()
{
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    const QPointer<QAbstractButton> button(closeButton(*window, 1));
    QVERIFY(button);
    const QPointer<NodegraphView> view(window->views()[1]);
    const DialogAnswers answers({press(QMessageBox::No)});
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(tabTitles(*window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 3")}));
    QTRY_VERIFY(!view);
}

void tst_MainWindowClosing::currentTabsStoryIsShownAfterClosing_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("closed");
    QTest::addColumn<int>("toldLast");
    QTest::addColumn<QString>("shown");
    QTest::newRow("the current one") << 0 << 0 << 0 << QStringLiteral("second");
    QTest::newRow("the current one at the end") << 2 << 2 << 2 << QStringLiteral("second");
    QTest::newRow("another one") << 0 << 1 << 0 << QStringLiteral("first");
    QTest::newRow("the one that is shown") << 0 << 2 << 2 << QStringLiteral("first");
}

void tst_MainWindowClosing::currentTabsStoryIsShownAfterClosing()
{
    QFETCH(const int, current);
    QFETCH(const int, closed);
    QFETCH(const int, toldLast);
    QFETCH(const QString, shown);
    tabsOf(*window)->setCurrentIndex(current);
    sceneOf(*window, toldLast)->updateStory();

    const DialogAnswers answers({press(QMessageBox::No)});
    window->closeTab(closed);
    QCOMPARE(panelTexts(*window), QStringList{shown});
    flushDeferredDeletes();
    QCOMPARE(panelTexts(*window), QStringList{shown});
}

void tst_MainWindowClosing::closedTabIsDestroyedLater()
{
    const QPointer<NodegraphView> view(window->views()[1]);
    const QPointer<NodegraphScene> scene(sceneOf(*window, 1));
    const QPointer<Node> node(scene->nodes().front());
    QSignalSpy viewGone(view, &QObject::destroyed);
    QSignalSpy sceneGone(scene, &QObject::destroyed);
    const DialogAnswers answers({press(QMessageBox::No)});
    window->closeTab(1);
    QVERIFY(view);
    QVERIFY(scene);

    flushDeferredDeletes();
    QCOMPARE(viewGone.count(), 1);
    QCOMPARE(sceneGone.count(), 1);
    QVERIFY(!node);
}

// The tab bar's numbers and the order of creation part company once a tab was dragged.
void tst_MainWindowClosing::draggedTabThatIsClosedIsTheOneThatGoes()
{
    const QByteArray whole = allTabs();
    NodegraphView *first = window->views()[0];
    const QPointer<NodegraphView> second(window->views()[1]);
    NodegraphView *third = window->views()[2];
    tabsOf(*window)->tabBar()->moveTab(0, 2);
    QCOMPARE(tabTitles(*window),
             QStringList({QStringLiteral("Story 2"), QStringLiteral("Story 3"), QStringLiteral("Story 1")}));

    const DialogAnswers answers({press(QMessageBox::Yes), chooseFile(file)});
    window->closeTab(0);
    QCOMPARE(answers.problem(), QString());
    QCOMPARE(readFile(file).toHex(), whole.toHex());
    QCOMPARE(tabTitles(*window), QStringList({QStringLiteral("Story 3"), QStringLiteral("Story 1")}));
    QVERIFY(window->views() == std::vector<NodegraphView *>({first, third}));
    flushDeferredDeletes();
    QVERIFY(!second);

    QCOMPARE(saveAgain(*window), QString());
    QCOMPARE(readFile(file).toHex(), document({QStringLiteral("first"), QStringLiteral("third")}).toHex());
}

void tst_MainWindowClosing::allButOneTabCanBeClosed()
{
    const DialogAnswers answers({press(QMessageBox::No), press(QMessageBox::No)});
    for (int i = 0; i < 3; ++i)
        window->closeTab(0);
    QCOMPARE(tabTitles(*window), QStringList{QStringLiteral("Story 3")});
    QCOMPARE(panelTexts(*window), QStringList{QStringLiteral("third")});
}

void tst_MainWindowClosing::windowQuestion()
{
    window->show();
    const DialogAnswers answers({press(QMessageBox::No)});
    window->close();
    QCOMPARE(answers.problem(), QString());
    compareQuestion(answers.seen().front(), *window, ::windowQuestion);
}

void tst_MainWindowClosing::refusedWindowStays()
{
    QFETCH(const int, refusal);
    window->show();
    const DialogAnswers answers({answerFor(Refusal(refusal))});
    QVERIFY(!window->close());
    QVERIFY(window->isVisible());
    QCOMPARE(tabsOf(*window)->count(), 3);
    QVERIFY(QDir(folder()).isEmpty());
}

void tst_MainWindowClosing::windowClosesUnsaved()
{
    window->show();
    const DialogAnswers answers({press(QMessageBox::No)});
    QVERIFY(window->close());
    QVERIFY(!window->isVisible());
    QCOMPARE(window->currentFilePath(), QString());
}

void tst_MainWindowClosing::windowClosesAfterSaving()
{
    window->show();
    const QByteArray whole = allTabs();
    const DialogAnswers answers({press(QMessageBox::Yes), chooseFile(file)});
    QVERIFY(window->close());
    QVERIFY(!window->isVisible());
    QCOMPARE(readFile(file).toHex(), whole.toHex());
}

void tst_MainWindowClosing::windowOfASavedDocumentClosesAfterSaving()
{
    window->show();
    QCOMPARE(saveAs(*window, file), QString());
    const QByteArray whole = allTabs();
    const DialogAnswers answers({press(QMessageBox::Yes)});
    QVERIFY(window->close());
    QCOMPARE(readFile(file).toHex(), whole.toHex());
}

void tst_MainWindowClosing::windowClosesWhenTheSaveIsCancelled()
{
    window->show();
    const DialogAnswers answers({press(QMessageBox::Yes), pressEscape()});
    QVERIFY(window->close());
    QVERIFY(!window->isVisible());
    QVERIFY(QDir(folder()).isEmpty());
}

void tst_MainWindowClosing::windowClosesWhenTheSaveFails()
{
    window->show();
    const DialogAnswers answers(
        {press(QMessageBox::Yes), chooseFile(path(QStringLiteral("missing/story.scene")))});
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    QVERIFY(window->close());
    QVERIFY(!window->isVisible());
}

void tst_MainWindowClosing::windowWithoutTabsAsksToo()
{
    window->show();
    window->clearTabs();
    const DialogAnswers answers({press(QMessageBox::Yes), chooseFile(file)});
    QVERIFY(window->close());
    QCOMPARE(readFile(file).toHex(), QByteArray("00000000"));
}

QTEST_MAIN(tst_MainWindowClosing)
#include "tst_mainwindow_closing.moc"
