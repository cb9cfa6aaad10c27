#include "app/sacredtext.h"
#include "scene/shownscene.h"

#include <QClipboard>
#include <QInputMethodEvent>
#include <QMimeData>

// What is typed, composed or pasted into a title, a description or a panel entry is what a save writes.

class tst_SacredTextTyping : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup()
    {
        QGuiApplication::clipboard()->clear();
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }

    void typedText_data() { rows(typedTexts()); }
    void typedText();
    void composedText_data() { rows(allTexts()); }
    void composedText();
    void pastedText_data() { rows(allTexts()); }
    void pastedText();
    void everyUnitThatADocumentHoldsCanBePasted_data() { places(); }
    void everyUnitThatADocumentHoldsCanBePasted();
    void undoneAndRedoneText_data() { rows(allTexts()); }
    void undoneAndRedoneText();
    void oneUnitMakesADifference_data();
    void oneUnitMakesADifference();
    void breakOfALineIsNotOneOfAParagraph_data() { places(); }
    void breakOfALineIsNotOneOfAParagraph();
    void keysThatStandForNoCharacterLeaveTheTextAlone_data() { places(); }
    void keysThatStandForNoCharacterLeaveTheTextAlone();
    void textCopiedInsideATextLosesWhatPlainTextLeavesOut_data() { places(); }
    void textCopiedInsideATextLosesWhatPlainTextLeavesOut();

private:
    static std::vector<SacredText> typedTexts();
    static void rows(const std::vector<SacredText> &texts);
    static void places();

    NodegraphView *view() const { return window->views().front(); }
    Node *node() const { return view()->nodegraphScene()->nodes().front(); }
    OvNode *entry() const { return window->overviewerScene()->ovNodes().front(); }
    QGraphicsTextItem *textAt(const QString &place) const;

    void startEditing(const QString &place);
    static void type(const QString &text);
    static void paste(const QString &text);
    QString changeOnSaving(const QString &should);

    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<MainWindow> window;
    QString edited; // the place
};

namespace {

const char *const editedPlaces[] = {"title", "description", "panel entry"};

/// A key on its way to whatever has the focus.
void typeKey(Qt::Key key, const QString &text, Qt::KeyboardModifiers modifiers = {})
{
    QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), key, text, modifiers);
}

} // namespace

std::vector<SacredText> tst_SacredTextTyping::typedTexts()
{
    // Control characters, noncharacters and halves of pairs come from no key.
    const QStringList fromNoKey{QStringLiteral("lone high surrogates"),
                                QStringLiteral("lone low surrogates"),
                                QStringLiteral("surrogates the wrong way round"),
                                QStringLiteral("NUL"),
                                QStringLiteral("nothing but NUL"),
                                QStringLiteral("control characters"),
                                QStringLiteral("tab, form feed, vertical tab"),
                                QStringLiteral("noncharacters"),
                                QStringLiteral("200,000 characters")};
    std::vector<SacredText> texts = heldTexts();
    std::erase_if(texts, [&fromNoKey](const SacredText &text) {
        return text.given.isEmpty() || fromNoKey.contains(QString::fromLatin1(text.name));
    });
    return texts;
}

void tst_SacredTextTyping::rows(const std::vector<SacredText> &texts)
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("held");
    for (const char *place : editedPlaces) {
        for (const SacredText &text : texts) {
            if (!text.given.isEmpty())
                QTest::newRow((QByteArray(place) + ": " + text.name).constData())
                    << QString::fromLatin1(place) << text.given << text.held;
        }
    }
}

void tst_SacredTextTyping::places()
{
    QTest::addColumn<QString>("place");
    for (const char *place : editedPlaces)
        QTest::newRow(place) << QString::fromLatin1(place);
}

