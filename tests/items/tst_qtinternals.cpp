#include "items/qtinternals.h"

#include "items/itemtest.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/// The item of the text's own menu that pastes.
QAction *pasteOfTheOpenMenu()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (auto *menu = qobject_cast<QMenu *>(window); menu && menu->isVisible())
            return menu->findChild<QAction *>(u"edit-paste"_s);
    }
    return nullptr;
}

} // namespace

class tst_QtInternals : public QObject
{
    Q_OBJECT

private slots:
    // Whatever Qt warns of fails a test, but that the platform cannot raise a menu or give it all keys.
    void init() { QTest::failOnWarning(QRegularExpression(u"^(?!This plugin does not support )"_s)); }
    void cleanup() { flushDeferredDeletes(); }

    void pasteOfTheTextsOwnMenuIsPlain_data();
    void pasteOfTheTextsOwnMenuIsPlain();
    void itemWithoutTheInternalStaysAsItIs();
};

void tst_QtInternals::pasteOfTheTextsOwnMenuIsPlain_data()
{
    QTest::addColumn<bool>("isTitle");
    QTest::newRow("title") << true;
    QTest::newRow("description") << false;
}

// It passes neither the item's keys nor its drops: what keeps formats away has to be told to Qt's own
// control.
void tst_QtInternals::pasteOfTheTextsOwnMenuIsPlain()
{
    QFETCH(const bool, isTitle);
    Desk desk;
    QGraphicsTextItem *text = nullptr;
    if (isTitle)
        text = new STNodeName(nullptr);
    else
        text = new STLineEdit(u"Enter description"_s, 400.0, nullptr);
    desk.scene.addItem(text);
    text->setPlainText(u"Old "_s);
    desk.edit(text);
    auto *mime = new QMimeData;
    mime->setText(u"loud rain"_s);
    mime->setHtml(u"<h1 style='color:red'>loud <i>rain</i></h1>"_s);
    QGuiApplication::clipboard()->setMimeData(mime);

    const QPoint place = desk.view.mapFromScene(text->mapToScene(text->boundingRect().center()));
    QContextMenuEvent menu(QContextMenuEvent::Mouse, place, desk.view.viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(desk.view.viewport(), &menu);
    QAction *paste = pasteOfTheOpenMenu();
    QVERIFY(paste);
    desk.edit(text);
    paste->trigger();
    QGuiApplication::clipboard()->clear();

    QCOMPARE(text->toPlainText(), u"Old loud rain"_s);
    const QString html = text->toHtml();
    QVERIFY2(!html.contains(u"red"_s) && !html.contains(u"italic"_s) && !html.contains(u"<h1"_s),
             qPrintable(html));
}

// As every item would be with a Qt that has it no more.
void tst_QtInternals::itemWithoutTheInternalStaysAsItIs()
{
    QGraphicsTextItem untouched;
    QVERIFY(!QtInternals::takePlainTextOnly(untouched));
    auto *other = new QObject(&untouched);
    QVERIFY(!QtInternals::takePlainTextOnly(untouched));
    QVERIFY(other->dynamicPropertyNames().isEmpty());

    STLineEdit text(u"Enter description"_s, 400.0, nullptr);
    QVERIFY(QtInternals::takePlainTextOnly(text));
}

QTEST_MAIN(tst_QtInternals)
#include "tst_qtinternals.moc"
