#include "app/worstmoments.h"

#include <QContextMenuEvent>

#include <memory>

// A node goes while a text is being edited: one of its own, or one of the node before it.

class tst_WorstMomentsTexts : public QObject
{
    Q_OBJECT

public:
    static void initMain() { keepFilesInMemory(); }

private slots:
    void init()
    {
        failOnWarningsButOfMenus();
        stage = std::make_unique<WorstMoment>();
        if (QTest::currentTestFailed())
            return;
        QFETCH(QString, moment);
        text = textOfMoment(moment);
        stage->edit(text);
    }
    void cleanup() { stage.reset(); }

    void textIsEdited_data() { WorstMoment::waysAsRows(editedTexts); }
    void textIsEdited();
    void textIsComposed_data() { WorstMoment::waysAsRows(editedTexts); }
    void textIsComposed();
    void menuOfTheTextIsOpen_data() { WorstMoment::waysAsRows(editedTexts); }
    void menuOfTheTextIsOpen();

private:
    static const std::vector<const char *> editedTexts;
    QGraphicsTextItem *textOfMoment(const QString &moment) const;
    bool staysForSure() const;

    std::unique_ptr<WorstMoment> stage;
    QPointer<QGraphicsTextItem> text; // the one that is edited
};

const std::vector<const char *> tst_WorstMomentsTexts::editedTexts{
    "its title",       "its description",       "its panel entry",
    "another's title", "another's description", "another's panel entry"};

QGraphicsTextItem *tst_WorstMomentsTexts::textOfMoment(const QString &moment) const
{
    const Node *node = moment.startsWith(QLatin1String("its")) ? stage->noon : stage->dawn;
    if (moment.endsWith(QLatin1String("title")))
        return node->nameItem();
    if (moment.endsWith(QLatin1String("description")))
        return descriptionOf(node);
    return descriptionOf(stage->panel()->findOvNode(node->getIndex()));
}

/// Whether the text that is edited belongs to a node that stays. Panel entries are made anew for every story.
bool tst_WorstMomentsTexts::staysForSure() const
{
    QFETCH(QString, moment);
    return stage->tabIsThere() && moment.startsWith(QLatin1String("another")) &&
           !moment.endsWith(QLatin1String("panel entry"));
}

void tst_WorstMomentsTexts::textIsEdited()
{
    QFETCH(QString, way);
    stage->go(way);
    if (staysForSure()) {
        // What is pasted is a new event; the keys that follow are not meant for the text of another one.
        QCOMPARE(text->hasFocus(), way != QLatin1String("Cut and Paste in the menu"));
        if (text->hasFocus() && !way.startsWith(QLatin1String("Ctrl")) && way != QLatin1String("Del"))
            QCOMPARE(text->textCursor().selectedText(), QStringLiteral("g"));
    }
    stage->goOn();
}

// What is committed later arrives in a text that is still there, and nowhere else.
void tst_WorstMomentsTexts::textIsComposed()
{
    QFETCH(QString, way);
    WorstMoment::compose(QStringLiteral("half a wo"), {});
    stage->go(way);
    const bool stays = staysForSure();
    WorstMoment::compose(QStringLiteral("half a word"), {});
    WorstMoment::compose({}, QStringLiteral("whole"));
    if (stays)
        QVERIFY(text->toPlainText().contains(QLatin1String("whole")));
    // It belongs where it was begun, even if the keyboard has left that text.
    stage->noteEdit(stays ? text.data() : stage->editedText());
    stage->goOn();
}

// The entries of the menu belong to the text; they do nothing once it is gone.
void tst_WorstMomentsTexts::menuOfTheTextIsOpen()
{
    QFETCH(QString, way);
    QGraphicsView *canvas = text->scene()->views().front();
    const QPoint middle = canvas->mapFromScene(text->mapToScene(text->boundingRect().center()));
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, middle, canvas->viewport()->mapToGlobal(middle));
    QApplication::sendEvent(canvas->viewport(), &byKey);
    const QPointer<QMenu> menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu && menu->actions().size() > 5);

    stage->go(way);
    flushDeferredDeletes();
    if (menu) {
        const QList<QAction *> actions = menu->actions();
        for (QAction *action : actions)
            action->trigger();
    }
    stage->noteEdit(text); // they have done their work
    if (menu)
        menu->close();
    stage->goOn();
}

QTEST_MAIN(tst_WorstMomentsTexts)
#include "tst_worstmoments_texts.moc"