// One event, which is the whole story, in a window that has the keyboard.
void tst_SacredTextTyping::init()
{
    failOnWarningsButOfFonts();
    home = std::make_unique<PrivateHome>();
    window = std::make_unique<MainWindow>();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    addEvent(view()->nodegraphScene(), QStringLiteral("Dawn"), QStringLiteral("It begins."));
    node()->setPos(20, 30);
    view()->horizontalScrollBar()->setValue(0);
    view()->verticalScrollBar()->setValue(0);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

QGraphicsTextItem *tst_SacredTextTyping::textAt(const QString &place) const
{
    if (place == QLatin1String("title"))
        return node()->nameItem();
    return place == QLatin1String("description") ? descriptionOf(node()) : descriptionOf(entry());
}

/// Clicks into the text and selects all of it, so that whatever comes replaces it.
void tst_SacredTextTyping::startEditing(const QString &place)
{
    edited = place;
    const QGraphicsTextItem *text = textAt(place);
    const QGraphicsView *canvas = text->scene()->views().front();
    const QPointF middle = text->mapToScene(text->boundingRect().center());
    QTest::mouseClick(canvas->viewport(), Qt::LeftButton, {}, canvas->mapFromScene(middle));
    QVERIFY(text->hasFocus());
    typeKey(Qt::Key_A, QStringLiteral("a"), Qt::ControlModifier);
    QVERIFY(text->textCursor().hasSelection());
}

/// Types one key a character.
void tst_SacredTextTyping::type(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair = text[i].isHighSurrogate() && i + 1 < text.size();
        if (text[i] == u'\n')
            typeKey(Qt::Key_Return, QStringLiteral("\r"));
        else if (text[i] == QChar::LineSeparator)
            typeKey(Qt::Key_Return, QStringLiteral("\r"), Qt::ShiftModifier);
        else
            typeKey(Qt::Key(0), text.mid(i, pair ? 2 : 1));
        i += pair ? 1 : 0;
    }
}

void tst_SacredTextTyping::paste(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
    typeKey(Qt::Key_V, QStringLiteral("v"), Qt::ControlModifier);
}

/// What the saved text, the node's and the panel's differ in from what they should be; empty if in nothing.
QString tst_SacredTextTyping::changeOnSaving(const QString &should)
{
    const bool isTitle = edited == QLatin1String("title");
    const QStringList saved = textsOnSaving(*window, *home);
    const QString other = isTitle ? QStringLiteral("It begins.") : QStringLiteral("Dawn");
    if (saved.size() != 2 || saved[isTitle ? 1 : 0] != other)
        return QStringLiteral("the other text");
    QString change = changeOf(should, saved[isTitle ? 0 : 1]);
    if (!change.isEmpty())
        return QStringLiteral("saved: ") + change;
    change = changeOf(should, heldBy(textAt(edited)));
    if (!change.isEmpty())
        return QStringLiteral("edited: ") + change;
    change = changeOf(heldBy(descriptionOf(node())), heldBy(descriptionOf(entry())));
    return change.isEmpty() ? QString() : QStringLiteral("panel: ") + change;
}

void tst_SacredTextTyping::typedText()
{
    QFETCH(QString, place);
    QFETCH(QString, given);
    QFETCH(QString, held);
    startEditing(place);
    type(given);
    QCOMPARE(changeOnSaving(held), QString());
}

void tst_SacredTextTyping::composedText()
{
    QFETCH(QString, place);
    QFETCH(QString, given);
    QFETCH(QString, held);
    startEditing(place);
    QInputMethodEvent composing(QStringLiteral("not yet"), {});
    QApplication::sendEvent(QApplication::focusWidget(), &composing);
    QInputMethodEvent done;
    done.setCommitString(given);
    QApplication::sendEvent(QApplication::focusWidget(), &done);
    QCOMPARE(changeOnSaving(held), QString());
}

void tst_SacredTextTyping::pastedText()
{
    QFETCH(QString, place);
    QFETCH(QString, given);
    QFETCH(QString, held);
    startEditing(place);
    paste(given);
    QCOMPARE(changeOnSaving(held), QString());
}

void tst_SacredTextTyping::everyUnitThatADocumentHoldsCanBePasted()
{
    QFETCH(QString, place);
    startEditing(place);
    paste(allHeldUnits());
    QCOMPARE(changeOnSaving(allHeldUnits()), QString());
}

// By the text's own history, which is not the graph's.
void tst_SacredTextTyping::undoneAndRedoneText()
{
    QFETCH(QString, place);
    QFETCH(QString, given);
    QFETCH(QString, held);
    startEditing(place);
    paste(given);
    typeKey(Qt::Key_A, QStringLiteral("a"), Qt::ControlModifier);
    typeKey(Qt::Key_X, QStringLiteral("x"));
    QCOMPARE(changeOnSaving(QStringLiteral("x")), QString());
    while (heldBy(textAt(place)) != held && textAt(place)->document()->isUndoAvailable())
        typeKey(Qt::Key_Z, QStringLiteral("z"), Qt::ControlModifier);
    QCOMPARE(changeOnSaving(held), QString());
    while (textAt(place)->document()->isRedoAvailable())
        typeKey(Qt::Key_Y, QStringLiteral("y"), Qt::ControlModifier);
    QCOMPARE(changeOnSaving(QStringLiteral("x")), QString());
}

