#include "items/textediting.h"

#include "items/itemtest.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QGraphicsSceneDragDropEvent>
#include <QKeyEvent>
#include <QTextDocument>

namespace {

/// A text of either kind in a window, on black, with the focus.
struct TextDesk : Desk
{
    QGraphicsTextItem *text = nullptr;

    TextDesk(bool isTitle, const QString &content)
    {
        scene.setBackgroundBrush(Qt::black);
        if (isTitle)
            text = new STNodeName(nullptr);
        else
            text = new STLineEdit(QStringLiteral("Enter description"), 400.0, nullptr);
        scene.addItem(text);
        text->setPos(100, 100);
        text->setPlainText(content);
        edit(text);
    }

    QImage image()
    {
        text->clearFocus();
        return painted(scene, QRectF(90, 90, 600, 300));
    }
};

void addKinds()
{
    QTest::newRow("title") << true;
    QTest::newRow("description") << false;
}

const QString html =
    QStringLiteral("<h1 style='color:red'>loud <i>rain</i></h1><table><tr><td>x</td></tr></table>");
const QString plain = QStringLiteral("loud rain");

} // namespace

class tst_TextEditing : public TestCase
{
    Q_OBJECT

private slots:
    void pastedTextIsPlain_data() { kinds(); }
    void pastedTextIsPlain();
    void droppedTextIsPlain_data() { kinds(); }
    void droppedTextIsPlain();
    void textClaimsItsEditingKeysOnly_data();
    void textClaimsItsEditingKeysOnly();
    void textTakesUndoAndRedoByKey_data();
    void textTakesUndoAndRedoByKey();

private:
    static void kinds()
    {
        QTest::addColumn<bool>("isTitle");
        addKinds();
    }
};

// What was pasted with its formats looked different from what was saved: only plain text is.
void tst_TextEditing::pastedTextIsPlain()
{
    QFETCH(bool, isTitle);
    TextDesk desk(isTitle, QStringLiteral("Old "));
    desk.paste(html, plain);
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Old loud rain"));
    TextDesk typed(isTitle, QStringLiteral("Old loud rain"));
    QCOMPARE(desk.image(), typed.image());
    desk.edit(desk.text);
    desk.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Old "));
}

void tst_TextEditing::droppedTextIsPlain()
{
    QFETCH(bool, isTitle);
    TextDesk desk(isTitle, QStringLiteral("Old "));
    QMimeData mime;
    mime.setText(plain);
    mime.setHtml(html);
    const QPoint end = desk.view.mapFromScene(desk.text->sceneBoundingRect().center() + QPointF(0, 2));
    QDragEnterEvent enter(end, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(desk.view.viewport(), &enter);
    QDragMoveEvent move(end, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(desk.view.viewport(), &move);
    QDropEvent drop(end, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(desk.view.viewport(), &drop);
    const QString text = desk.text->toPlainText();
    QVERIFY2(text.contains(plain), qPrintable(text));
    QCOMPARE(text.size(), 4 + plain.size());
    TextDesk typed(isTitle, text);
    QCOMPARE(desk.image(), typed.image());
}

void tst_TextEditing::textClaimsItsEditingKeysOnly_data()
{
    QTest::addColumn<bool>("isTitle");
    QTest::addColumn<QKeySequence>("keys");
    QTest::addColumn<bool>("claimed");
    const auto rows = [](const std::vector<const char *> &all, bool claimed) {
        for (const char *keys : all) {
            for (const bool isTitle : {true, false}) {
                QTest::addRow("%s in the %s", keys, isTitle ? "title" : "description")
                    << isTitle << QKeySequence(QString::fromLatin1(keys)) << claimed;
            }
        }
    };
    rows({"Ctrl+Z", "Ctrl+Shift+Z", "Ctrl+Y", "Ctrl+C", "Ctrl+X", "Ctrl+V", "Ctrl+A", "Del", "Backspace"},
         true);
    rows({"Ctrl+S", "Ctrl+N", "Ctrl+O", "Ctrl+Shift+A"}, false); // the window's
}

void tst_TextEditing::textClaimsItsEditingKeysOnly()
{
    QFETCH(bool, isTitle);
    QFETCH(QKeySequence, keys);
    TextDesk desk(isTitle, QStringLiteral("Rain"));
    QKeyEvent event(QEvent::ShortcutOverride, keys[0].key(), keys[0].keyboardModifiers());
    event.ignore();
    QCoreApplication::sendEvent(&desk.view, &event);
    QTEST(event.isAccepted(), "claimed");
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rain")); // asked, not done
}

void tst_TextEditing::textTakesUndoAndRedoByKey_data()
{
    QTest::addColumn<bool>("isTitle");
    QTest::addColumn<QKeySequence>("redo");
    for (const bool isTitle : {true, false}) {
        for (const char *redo : {"Ctrl+Shift+Z", "Ctrl+Y"}) {
            QTest::addRow("%s in the %s", redo, isTitle ? "title" : "description")
                << isTitle << QKeySequence(QString::fromLatin1(redo));
        }
    }
}

void tst_TextEditing::textTakesUndoAndRedoByKey()
{
    QFETCH(bool, isTitle);
    QFETCH(QKeySequence, redo);
    TextDesk desk(isTitle, QStringLiteral("Rain"));
    desk.type(QStringLiteral("s"));
    desk.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rain"));
    desk.key(redo[0].key(), redo[0].keyboardModifiers());
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rains"));
    desk.type(QStringLiteral("!"));
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rains!")); // the cursor followed
}

QTEST_MAIN(tst_TextEditing)
#include "tst_textediting.moc"
