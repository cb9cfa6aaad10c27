#include "app/windowsupport.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QDockWidget>
#include <QFontMetricsF>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTranslator>
#include <QUndoStack>

// What a translator gets to see, and a window whose texts are longer than the English ones.

namespace {

constexpr QChar mark(0x27E6);

/// Makes each text 40 % longer and puts a mark in front. Keys stay: the form translates them, too.
class PseudoTranslator : public QTranslator
{
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        const QString text = QString::fromUtf8(sourceText);
        const bool isKey = qstrcmp(context, "QShortcut") == 0 || text.startsWith(QStringLiteral("Ctrl+")) ||
                           text == QStringLiteral("Del");
        if (isKey || text.isEmpty())
            return text;
        return mark + QString((text.size() * 4 + 9) / 10, u'a') + text;
    }
};

/// The texts without the mark.
QStringList escaped(const QStringList &texts)
{
    QStringList wrong;
    for (const QString &text : texts) {
        if (!text.isEmpty() && !text.startsWith(mark))
            wrong << text;
    }
    return wrong;
}

} // namespace

class tst_Translation : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        QCoreApplication::installTranslator(&translator);
        window = std::make_unique<MainWindow>();
        window->resize(962, 601);
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    void cleanup()
    {
        window.reset();
        QCoreApplication::removeTranslator(&translator);
        flushDeferredDeletes();
    }

    void menusAreTranslated();
    void widgetsAreTranslated();
    void newEventIsTranslated();
    void historyIsTranslated();
    void questionsAreTranslated();
    void fileDialogsAreTranslated();
    void longerTextsFit();
    void smallestWindowStaysAsSmall();

private:
    PrivateHome home;
    PseudoTranslator translator;
    std::unique_ptr<MainWindow> window;
};

void tst_Translation::menusAreTranslated()
{
    QStringList texts;
    for (const QMenu *menu : window->menuBar()->findChildren<QMenu *>()) {
        if (menu->objectName() != QStringLiteral("menuLogo")) // a picture; its title is not shown
            texts << menu->title();
        for (const QAction *action : menu->actions()) {
            if (!action->isSeparator())
                texts << action->text() << action->toolTip();
        }
    }
    QVERIFY(texts.size() > 40);
    QVERIFY2(escaped(texts).isEmpty(), qPrintable(escaped(texts).join(u'\n')));
}

void tst_Translation::widgetsAreTranslated()
{
    window->addNodeGraphTab();
    QStringList texts = tabTitles(*window);
    texts << window->findChild<QDockWidget *>()->windowTitle() << window->windowTitle();
    int widgets = 0;
    for (const QWidget *widget : window->findChildren<QWidget *>()) {
        texts << widget->toolTip() << widget->accessibleName() << widget->statusTip() << widget->whatsThis();
        if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
            texts << button->text();
        if (const auto *label = qobject_cast<const QLabel *>(widget))
            texts << label->text();
        ++widgets;
    }
    QVERIFY(widgets > 15);
    QVERIFY2(escaped(texts).isEmpty(), qPrintable(escaped(texts).join(u'\n')));
}

void tst_Translation::newEventIsTranslated()
{
    window->addEventNode();
    const Node *node = sceneOf(*window, 0)->nodes().at(0);
    QCOMPARE(escaped({node->title(), descriptionOf(node)->toPlainText()}), QStringList());
    QCOMPARE(escaped(panelTexts(*window)), QStringList());
}

void tst_Translation::historyIsTranslated()
{
    NodegraphScene *scene = sceneOf(*window, 0);
    window->addEventNode();
    window->addEventNode();
    scene->sl_selectCurrentNode(scene->nodes().back());
    window->sl_delete();
    const QUndoStack *stack = window->views().front()->undoStack();
    QStringList texts;
    for (int i = 0; i < stack->count(); ++i)
        texts << stack->text(i);
    QVERIFY(texts.size() >= 3);
    QCOMPARE(escaped(texts), QStringList());
}

void tst_Translation::questionsAreTranslated()
{
    window->addNodeGraphTab();
    QStringList texts;
    const DialogAnswers::Answer look = [&texts](QDialog *dialog) {
        texts << dialog->windowTitle() << qobject_cast<QMessageBox *>(dialog)->text();
        for (const QAbstractButton *button : dialog->findChildren<QAbstractButton *>())
            texts << button->text();
        press(QMessageBox::Cancel)(dialog);
    };
    const DialogAnswers answers({look, look});
    window->closeTab(1);
    window->close();
    QCOMPARE(texts.size(), 10);
    QCOMPARE(escaped(texts), QStringList());
}

void tst_Translation::fileDialogsAreTranslated()
{
    QStringList texts;
    const DialogAnswers::Answer look = [&texts](QDialog *dialog) {
        texts << dialog->windowTitle() << qobject_cast<QFileDialog *>(dialog)->nameFilters();
        for (const QPushButton *button : dialog->findChildren<QPushButton *>())
            texts << button->text();
        dialog->reject();
    };
    const DialogAnswers answers({look, look});
    window->sl_loadFile();
    window->sl_saveAsFile();
    QVERIFY(texts.size() >= 8);
    QVERIFY2(escaped(texts).isEmpty(), qPrintable(escaped(texts).join(u'\n')));
}

void tst_Translation::longerTextsFit()
{
    for (const char *name : {"AddNodeGraph_tool_button", "F1_button"}) {
        const QAbstractButton *button = buttonOf(*window, name);
        QVERIFY2(QFontMetricsF(button->font(), button).horizontalAdvance(button->text()) <= button->width(),
                 qPrintable(button->text() + button->font().toString()));
    }
    // One beside the other, and none beyond the edge.
    const QMenuBar *bar = window->menuBar();
    int end = 0;
    for (QAction *action : bar->actions()) {
        const QRect place = bar->actionGeometry(action);
        QVERIFY(place.left() >= end);
        end = place.right();
    }
    QVERIFY(end < bar->width());
    const QTabBar *tabs = tabsOf(*window)->tabBar();
    QVERIFY(tabs->tabRect(0).right() < tabsOf(*window)->width());
}

void tst_Translation::smallestWindowStaysAsSmall() { QCOMPARE(window->size(), QSize(962, 601)); }

QTEST_MAIN(tst_Translation)
#include "tst_translation.moc"