void tst_SacredTextTyping::oneUnitMakesADifference_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("former");
    QTest::addColumn<QString>("given");
    const std::tuple<const char *, QString, QString> changes[] = {
        {"a space to a no-break space", QStringLiteral(" "), QStringLiteral("\u00a0")},
        {"a no-break space to a space", QStringLiteral("\u00a0"), QStringLiteral(" ")},
        {"a line feed to a line separator", QStringLiteral("\n"), QStringLiteral("\u2028")},
        {"a line separator to a line feed", QStringLiteral("\u2028"), QStringLiteral("\n")},
        {"composed to combining", QStringLiteral("\u00e9"), QStringLiteral("e\u0301")},
        {"nothing to a joiner", QString(), QStringLiteral("\u200d")}};
    for (const char *place : editedPlaces) {
        for (const auto &[name, former, given] : changes)
            QTest::newRow((QByteArray(place) + ": " + name).constData())
                << QString::fromLatin1(place) << former << given;
    }
}

// Told to the panel and back although both look the same.
void tst_SacredTextTyping::oneUnitMakesADifference()
{
    QFETCH(QString, place);
    QFETCH(QString, former);
    QFETCH(QString, given);
    startEditing(place);
    paste(u'a' + former + u'b');
    QCOMPARE(changeOnSaving(u'a' + former + u'b'), QString());
    QTextCursor middle(textAt(place)->document());
    middle.setPosition(1);
    middle.setPosition(1 + int(former.size()), QTextCursor::KeepAnchor);
    textAt(place)->setTextCursor(middle);
    type(given);
    QCOMPARE(changeOnSaving(u'a' + given + u'b'), QString());
}

void tst_SacredTextTyping::breakOfALineIsNotOneOfAParagraph()
{
    QFETCH(QString, place);
    startEditing(place);
    typeKey(Qt::Key_A, QStringLiteral("a"));
    typeKey(Qt::Key_Return, QStringLiteral("\r"));
    typeKey(Qt::Key_B, QStringLiteral("b"));
    typeKey(Qt::Key_Return, QStringLiteral("\r"), Qt::ShiftModifier);
    typeKey(Qt::Key_C, QStringLiteral("c"));
    QCOMPARE(changeOnSaving(QStringLiteral("a\nb\u2028c")), QString());
}

void tst_SacredTextTyping::keysThatStandForNoCharacterLeaveTheTextAlone()
{
    QFETCH(QString, place);
    startEditing(place);
    typeKey(Qt::Key_A, QStringLiteral("a"));
    for (const char16_t code : {u'\x01', u'\x1b', u'\x7f', u'\x80', char16_t(0xd83d), char16_t(0xde00),
                                char16_t(0xfdd0), char16_t(0xfdd1), char16_t(0xfffe), char16_t(0xffff)})
        typeKey(Qt::Key(0), unit(code));
    typeKey(Qt::Key(0), unit(0));
    typeKey(Qt::Key_B, QStringLiteral("b"));
    QCOMPARE(changeOnSaving(QStringLiteral("ab")), QString());
}

// What a text puts on the clipboard is plain text for any program, in which Qt spells both as their
// neighbours.
void tst_SacredTextTyping::textCopiedInsideATextLosesWhatPlainTextLeavesOut()
{
    QFETCH(QString, place);
    startEditing(place);
    paste(QStringLiteral("a\u00a0b\u2028c"));
    typeKey(Qt::Key_A, QStringLiteral("a"), Qt::ControlModifier);
    typeKey(Qt::Key_C, QStringLiteral("c"), Qt::ControlModifier);
    QCOMPARE(changeOf(QStringLiteral("a b\nc"), QGuiApplication::clipboard()->mimeData()->text()), QString());
    QCOMPARE(changeOnSaving(QStringLiteral("a\u00a0b\u2028c")), QString());
    typeKey(Qt::Key_V, QStringLiteral("v"), Qt::ControlModifier);
    QCOMPARE(changeOnSaving(QStringLiteral("a b\nc")), QString());
}

QTEST_MAIN(tst_SacredTextTyping)
#include "tst_sacredtext_typing.moc"
