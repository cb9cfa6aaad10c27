#include "app/contrast.h"
#include "app/notices.h"
#include "app/noticestrip.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <QAccessible>
#include <QDir>
#include <QLabel>
#include <QToolButton>

/// What the user is told without having asked: at the lower edge of the canvas, one thing at a time.
class tst_MainWindowNotices : public WindowTest
{
    Q_OBJECT

private slots:
    void nothingIsThereAtTheStart();
    void saveIsTold_data();
    void saveIsTold();
    void newsGoByThemselves();
    void failedSaveStaysUntilASaveSucceeds();
    void failedAutosaveStaysUntilOneSucceeds();
    void autosaveThatWorksIsNotTold();
    void fileThatCannotBeOpenedIsTold();
    void damagedFileIsTold_data();
    void damagedFileIsTold();
    void keptCopyIsTold_data();
    void keptCopyIsTold();
    void copyThatCannotBeKeptIsTold();
    void copyKeptOfADamagedFilesSakeSettles();
    void damageAndKeptCopyAreOneNotice();
    void failedSaveAndKeptCopyAreOneNotice();
    void closedFailureGoesAndTheOneBeforeIsSeen();
    void failureIsSeenAgainAfterGoodNews();
    void stripTakesNothingFromTheCanvas();
    void mouseReachesTheCanvasThroughTheStrip();
    void laterSuccessSettles_data();
    void laterSuccessSettles();
    void stripFollowsTheWindow();
    void stripLeavesTheKeyboard();
    void stripIsReadOut();
    void stripIsLegible_data();
    void stripIsLegible();
    void longPathsFitTheWindow();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(path(QStringLiteral("folder.scene"))));
        showWindow();
    }
    NoticeStrip *strip() const
    {
        // Those that wait for their end are hidden.
        for (auto *each : window->findChildren<NoticeStrip *>()) {
            if (each->isVisible())
                return each;
        }
        return nullptr;
    }
    /// As it stands on the screen, without the places where a line may end; empty if there is none.
    QString notice() const
    {
        return strip() ? strip()->findChild<QLabel *>()->text().remove(QChar(0x200B)) : QString();
    }
    void closeNotice() const { QTest::mouseClick(strip()->closeButton(), Qt::LeftButton); }
    void failToSave() const
    {
        const Warnings ofTheFailure;
        window->saveTo(path(QStringLiteral("missing/story.scene")));
    }
    void failToAutosave() const
    {
        const Warnings ofTheFailure;
        QVERIFY(writeFile(path(QStringLiteral("Documents")), "no folder"));
        window->autosave();
        QVERIFY(QFile::remove(path(QStringLiteral("Documents"))));
    }
};

void tst_MainWindowNotices::nothingIsThereAtTheStart()
{
    QCOMPARE(window->findChildren<NoticeStrip *>().size(), 0);
}

void tst_MainWindowNotices::saveIsTold_data()
{
    QTest::addColumn<int>("tabs");
    QTest::addColumn<int>("events");
    QTest::addColumn<QString>("text");
    QTest::newRow("many") << 2 << 25 << QStringLiteral("Saved the-lighthouse.scene (2 tabs, 25 events)");
    QTest::newRow("one") << 1 << 1 << QStringLiteral("Saved the-lighthouse.scene (1 tab, 1 event)");
    QTest::newRow("none") << 1 << 0 << QStringLiteral("Saved the-lighthouse.scene (1 tab, 0 events)");
}

void tst_MainWindowNotices::saveIsTold()
{
    QFETCH(const int, tabs);
    QFETCH(const int, events);
    QFETCH(const QString, text);
    for (int i = 1; i < tabs; ++i)
        window->addNodeGraphTab();
    for (int i = 0; i < events; ++i)
        addLoose(*sceneOf(*window, i % tabs), QPointF(i, i));
    QVERIFY(window->saveTo(path(QStringLiteral("the-lighthouse.scene"))));
    QCOMPARE(notice(), text);
}

void tst_MainWindowNotices::newsGoByThemselves()
{
    QCOMPARE(Notices::newsStay, 4000);
    QVERIFY(window->saveTo(path(QStringLiteral("story.scene"))));
    QVERIFY(strip());
    QTRY_VERIFY_WITH_TIMEOUT(!strip(), Notices::newsStay + 5000);
    flushDeferredDeletes();
    QCOMPARE(window->findChildren<NoticeStrip *>().size(), 0);
}

