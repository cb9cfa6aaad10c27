#include "scene/pointing.h"

#include "support/testsupport.h"

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QScrollBar>

class tst_Pointing : public TestCase
{
    Q_OBJECT

private slots:
    void topmostItemIsMeant();
    void pixelThatAnItemTouchesIsOfIt();
    void withoutAViewThePointDecides();
    void lastPlaceOfTheMouse();
    void middleOfWhatIsShownWithoutOne();
};

namespace {

/// A canvas and a view of it, with an item that covers a tenth of a pixel of the one at (100, 100).
struct Shown
{
    Shown()
    {
        scene.setSceneRect(0, 0, 1000, 1000);
        item = scene.addRect(QRectF(100.9, 100, 50, 50), QPen(Qt::NoPen), Qt::white);
        view.setFrameStyle(QFrame::NoFrame);
        view.resize(200, 200);
        view.show();
        view.horizontalScrollBar()->setValue(0);
        view.verticalScrollBar()->setValue(0);
    }
    /// A press on that pixel of the view.
    QGraphicsItem *under(QPoint pixel, bool isOfTheView = true) const
    {
        QGraphicsSceneMouseEvent press(QEvent::GraphicsSceneMousePress);
        press.setWidget(isOfTheView ? view.viewport() : nullptr);
        press.setScreenPos(view.viewport()->mapToGlobal(pixel));
        press.setScenePos(pixel);
        return itemUnder(scene, press);
    }

    QGraphicsScene scene;
    QGraphicsRectItem *item = nullptr;
    QGraphicsView view{&scene};
};

} // namespace

void tst_Pointing::topmostItemIsMeant()
{
    Shown shown;
    QCOMPARE(shown.under({50, 50}), nullptr);
    QCOMPARE(shown.under({120, 120}), shown.item);
    const QGraphicsItem *above = shown.scene.addRect(QRectF(110, 110, 20, 20));
    QCOMPARE(shown.under({120, 120}), above);
}

void tst_Pointing::pixelThatAnItemTouchesIsOfIt()
{
    const Shown shown;
    QCOMPARE(shown.under({100, 120}), shown.item);
    QCOMPARE(shown.under({99, 120}), nullptr);
}

void tst_Pointing::withoutAViewThePointDecides()
{
    const Shown shown;
    QCOMPARE(shown.under({100, 120}, false), nullptr);
    QCOMPARE(shown.under({101, 120}, false), shown.item);
}

void tst_Pointing::lastPlaceOfTheMouse()
{
    const Shown shown;
    QCOMPARE(placeOfPointer(shown.scene, QPointF(3, 4)), QPointF(3, 4));
    const QGraphicsScene unseen;
    QCOMPARE(placeOfPointer(unseen, QPointF(3, 4)), QPointF(3, 4));
}

void tst_Pointing::middleOfWhatIsShownWithoutOne()
{
    Shown shown;
    const QPointF middle = placeOfPointer(shown.scene, std::nullopt);
    QCOMPARE(middle, shown.view.mapToScene(shown.view.viewport()->rect().center()));
    shown.view.horizontalScrollBar()->setValue(300);
    QCOMPARE(placeOfPointer(shown.scene, std::nullopt), middle + QPointF(300, 0));
    const QGraphicsScene unseen;
    QCOMPARE(placeOfPointer(unseen, std::nullopt), QPointF());
}

QTEST_MAIN(tst_Pointing)
#include "tst_pointing.moc"
