#include "app/windowsupport.h"
#include "items/stnodename.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QDir>
#include <QGraphicsView>
#include <QMenu>
#include <QUndoStack>

// The minute passes while something is open or under way: a dialog, a menu, a drag, a text. The autosave then
// holds what a Save at that moment would write, and whatever is open goes on as if nothing had been.

namespace {

QTimer *timerOf(const MainWindow &window)
{
    return window.findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
}

QString nameOf(const QObject *object)
{
    if (!object)
        return QStringLiteral("none");
    return QStringLiteral("%1 %2 %3")
        .arg(QString::fromLatin1(object->metaObject()->className()), object->objectName())
        .arg(quintptr(object), 0, 16);
}

QString cursorOf(const QWidget *focus)
{
    const auto *edit = qobject_cast<const QLineEdit *>(focus);
    if (!edit)
        return {};
    return QStringLiteral("%1, cursor %2, selected from %3: %4")
        .arg(edit->text())
        .arg(edit->cursorPosition())
        .arg(edit->selectionStart())
        .arg(edit->selectedText());
}

QString textOf(const QGraphicsItem *focus)
{
    const auto *item = dynamic_cast<const QGraphicsTextItem *>(focus);
    if (!item)
        return {};
    return QStringLiteral("%1, cursor %2, anchor %3, %4 steps to undo")
        .arg(item->toPlainText())
        .arg(item->textCursor().position())
        .arg(item->textCursor().anchor())
        .arg(item->document()->availableUndoSteps());
}

STNodeName *titleOf(const Node *node)
{
    const QList<QGraphicsItem *> parts = node->childItems();
    for (QGraphicsItem *part : parts) {
        if (auto *title = dynamic_cast<STNodeName *>(part))
            return title;
    }
    return nullptr;
}

} // namespace

class tst_MainWindowAutosaveMeanwhile : public WindowTest
{
    Q_OBJECT

private slots:
    void saveQuestionIsOpen_data();
    void saveQuestionIsOpen();
    void saveDialogIsOpen_data();
    void saveDialogIsOpen();
    void openDialogIsOpen();
    void menuIsOpen();
    void connectionIsDragged_data();
    void connectionIsDragged();
    void lineIsDragged();
    void eventIsDragged_data();
    void eventIsDragged();
    void rubberBandIsDrawn();
    void canvasIsPanned();
    void textIsEdited_data();
    void textIsEdited();

private:
    void prepare() override;
    NodegraphView *view() const { return window->views().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    QString folder() const { return path(QStringLiteral("Documents/Fablegrid/Autosavedir")); }

    /// The document as it stands in init(); the tests change what they do to it.
    QByteArray storyBytes() const { return documentBytes({{duskRecord, dawnRecord, noonRecord}, {}}); }
    QStringList openThings() const;
    QByteArray bytesOfTheMinute() const;
    void passAMinute(const QByteArray &expected) const;

    // Everything comes in through the window, as from a real mouse and keyboard.
    QPoint inWindow(const QGraphicsView *canvas, QPointF pos) const
    {
        return canvas->viewport()->mapTo(window.get(), canvas->mapFromScene(pos));
    }
    void press(QPointF pos, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mousePress(window->windowHandle(), button, {}, inWindow(view(), pos));
    }
    void move(QPointF pos) const { QTest::mouseMove(window->windowHandle(), inWindow(view(), pos)); }
    void release(QPointF pos, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseRelease(window->windowHandle(), button, {}, inWindow(view(), pos));
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }

    QString file; // the document
    Node *dusk = nullptr;
    Node *dawn = nullptr;
    Node *noon = nullptr;
    Record duskRecord;
    Record dawnRecord;
    Record noonRecord;
};

// Two tabs. The first shows a loose event and a story of two, the second is empty.
void tst_MainWindowAutosaveMeanwhile::prepare()
{
    makeWindow();
    window->addNodeGraphTab();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));

    dusk = addEvent(scene(), QStringLiteral("Dusk"), QStringLiteral("Elsewhere."));
    scene()->sl_deselectCurrentNode();
    dawn = addEvent(scene(), QStringLiteral("Dawn"), QStringLiteral("It begins."));
    scene()->sl_selectCurrentNode(dawn);
    noon = addEvent(scene(), QStringLiteral("Noon"), QStringLiteral("It ends."));
    actionOf(*window, "actionSet_End_of_Story")->trigger();
    scene()->deselectAll();
    scene()->sl_deselectCurrentNode();
    duskRecord = {QStringLiteral("Dusk"), QPointF(20, 400)};
    duskRecord.description = QStringLiteral("Elsewhere.");
    dawnRecord = {QStringLiteral("Dawn"), QPointF(20, 30), 1};
    dawnRecord.description = QStringLiteral("It begins.");
    noonRecord = {QStringLiteral("Noon"), QPointF(500, 200), 2, 1, true};
    noonRecord.description = QStringLiteral("It ends.");
    for (const auto &[node, record] : {std::pair(dusk, duskRecord), {dawn, dawnRecord}, {noon, noonRecord}}) {
        node->setPos(record.pos);
        node->updateLines();
    }
    view()->horizontalScrollBar()->setValue(0);
    view()->verticalScrollBar()->setValue(0);

    file = path(QStringLiteral("story.scene"));
    QCOMPARE(saveAs(*window, file), QString());
    QCOMPARE(readFile(file).toHex(), storyBytes().toHex());
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

