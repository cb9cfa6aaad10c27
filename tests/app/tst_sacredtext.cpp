#include "app/sacredtext.h"
#include "scene/shownscene.h"

#include <QDir>

// What a file holds is what a save writes, unit for unit, whatever way through the program a text took.

class tst_SacredText : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }

    void isSavedAsItWasLoaded_data() { textRows(); }
    void isSavedAsItWasLoaded();
    void isAutosavedAsItWasLoaded_data() { textRows(); }
    void isAutosavedAsItWasLoaded();
    void isKeptByUndoneDeletions_data() { textRows(); }
    void isKeptByUndoneDeletions();
    void isKeptByUndoneAdditions_data() { textRows(); }
    void isKeptByUndoneAdditions();
    void isCopiedWithItsNode_data() { textRows(); }
    void isCopiedWithItsNode();
    void isMovedWithItsNode_data() { textRows(); }
    void isMovedWithItsNode();
    void isShownInThePanel_data() { textRows(); }
    void isShownInThePanel();
    void isNotTouchedByAVisit_data();
    void isNotTouchedByAVisit();
    void ofAnUntouchedNodeIsThePlaceholder();
    void canBeEveryUnitThatADocumentHolds();
    void canBeAHundredThousandLines();
    void canBeOneEndlessWord();

private:
    static void textRows();

    NodegraphView *view() const { return window->views().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    Node *node() const { return scene()->nodes().front(); }
    void trigger(const char *action) const { actionOf(*window, action)->trigger(); }
    void load(const QString &title, const QString &description);
    QString changeOnSaving(const QStringList &should);

    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<MainWindow> window;
    QString file;
};

void tst_SacredText::textRows()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("held");
    for (const SacredText &text : allTexts())
        QTest::newRow(text.name) << text.given << text.held;
}

void tst_SacredText::init()
{
    failOnWarningsButOfFonts();
    home = std::make_unique<PrivateHome>();
    window = std::make_unique<MainWindow>();
    file = home->filePath(QStringLiteral("story.scene"));
}

/// Opens a document with one event, which is the end of the story and thus in the panel too.
void tst_SacredText::load(const QString &title, const QString &description)
{
    Record record{title, QPointF(20, 30), 0, -1, true};
    record.description = description;
    QVERIFY(writeFile(file, documentBytes({{record}})));
    window->loadFrom(file);
    QCOMPARE(scene()->nodes().size(), std::size_t(1));
}

/// What a save would change of these titles and descriptions, empty if nothing.
QString tst_SacredText::changeOnSaving(const QStringList &should)
{
    const QStringList is = textsOnSaving(*window, *home);
    if (is.size() != should.size())
        return QStringLiteral("%1 texts instead of %2").arg(is.size()).arg(should.size());
    for (int i = 0; i < is.size(); ++i) {
        const QString change = changeOf(should[i], is[i]);
        if (!change.isEmpty())
            return QStringLiteral("text %1: %2").arg(i).arg(change);
    }
    return {};
}

void tst_SacredText::isSavedAsItWasLoaded()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    QCOMPARE(changeOnSaving({held, held}), QString());
    QCOMPARE(changeOf(held, node()->title()), QString());
    QCOMPARE(changeOf(held, node()->payload()->eventContent()->getDescription()), QString());

    // Once written, a document never changes any more by being opened and saved.
    window->saveTo(file);
    const QByteArray written = readFile(file);
    window->loadFrom(file);
    QVERIFY(QFile::remove(file));
    window->saveTo(file);
    QVERIFY(readFile(file) == written);
}

void tst_SacredText::isAutosavedAsItWasLoaded()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    window->autosave();
    const QDir folder(home->filePath(QStringLiteral("Documents/Fablegrid/Autosavedir")));
    const QStringList copies = folder.entryList(QDir::Files);
    QCOMPARE(copies.size(), 1);
    const QStringList texts = savedTexts(readFile(folder.filePath(copies.front())));
    QCOMPARE(texts.size(), 2);
    QCOMPARE(changeOf(held, texts[0]), QString());
    QCOMPARE(changeOf(held, texts[1]), QString());
}

void tst_SacredText::isKeptByUndoneDeletions()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    scene()->sl_selectCurrentNode(node());
    for (const char *before : {"actionDelete", "actionRedo"}) {
        trigger(before);
        QVERIFY(scene()->nodes().empty());
        trigger("actionUndo");
        QCOMPARE(changeOnSaving({held, held}), QString());
        QCOMPARE(changeOf(held, heldBy(node()->nameItem())), QString());
        QCOMPARE(changeOf(held, heldBy(descriptionOf(node()))), QString());
    }
}