void tst_MainWindowNotices::failedSaveStaysUntilASaveSucceeds()
{
    failToSave();
    QCOMPARE(notice(), QStringLiteral("story.scene in %1 could not be saved: No such file or directory. The "
                                      "work is only in this window.")
                           .arg(path(QStringLiteral("missing"))));
    window->autosave(); // something else that succeeds
    QVERIFY(notice().startsWith(QStringLiteral("story.scene in")));
    QVERIFY(window->saveTo(path(QStringLiteral("other.scene"))));
    QCOMPARE(notice(), QStringLiteral("Saved other.scene (1 tab, 0 events)"));
    closeNotice();
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::failedAutosaveStaysUntilOneSucceeds()
{
    failToAutosave();
    const QRegularExpression expected(
        QStringLiteral("^The autosave copy Yarnsmith_\\d{8}_\\d{6}_autosaveVersion\\.scene in "
                       "%1/Documents/Fablegrid/Autosavedir could not be written: Not a directory\\. The work "
                       "is only in this window\\.$")
            .arg(QRegularExpression::escape(path(QString()))));
    QVERIFY2(expected.match(notice()).hasMatch(), qPrintable(notice()));
    window->autosave();
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::autosaveThatWorksIsNotTold()
{
    window->autosave();
    QCOMPARE(window->findChildren<NoticeStrip *>().size(), 0);
}

void tst_MainWindowNotices::fileThatCannotBeOpenedIsTold()
{
    {
        const Warnings ofTheFailure;
        window->loadFrom(path(QStringLiteral("folder.scene")));
    }
    QCOMPARE(notice(),
             QStringLiteral("folder.scene in %1 could not be opened: it is no file.").arg(path(QString())));
    QVERIFY(writeFile(path(QStringLiteral("sound.scene")), documentBytes({{}})));
    window->loadFrom(path(QStringLiteral("sound.scene")));
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::damagedFileIsTold_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("leftOut"); // none: no notice
    const std::vector<Record> chain = chainOfRecords(3, 10);
    std::vector<Record> circle = chain;
    circle.front().upstream = 2;
    std::vector<Record> astray = chain;
    astray.front().upstream = 77;
    QTest::newRow("sound") << documentBytes({chain, {}}) << QString();
    QTest::newRow("nothing in it") << QByteArray() << QStringLiteral("1 tab");
    QTest::newRow("an event cut") << documentBytes({chain}).chopped(5) << QStringLiteral("1 event");
    QTest::newRow("two events missing")
        << intBytes(1) + intBytes(5) + documentBytes({chain}).mid(8) << QStringLiteral("2 events");
    QTest::newRow("a million events missing")
        << intBytes(1) + intBytes(1000003) + documentBytes({chain}).mid(8)
        << QStringLiteral("1000000 events");
    QTest::newRow("two tabs missing") << intBytes(3) + tabBytes(chain) << QStringLiteral("2 tabs");
    QTest::newRow("a circle") << documentBytes({circle}) << QStringLiteral("1 connection");
    QTest::newRow("a connection with nothing") << documentBytes({astray}) << QStringLiteral("1 connection");
    QTest::newRow("something behind")
        << documentBytes({chain}) + "xyz" << QStringLiteral("what stands at its end");
    QTest::newRow("several") << documentBytes({astray}).chopped(5) << QStringLiteral("1 event, 1 connection");
}

void tst_MainWindowNotices::damagedFileIsTold()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, leftOut);
    QVERIFY(writeFile(path(QStringLiteral("story.scene")), content));
    {
        const Warnings ofTheDamage;
        window->loadFrom(path(QStringLiteral("story.scene")));
    }
    const QString text = QStringLiteral("story.scene is damaged, or no story. Left out or incomplete: %1.");
    QCOMPARE(notice(), leftOut.isEmpty() ? QString() : text.arg(leftOut));
    window->clearTabs();
    QVERIFY(!notice().startsWith(QStringLiteral("story.scene is damaged")));
}

void tst_MainWindowNotices::keptCopyIsTold_data()
{
    QTest::addColumn<bool>("again");
    QTest::newRow("new copy") << false;
    QTest::newRow("the same once more") << true;
}

void tst_MainWindowNotices::keptCopyIsTold()
{
    QFETCH(const bool, again);
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"))->setPos(1, 2);
    window->clearTabs();
    if (again) {
        window->addNodeGraphTab();
        addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"))->setPos(1, 2);
        window->clearTabs();
    }
    const QString folder = path(QStringLiteral("Documents/Fablegrid/Kept"));
    const QStringList files = filesBelow(folder);
    QCOMPARE(files.size(), 1);
    QCOMPARE(notice(), QStringLiteral("What was not saved is kept as %1 in %2").arg(files.front(), folder));
}

void tst_MainWindowNotices::copyThatCannotBeKeptIsTold()
{
    QVERIFY(writeFile(path(QStringLiteral("Documents")), "no folder"));
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    {
        const Warnings ofTheFailure;
        window->clearTabs();
    }
    QCOMPARE(notice(),
             QStringLiteral("What was not saved could not be kept in %1/Fablegrid/Kept: Not a directory.")
                 .arg(path(QStringLiteral("Documents"))));
}