/// What is open and where the user is in it, to be compared before and after.
QStringList tst_MainWindowAutosaveMeanwhile::openThings() const
{
    QStringList things{nameOf(QApplication::activeModalWidget()),
                       nameOf(QApplication::activePopupWidget()),
                       nameOf(QApplication::focusWidget()),
                       cursorOf(QApplication::focusWidget()),
                       window->currentFilePath(),
                       nameOf(tabsOf(*window)->currentWidget()),
                       panelTexts(*window).join(QLatin1Char('|'))};
    for (const QGraphicsScene *each :
         {static_cast<QGraphicsScene *>(scene()), static_cast<QGraphicsScene *>(window->overviewerScene())})
        things << textOf(each->focusItem()) << QString::number(quintptr(each->mouseGrabberItem()), 16)
               << QString::number(each->selectedItems().size()) << QString::number(each->items().size());
    things << QString::number(quintptr(scene()->currentNode()), 16)
           << QString::number(view()->undoStack()->count()) << QString::number(view()->undoStack()->index());
    for (const ConnectionLine *line : linesOf(*scene()))
        things << QStringLiteral("%1 %2").arg(startOf(line).x()).arg(endOf(line).y());
    if (const QMenu *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget()))
        things << nameOf(menu->activeAction());
    return things;
}

/// Lets the window's own timer run out once and gives back what was written then.
QByteArray tst_MainWindowAutosaveMeanwhile::bytesOfTheMinute() const
{
    QDir(folder()).removeRecursively();
    QTimer *timer = timerOf(*window);
    const int minute = timer->interval();
    QObject context;
    bool passed = false;
    QObject::connect(timer, &QTimer::timeout, &context, [timer, minute, &passed] {
        timer->setInterval(minute);
        passed = true;
    });
    timer->setInterval(1);
    if (!QTest::qWaitFor([&passed] { return passed; }))
        return QByteArrayLiteral("the timer did not run out");
    const QStringList files = QDir(folder()).entryList(QDir::Files | QDir::Hidden);
    return files.size() == 1 ? readFile(folder() + QLatin1Char('/') + files.front())
                             : QByteArrayLiteral("not one file");
}

/// Autosaves; nothing that is open notices, and a Save, where it asks nothing, writes the same.
void tst_MainWindowAutosaveMeanwhile::passAMinute(const QByteArray &expected) const
{
    const QStringList before = openThings();
    const QByteArray document = readFile(file);
    const QByteArray written = bytesOfTheMinute();
    QCOMPARE(openThings(), before);
    QCOMPARE(readFile(file).toHex(), document.toHex());
    QCOMPARE(written.toHex(), expected.toHex());
    if (window->currentFilePath().isEmpty())
        return;
    window->sl_saveFile();
    QCOMPARE(readFile(file).toHex(), written.toHex());
}

void tst_MainWindowAutosaveMeanwhile::saveQuestionIsOpen_data()
{
    QTest::addColumn<bool>("ofATab");
    QTest::newRow("closing a tab") << true;
    QTest::newRow("closing the window") << false;
}

void tst_MainWindowAutosaveMeanwhile::saveQuestionIsOpen()
{
    QFETCH(bool, ofATab);
    const DialogAnswers answers({[this](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        box->button(QMessageBox::No)->setFocus();
        passAMinute(storyBytes());
        QVERIFY(dialog->isVisible());
        QTest::keyClick(dialog->windowHandle(), Qt::Key_Space); // the button that had the focus
    }});
    if (ofATab)
        window->closeTab(1);
    else
        window->close();
    QCOMPARE(window->isVisible(), ofATab);
    QCOMPARE(tabTitles(*window).size(), ofATab ? 1 : 2);
}

void tst_MainWindowAutosaveMeanwhile::saveDialogIsOpen_data()
{
    QTest::addColumn<bool>("untitled");
    QTest::newRow("first Save") << true;
    QTest::newRow("Save As") << false;
}

