#include "app/badfiles.h"
#include "items/eventdata.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"

#include <QGraphicsView>
#include <QSignalSpy>
#include <QTextDocument>

using namespace Qt::StringLiterals;

// Texts that would keep a document busy for half a minute, and much longer: their beginning is shown until
// somebody is about to edit them.

namespace {

constexpr int eightMillion = 8'000'000; // units, 16 MB

void addTexts(int units)
{
    QTest::addColumn<QString>("text");
    const auto row = [units](const char *name, const QString &unit) {
        QTest::newRow(name) << unit.repeated(units / unit.size() + 1);
    };
    row("one word", u"x"_s);
    row("words", u"abc "_s);
    row("no-break spaces", u"abc\u00a0"_s);
    row("line feeds", u"\n"_s);
    row("emoji", QString::fromUcs4(U"\U0001F600"));
}

/// A node in a view, as if it had been read from a file.
struct LongNode
{
    LongNode()
    {
        node->setPos(100, 100);
        view.resize(600, 400);
        view.show();
        view.centerOn(node);
        QVERIFY(QTest::qWaitForWindowExposed(&view));
    }

    STLineEdit *description() const
    {
        return dynamic_cast<STLineEdit *>(node->payload()->eventContent()->childItems().constFirst());
    }
    STNodeName *title() const
    {
        for (QGraphicsItem *item : node->childItems()) {
            if (auto *name = dynamic_cast<STNodeName *>(item))
                return name;
        }
        return nullptr;
    }
    void press(const QGraphicsItem &item)
    {
        const QPoint place =
            view.mapFromScene(item.mapToScene(item.boundingRect().topLeft() + QPointF(30, 20)));
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
    }

    NodegraphScene scene;
    Node *node = scene.restoreNode({}, 0, 0, nullptr, QString());
    QGraphicsView view{&scene};
};

} // namespace

class tst_LongTexts : public TestCase
{
    Q_OBJECT

private slots:
    void shownIsTheBeginning_data();
    void shownIsTheBeginning();
    void descriptionIsWholeForWhoeverEditsIt_data() { addTexts(60000); }
    void descriptionIsWholeForWhoeverEditsIt();
    void titleIsWholeForWhoeverEditsIt_data() { addTexts(60000); }
    void titleIsWholeForWhoeverEditsIt();
    void sixteenMegabytesAreOpenedAndSaved_data() { addTexts(eightMillion); }
    void sixteenMegabytesAreOpenedAndSaved();
};

void tst_LongTexts::shownIsTheBeginning_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const QString fits = QString(50000, u'x');
    const QString smile = QString::fromUcs4(U"\U0001F600");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("fits") << fits << fits;
    QTest::newRow("one more") << fits + u'x' << QString(5000, u'x') + u'\u2026';
    QTest::newRow("letters of two units")
        << u'x' + smile.repeated(30000) << u'x' + smile.repeated(2499) + u'\u2026';
    const QString turn = u"a\u05D0"_s;
    QTest::newRow("a word that turns often") << turn.repeated(2500) << turn.repeated(2500);
    QTest::newRow("a word that turns too often")
        << turn.repeated(2501) << turn.repeated(2500) + QChar(u'\u2026');
    const QString words = u"a\u05D0 "_s.repeated(10000);
    QTest::newRow("words that turn") << words << words;
}

void tst_LongTexts::shownIsTheBeginning()
{
    QFETCH(const QString, text);
    QFETCH(const QString, shown);
    QCOMPARE(LongText::shown(text), shown);
    QCOMPARE(LongText::isLong(text), text != shown);
}

void tst_LongTexts::descriptionIsWholeForWhoeverEditsIt()
{
    QFETCH(const QString, text);
    LongNode shown;
    EventData *event = shown.node->payload()->eventContent();
    const QSignalSpy changes(event, &EventData::s_isChanged);
    event->setDescription(text);
    QCoreApplication::processEvents();
    shown.view.grab();
    STLineEdit *item = shown.description();
    QCOMPARE(item->document()->toRawText().size(), LongText::shown(text).size());
    QVERIFY(event->getDescription() == text);

    shown.press(*item);
    QVERIFY(item->hasFocus());
    QCOMPARE(item->document()->toRawText().size(), text.size());
    QVERIFY(event->getDescription() == text);
    QCOMPARE(changes.count(), 0);
    QVERIFY(shown.node->boundingRect().contains(shown.node->mapRectFromItem(item, item->boundingRect())));
    QTest::keyClick(shown.view.viewport(), 'q', Qt::NoModifier);
    QCOMPARE(event->getDescription().size(), text.size() + 1);
    QCOMPARE(changes.count(), 1);
}

void tst_LongTexts::titleIsWholeForWhoeverEditsIt()
{
    QFETCH(const QString, text);
    LongNode shown;
    shown.node->setNodeName(text);
    QCoreApplication::processEvents();
    shown.view.grab();
    STNodeName *item = shown.title();
    QCOMPARE(item->document()->toRawText().size(), LongText::shown(text).size());
    QVERIFY(shown.node->title() == text);
    QVERIFY(item->toolTip().size() <= 2 * LongText::shown(text).size());

    shown.press(*item);
    QCOMPARE(item->document()->toRawText().size(), text.size());
    QCOMPARE(item->textCursor().selectedText().size(), text.size()); // as of any title that is pressed
    QVERIFY(shown.node->title() == text);
}

// Whole, each of them would take minutes here.
void tst_LongTexts::sixteenMegabytesAreOpenedAndSaved()
{
    QFETCH(const QString, text);
    FileOpener opener;
    const Record titled{text, {}, 0, -1, true, false, u"A"_s};
    const Record described{u"A"_s, {}, 0, -1, true, false, text};
    for (const Record &record : {titled, described}) {
        const QByteArray bytes = documentBytes({{record}});
        const ScratchFolder folder;
        const QString path = folder.filePath(u"long.scene"_s);
        QVERIFY(writeFile(path, bytes));
        opener.window().loadFrom(path);
        opener.window().resize(800, 600);
        opener.window().grab();
        opener.window().addEventNode();
        opener.window().grab();
        opener.window().sl_undo();
        QVERIFY(opener.bytes() == bytes);
        opener.window().clearTabs();
    }
    QCOMPARE(opener.takeWarnings(), QStringList());
}

QTEST_MAIN(tst_LongTexts)
#include "tst_longtexts.moc"