void tst_SacredText::isKeptByUndoneAdditions()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    trigger("actionAdd_Event");
    node()->nameItem()->setPlainText(given);
    descriptionOf(node())->setPlainText(given);
    for (int round = 0; round < 2; ++round) {
        trigger("actionUndo");
        QVERIFY(scene()->nodes().empty());
        trigger("actionRedo");
        QCOMPARE(changeOnSaving({held, held}), QString());
    }
}

void tst_SacredText::isCopiedWithItsNode()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    Node *source = node();
    // What is copied goes with the paste, unless it is selected beside others; so the selection stays empty.
    scene()->sl_selectCurrentNode(source);
    trigger("actionCopy");
    trigger("actionPaste");
    const QStringList texts = textsOnSaving(*window, *home);
    QCOMPARE(texts.size() % 2, 0);
    QVERIFY(!texts.isEmpty());
    QVERIFY(scene()->nodes().back() != source);
    for (const QString &text : texts)
        QCOMPARE(changeOf(held, text), QString());
}

void tst_SacredText::isMovedWithItsNode()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    scene()->sl_selectCurrentNode(node());
    trigger("actionCut");
    QCOMPARE(changeOnSaving({held, held}), QString()); // what is cut is hidden, not gone
    trigger("actionPaste");
    QCOMPARE(changeOnSaving({held, held}), QString());
    trigger("actionUndo");
    QCOMPARE(scene()->nodes().size(), std::size_t(2));
    QCOMPARE(changeOnSaving({held, held, held, held}), QString());
}

void tst_SacredText::isShownInThePanel()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    const auto entry = [this] { return window->overviewerScene()->ovNodes().front(); };
    QCOMPARE(changeOf(held, heldBy(descriptionOf(entry()))), QString());
    window->addNodeGraphTab();
    tabsOf(*window)->setCurrentIndex(1);
    tabsOf(*window)->setCurrentIndex(0);
    trigger("actionSet_as_Important");
    buttonOf(*window, "F1_button")->click();
    buttonOf(*window, "F1_button")->click();
    QCOMPARE(changeOf(held, heldBy(descriptionOf(entry()))), QString());
    QCOMPARE(changeOnSaving({held, held}), QString());
}

void tst_SacredText::isNotTouchedByAVisit_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("held");
    for (const SacredText &text : allTexts()) {
        if (!text.given.isEmpty() && text.given.size() < 1000) // longer ones cannot be clicked in the middle
            QTest::newRow(text.name) << text.given << text.held;
    }
}

// Clicked into, walked through with the keys, painted and left again; nothing is typed.
void tst_SacredText::isNotTouchedByAVisit()
{
    QFETCH(QString, given);
    QFETCH(QString, held);
    load(given, given);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    view()->resetTransform();
    view()->horizontalScrollBar()->setValue(0);
    view()->verticalScrollBar()->setValue(0);
    OvNode *entry = window->overviewerScene()->ovNodes().front();
    for (QGraphicsTextItem *text : {static_cast<QGraphicsTextItem *>(node()->nameItem()),
                                    static_cast<QGraphicsTextItem *>(descriptionOf(node())),
                                    static_cast<QGraphicsTextItem *>(descriptionOf(entry))}) {
        const QGraphicsView *canvas = text->scene()->views().front();
        const QPointF middle = text->mapToScene(text->boundingRect().center());
        QTest::mouseClick(canvas->viewport(), Qt::LeftButton, {}, canvas->mapFromScene(middle));
        QVERIFY(text->hasFocus());
        for (const Qt::Key key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_End, Qt::Key_Left, Qt::Key_Down})
            QTest::keyClick(QApplication::focusWidget(), key);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        QVERIFY(!window->grab().isNull());
        text->clearFocus();
        QVERIFY(!window->grab().isNull());
    }
    QCOMPARE(changeOnSaving({held, held}), QString());
}

void tst_SacredText::ofAnUntouchedNodeIsThePlaceholder()
{
    trigger("actionAdd_Event");
    QCOMPARE(changeOnSaving({QStringLiteral("Event"), QStringLiteral("Enter description")}), QString());
}

void tst_SacredText::canBeEveryUnitThatADocumentHolds()
{
    load(allHeldUnits(), allHeldUnits());
    QCOMPARE(changeOnSaving({allHeldUnits(), allHeldUnits()}), QString());
}

void tst_SacredText::canBeAHundredThousandLines()
{
    const QString lines(100000, QLatin1Char('\n'));
    load(QStringLiteral("Lines"), lines);
    QCOMPARE(changeOnSaving({QStringLiteral("Lines"), lines}), QString());
}

void tst_SacredText::canBeOneEndlessWord()
{
    const QString title(200000, QLatin1Char('x'));
    const QString description(20000, QLatin1Char('y'));
    load(title, description);
    QCOMPARE(changeOnSaving({title, description}), QString());
}

QTEST_MAIN(tst_SacredText)
#include "tst_sacredtext.moc"