void tst_MainWindowAutosaveMeanwhile::saveDialogIsOpen()
{
    QFETCH(bool, untitled);
    QByteArray expected = storyBytes();
    if (untitled) {
        window->clearTabs();
        window->addNodeGraphTab();
        expected = documentBytes({{}});
    }
    const QString former = untitled ? QString() : file;
    const QString chosen = path(QStringLiteral("chosen.scene"));
    const DialogAnswers answers({[&](QDialog *dialog) {
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        QVERIFY(qobject_cast<QFileDialog *>(dialog) && name);
        name->setFocus();
        name->setText(QStringLiteral("half a na"));
        name->setSelection(2, 3);
        passAMinute(expected);
        QVERIFY(dialog->isVisible());
        QCOMPARE(window->currentFilePath(), former);
        QVERIFY(!QFileInfo::exists(chosen));
        chooseFile(chosen)(dialog);
    }});
    actionOf(*window, untitled ? "actionSave" : "actionSave_As")->trigger();
    QCOMPARE(window->currentFilePath(), chosen);
    QCOMPARE(readFile(chosen).toHex(), expected.toHex());
}

void tst_MainWindowAutosaveMeanwhile::openDialogIsOpen()
{
    const QString other = path(QStringLiteral("other.scene"));
    QVERIFY(writeFile(other, documentBytes({{duskRecord}})));
    const DialogAnswers answers({[&](QDialog *dialog) {
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        QVERIFY(qobject_cast<QFileDialog *>(dialog) && name);
        name->setFocus();
        name->setText(QStringLiteral("oth"));
        name->setSelection(0, 2);
        passAMinute(storyBytes());
        QVERIFY(dialog->isVisible());
        chooseFile(other)(dialog);
    }});
    actionOf(*window, "actionOpen")->trigger();
    QCOMPARE(window->currentFilePath(), other);
    QCOMPARE(titlesOf(scene()), QStringList{QStringLiteral("Dusk")});
}

void tst_MainWindowAutosaveMeanwhile::menuIsOpen()
{
    auto *menu = window->findChild<QMenu *>(QStringLiteral("menuFile"));
    QVERIFY(menu);
    // What the offscreen platform says of itself whenever a menu comes up.
    QTest::ignoreMessage(QtWarningMsg, "This plugin does not support raise()");
    QTest::ignoreMessage(QtWarningMsg, "This plugin does not support grabbing the keyboard");
    menu->popup(window->mapToGlobal(QPoint(10, 30)));
    QVERIFY(QTest::qWaitForWindowExposed(menu));
    menu->setActiveAction(actionOf(*window, "actionSave"));
    QCOMPARE(QApplication::activePopupWidget(), menu);
    dawn->setPos(50, 60);
    dawnRecord.pos = QPointF(50, 60);
    passAMinute(storyBytes());

    QVERIFY(menu->isVisible());
    QVERIFY(QFile::remove(file));
    QTest::keyClick(menu, Qt::Key_Return);
    QVERIFY(!menu->isVisible());
    QCOMPARE(readFile(file).toHex(), storyBytes().toHex());
}

void tst_MainWindowAutosaveMeanwhile::connectionIsDragged_data()
{
    QTest::addColumn<bool>("fromOutput");
    QTest::newRow("from an output") << true;
    QTest::newRow("away from a fed input") << false;
}

void tst_MainWindowAutosaveMeanwhile::connectionIsDragged()
{
    QFETCH(bool, fromOutput);
    const QPointF from = fromOutput ? outputOf(noon) : inputOf(noon);
    const QPointF to = fromOutput ? inputOf(dusk) : outputOf(dusk);
    move(from);
    press(from);
    move((from + to) / 2);
    const ConnectionLine *dragged = dragLineOf(*scene());
    QVERIFY(dragged);
    if (!fromOutput)
        noonRecord.upstream = -1; // the press has taken its line off
    passAMinute(storyBytes());

    QCOMPARE(dragLineOf(*scene()), dragged);
    move(to);
    release(to);
    (fromOutput ? duskRecord.upstream : noonRecord.upstream) = fromOutput ? 2 : 0;
    QVERIFY(linesAreExact(*scene()));
    QCOMPARE(bytesOfTheMinute().toHex(), storyBytes().toHex());
}

void tst_MainWindowAutosaveMeanwhile::lineIsDragged()
{
    const QPointF grip = nearEnd(noon->inLine(), SocketType::output);
    move(grip);
    press(grip);
    move(grip + QPointF(5, 60));
    QVERIFY(dragLineOf(*scene()));
    noonRecord.upstream = -1;
    passAMinute(storyBytes());

    move(outputOf(dusk));
    release(outputOf(dusk));
    noonRecord.upstream = 0;
    QVERIFY(linesAreExact(*scene()));
    QCOMPARE(bytesOfTheMinute().toHex(), storyBytes().toHex());
}

