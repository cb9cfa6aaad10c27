#include "app/worstmoments.h"

// A node goes while a menu or a dialog has taken over, as by a timer.

class tst_WorstMomentsDialogs : public QObject
{
    Q_OBJECT

public:
    static void initMain() { keepFilesInMemory(); }

private slots:
    void init() { failOnWarningsButOfMenus(); }

    void menuIsOpen_data() { WorstMoment::waysAsRows({"menuFile", "menuEdit"}); }
    void menuIsOpen();
    void fileDialogIsOpen_data();
    void fileDialogIsOpen();
    void saveQuestionIsOpen_data();
    void saveQuestionIsOpen();
};

// Carried out inside the menu's own event loop, which then ends by an entry being chosen.
void tst_WorstMomentsDialogs::menuIsOpen()
{
    QFETCH(QString, moment);
    QFETCH(QString, way);
    WorstMoment stage;
    if (QTest::currentTestFailed())
        return;
    auto *menu = stage.window->findChild<QMenu *>(moment);
    QVERIFY(menu);
    bool gone = false;
    QTimer::singleShot(0, stage.window.get(), [&] {
        QCOMPARE(QApplication::activePopupWidget(), menu);
        stage.go(way);
        gone = true;
        // Another turn of the loop, in which what was deleted is really destroyed.
        QTimer::singleShot(0, menu, [menu, &stage] {
            stage.look();
            menu->setActiveAction(menu->actions().back()); // Close and Delete
            QTest::keyClick(menu, Qt::Key_Return);
            menu->close();
        });
    });
    menu->exec(stage.window->mapToGlobal(QPoint(10, 30)));
    QVERIFY(gone);
    stage.goOn();
}

void tst_WorstMomentsDialogs::fileDialogIsOpen_data()
{
    WorstMoment::waysAsRows(
        {"Save As, confirmed", "Save As, dismissed", "Open, confirmed", "Open, dismissed"});
}

void tst_WorstMomentsDialogs::fileDialogIsOpen()
{
    QFETCH(QString, moment);
    QFETCH(QString, way);
    WorstMoment stage;
    if (QTest::currentTestFailed())
        return;
    const bool saving = moment.startsWith(QLatin1String("Save"));
    const QString chosen = stage.file(saving ? "chosen.scene" : "other.scene");
    const bool confirmed = moment.endsWith(QLatin1String("confirmed"));
    const DialogAnswers::Answer answer = confirmed ? chooseFile(chosen) : pressEscape();
    const NextDialog fileDialog([&](QDialog *dialog) {
        QVERIFY(qobject_cast<QFileDialog *>(dialog));
        stage.go(way);
        QTimer::singleShot(0, dialog, [&, dialog] {
            stage.look();
            answer(dialog);
        });
    });
    stage.trigger(saving ? "actionSave_As" : "actionOpen");
    QVERIFY(fileDialog.hasCome());
    if (confirmed) {
        QCOMPARE(stage.window->currentFilePath(), chosen);
        stage.window->saveTo(stage.file("compared.scene"));
        QCOMPARE(readFile(chosen).toHex(), readFile(stage.file("compared.scene")).toHex());
    }
    stage.goOn();
}

void tst_WorstMomentsDialogs::saveQuestionIsOpen_data()
{
    WorstMoment::waysAsRows({"its tab, Yes", "its tab, No", "its tab, Cancel", "the other tab, Yes",
                             "the other tab, No", "the other tab, Cancel", "the window, Yes",
                             "the window, No", "the window, Cancel"});
}

void tst_WorstMomentsDialogs::saveQuestionIsOpen()
{
    QFETCH(QString, moment);
    QFETCH(QString, way);
    WorstMoment stage;
    if (QTest::currentTestFailed())
        return;
    QMessageBox::StandardButton button = QMessageBox::Cancel;
    if (moment.endsWith(QLatin1String("Yes")))
        button = QMessageBox::Yes;
    else if (moment.endsWith(QLatin1String("No")))
        button = QMessageBox::No;
    std::unique_ptr<NextDialog> saveDialog;
    const NextDialog question([&](QDialog *dialog) {
        QVERIFY(qobject_cast<QMessageBox *>(dialog));
        stage.go(way);
        QTimer::singleShot(0, dialog, [&, dialog] {
            stage.look();
            // A document that has lost its path is asked for one.
            if (stage.window->currentFilePath().isEmpty())
                saveDialog = std::make_unique<NextDialog>(chooseFile(stage.file("late.scene")));
            ::press(button)(dialog);
        });
    });
    if (moment.startsWith(QLatin1String("the window")))
        stage.window->close();
    else
        stage.window->closeTab(moment.startsWith(QLatin1String("its")) ? 0 : 1);
    QVERIFY(question.hasCome());
    if (saveDialog)
        QCOMPARE(saveDialog->hasCome(), button == QMessageBox::Yes);
    stage.goOn();
}

QTEST_MAIN(tst_WorstMomentsDialogs)
#include "tst_worstmoments_dialogs.moc"