void tst_MainWindowNotices::copyKeptOfADamagedFilesSakeSettles()
{
    QVERIFY(writeFile(path(QStringLiteral("Documents")), "no folder"));
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    {
        const Warnings ofTheFailure;
        window->clearTabs();
    }
    QVERIFY(!notice().isEmpty());
    QVERIFY(QFile::remove(path(QStringLiteral("Documents"))));
    QVERIFY(writeFile(path(QStringLiteral("story.scene")), QByteArray()));
    window->addNodeGraphTab();
    addEvent(sceneOf(*window, 0), QStringLiteral("Dusk"));
    window->loadFrom(path(QStringLiteral("story.scene")));
    closeNotice(); // of the damage, which tells of this copy as well
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::damageAndKeptCopyAreOneNotice()
{
    QVERIFY(writeFile(path(QStringLiteral("story.scene")), QByteArray()));
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    window->loadFrom(path(QStringLiteral("story.scene")));
    QVERIFY(notice().startsWith(QStringLiteral("story.scene is damaged, or no story. Left out or "
                                               "incomplete: 1 tab. What was not saved is kept as ")));
    closeNotice();
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::failedSaveAndKeptCopyAreOneNotice()
{
    failToSave();
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    window->clearTabs();
    const QString folder = path(QStringLiteral("Documents/Fablegrid/Kept"));
    QCOMPARE(notice(), QStringLiteral("story.scene in %1 could not be saved: No such file or directory. The "
                                      "work is kept as %2 in %3.")
                           .arg(path(QStringLiteral("missing")), filesBelow(folder).value(0), folder));
    closeNotice();
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::closedFailureGoesAndTheOneBeforeIsSeen()
{
    failToSave();
    failToAutosave();
    QVERIFY(notice().startsWith(QStringLiteral("The autosave copy")));
    closeNotice();
    QVERIFY(notice().startsWith(QStringLiteral("story.scene in")));
    closeNotice();
    QCOMPARE(notice(), QString());
    failToSave(); // the same once more is told once more
    QVERIFY(notice().startsWith(QStringLiteral("story.scene in")));
}

void tst_MainWindowNotices::failureIsSeenAgainAfterGoodNews()
{
    failToAutosave();
    QVERIFY(window->saveTo(path(QStringLiteral("story.scene"))));
    QVERIFY(notice().startsWith(QStringLiteral("Saved")));
    closeNotice();
    QVERIFY(notice().startsWith(QStringLiteral("The autosave copy")));
}

void tst_MainWindowNotices::stripTakesNothingFromTheCanvas()
{
    const NodegraphView *view = window->views().front();
    const QRect before(view->viewport()->mapTo(window.get(), QPoint()), view->viewport()->size());
    const QSize size = window->size();
    failToSave();
    QCoreApplication::processEvents();
    QCOMPARE(QRect(view->viewport()->mapTo(window.get(), QPoint()), view->viewport()->size()), before);
    QCOMPARE(window->size(), size);
    const QRect place(strip()->mapTo(window.get(), QPoint()), strip()->size());
    QVERIFY(before.contains(place));
    QCOMPARE(place.bottom(), before.bottom());
    QCOMPARE(place.width(), before.width());
    QVERIFY(place.height() < before.height() / 3);
}

void tst_MainWindowNotices::mouseReachesTheCanvasThroughTheStrip()
{
    failToSave();
    NodegraphScene *scene = sceneOf(*window, 0);
    const NodegraphView *view = window->views().front();
    Node *node = addLoose(*scene, {});
    const QPointF bareSpot(18, 55); // of the box, with none of its texts
    const QPoint middle = strip()->mapTo(window.get(), strip()->rect().center());
    node->setPos(view->mapToScene(view->viewport()->mapFrom(window.get(), middle)) - bareSpot);
    scene->deselectAll();
    const QPoint place =
        view->viewport()->mapTo(window.get(), view->mapFromScene(node->mapToScene(bareSpot)));
    QVERIFY(strip()->rect().contains(strip()->mapFrom(window.get(), place)));
    // As the window system reports it: straight to a widget it would always get there.
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, place);
    QCOMPARE(scene->currentNode(), node);
    QVERIFY(strip());
    const QPointer<QToolButton> button = strip()->closeButton();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      button->mapTo(window.get(), button->rect().center()));
    QVERIFY(!strip());
    QVERIFY(!button || !button->isVisible());
}

void tst_MainWindowNotices::laterSuccessSettles_data()
{
    QTest::addColumn<QByteArray>("content"); // null: it cannot even be read
    QTest::newRow("a file that cannot be opened") << QByteArray();
    QTest::newRow("a damaged file") << documentBytes({chainOfRecords(3, 10)}).chopped(5);
}

void tst_MainWindowNotices::laterSuccessSettles()
{
    QFETCH(const QByteArray, content);
    const QString bad = content.isNull() ? path(QStringLiteral("folder.scene")) : path(QStringLiteral("bad"));
    QVERIFY(writeFile(path(QStringLiteral("sound.scene")), documentBytes({{}})));
    if (!content.isNull())
        QVERIFY(writeFile(bad, content));
    {
        const Warnings ofTheFailure;
        window->loadFrom(bad);
    }
    QVERIFY(!notice().isEmpty());
    failToSave(); // another one lies over it
    window->loadFrom(path(QStringLiteral("sound.scene")));
    QVERIFY(window->saveTo(path(QStringLiteral("sound.scene"))));
    closeNotice(); // of the save
    QCOMPARE(notice(), QString());
}

void tst_MainWindowNotices::stripFollowsTheWindow()
{
    failToSave();
    const NodegraphView *view = window->views().front();
    for (const QSize &size : {QSize(1500, 900), QSize(962, 601)}) {
        window->resize(size);
        QTRY_COMPARE(strip()->mapTo(window.get(), QPoint(0, strip()->height())),
                     view->viewport()->mapTo(window.get(), QPoint(0, view->viewport()->height())));
        QCOMPARE(strip()->width(), view->viewport()->width());
    }
    window->clearTabs();
    QVERIFY(strip());
    window->addNodeGraphTab();
    QCOMPARE(strip()->width(), window->views().front()->viewport()->width());
    QVERIFY(strip()->isVisible());
}

void tst_MainWindowNotices::stripLeavesTheKeyboard()
{
    const Node *node = addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    descriptionOf(node)->setFocus();
    QWidget *const before = QApplication::focusWidget();
    failToSave();
    QTest::mouseClick(strip(), Qt::LeftButton);
    QCOMPARE(QApplication::focusWidget(), before);
    QVERIFY(descriptionOf(node)->hasFocus());
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(!strip()->isAncestorOf(QApplication::focusWidget()));
        QVERIFY(strip()->closeButton() != QApplication::focusWidget());
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QVERIFY(strip());
    closeNotice();
    QVERIFY(!strip());
}

void tst_MainWindowNotices::stripIsReadOut()
{
    failToSave();
    // Screen readers read an alert out when it comes up; the platform of the tests has none that listens.
    const QAccessibleInterface *alert = QAccessible::queryAccessibleInterface(strip());
    QCOMPARE(alert->text(QAccessible::Name), notice());
    QCOMPARE(alert->role(), QAccessible::AlertMessage);
    const auto *button = strip()->closeButton();
    QCOMPARE(button->accessibleName(), QStringLiteral("Close this notice"));
    QCOMPARE(button->toolTip(), QStringLiteral("Close this notice"));
}

void tst_MainWindowNotices::stripIsLegible_data()
{
    QTest::addColumn<bool>("failure");
    QTest::newRow("failure") << true;
    QTest::newRow("good news") << false;
}

void tst_MainWindowNotices::stripIsLegible()
{
    QFETCH(const bool, failure);
    if (failure)
        failToSave();
    else
        window->saveTo(path(QStringLiteral("story.scene")));
    for (QWidget *part : {static_cast<QWidget *>(strip()->findChild<QLabel *>()),
                          static_cast<QWidget *>(strip()->closeButton())}) {
        const QRect place(part->mapTo(window.get(), QPoint()), part->size());
        const Painted colours = painted(window->grab(place).toImage());
        QVERIFY2(contrast(colours.text, colours.background) >= readable,
                 qPrintable(colours.text.name() + u' ' + colours.background.name()));
    }
}

void tst_MainWindowNotices::longPathsFitTheWindow()
{
    window->resize(962, 601);
    QString folder = path(QStringLiteral("missing"));
    for (int i = 0; i < 10; ++i)
        folder += QLatin1Char('/') + QString(40, QLatin1Char('x'));
    {
        const Warnings ofTheFailure;
        window->saveTo(folder + QLatin1Char('/') + QString(200, QLatin1Char('y')) + QStringLiteral(".scene"));
    }
    const auto *label = strip()->findChild<QLabel *>();
    QVERIFY(label->heightForWidth(label->width()) <= label->height());
    QVERIFY(notice().contains(folder));
    QCOMPARE(window->size(), QSize(962, 601));
}

QTEST_MAIN(tst_MainWindowNotices)
#include "tst_mainwindow_notices.moc"