void tst_MainWindowAutosaveMeanwhile::eventIsDragged_data()
{
    QTest::addColumn<bool>("group");
    QTest::newRow("one") << false;
    QTest::newRow("all") << true;
}

void tst_MainWindowAutosaveMeanwhile::eventIsDragged()
{
    QFETCH(bool, group);
    if (group)
        scene()->selectAll();
    const auto shift = [this, group](QPointF by) {
        noonRecord.pos += by;
        if (group) {
            duskRecord.pos += by;
            dawnRecord.pos += by;
        }
    };
    const QPointF from = bodyOf(noon);
    move(from);
    press(from);
    move(from + QPointF(20, 30));
    move(from + QPointF(-10, 55));
    shift(QPointF(-10, 55));
    passAMinute(storyBytes());

    QCOMPARE(scene()->mouseGrabberItem(), noon);
    move(from + QPointF(33, 44));
    release(from + QPointF(33, 44));
    shift(QPointF(43, -11));
    QCOMPARE(scene()->mouseGrabberItem(), nullptr);
    QVERIFY(linesAreExact(*scene()));
    QCOMPARE(bytesOfTheMinute().toHex(), storyBytes().toHex());
}

void tst_MainWindowAutosaveMeanwhile::rubberBandIsDrawn()
{
    const QPointF from(10, 10);
    move(from);
    press(from);
    move(QPointF(100, 100));
    QCOMPARE(scene()->selectedNodes(), std::vector<Node *>{dawn});
    passAMinute(storyBytes());

    QCOMPARE(rubberBandOf(*scene())->rect(), QRectF(from, QPointF(100, 100)));
    move(QPointF(100, 480));
    release(QPointF(100, 480));
    QCOMPARE(scene()->selectedNodes(), (std::vector<Node *>{dawn, dusk}));
}

void tst_MainWindowAutosaveMeanwhile::canvasIsPanned()
{
    const QPoint hand = inWindow(view(), QPointF(600, 600));
    const auto scroll = [this] {
        return QPoint(view()->horizontalScrollBar()->value(), view()->verticalScrollBar()->value());
    };
    QTest::mousePress(window->windowHandle(), Qt::RightButton, {}, hand);
    QTest::mouseMove(window->windowHandle(), hand - QPoint(20, 30));
    passAMinute(storyBytes());

    QCOMPARE(view()->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseMove(window->windowHandle(), hand - QPoint(70, 90));
    QTest::mouseRelease(window->windowHandle(), Qt::RightButton, {}, hand - QPoint(70, 90));
    QCOMPARE(scroll(), QPoint(70, 90));
}

void tst_MainWindowAutosaveMeanwhile::textIsEdited_data()
{
    QTest::addColumn<QString>("place");
    for (const char *place : {"title", "description", "panel entry"})
        QTest::newRow(place) << QString::fromLatin1(place);
}

void tst_MainWindowAutosaveMeanwhile::textIsEdited()
{
    QFETCH(QString, place);
    const bool inPanel = place == QLatin1String("panel entry");
    const bool inTitle = place == QLatin1String("title");
    const QGraphicsView *canvas = inPanel ? window->overviewerScene()->views().front() : view();
    QGraphicsTextItem *text = descriptionOf(dawn);
    if (inTitle)
        text = titleOf(dawn);
    else if (inPanel)
        text = descriptionOf(window->overviewerScene()->ovNodes().front());
    QString &saved = inTitle ? dawnRecord.title : dawnRecord.description;

    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      inWindow(canvas, text->mapToScene(text->boundingRect().center())));
    QVERIFY(text->hasFocus());
    key(Qt::Key_A, Qt::ControlModifier);
    for (const Qt::Key letter : {Qt::Key_F, Qt::Key_O, Qt::Key_G, Qt::Key_G, Qt::Key_Y})
        key(letter);
    key(Qt::Key_Left);
    key(Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(text->toPlainText(), QStringLiteral("foggy"));
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("g"));
    saved = QStringLiteral("foggy");
    passAMinute(storyBytes());

    QVERIFY(text->hasFocus());
    key(Qt::Key_X);
    saved = QStringLiteral("fogxy");
    QCOMPARE(text->toPlainText(), saved);
    passAMinute(storyBytes());
    key(Qt::Key_Z, Qt::ControlModifier);
    saved = text->toPlainText();
    QVERIFY(saved != QStringLiteral("fogxy"));
    passAMinute(storyBytes());
    QCOMPARE(view()->undoStack()->index(), 3); // the graph's history is not the text's
}

QTEST_MAIN(tst_MainWindowAutosaveMeanwhile)
#include "tst_mainwindow_autosave_meanwhile.moc"
