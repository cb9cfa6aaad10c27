#include "app/applicationpalette.h"
#include "app/contrast.h"
#include "app/windowsupport.h"
#include "support/testsupport.h"

// The button that says whether the panel lists the important events only, measured from what is painted.

namespace {

/// The button without the pixels of its frame.
Painted faceOf(QWidget *button)
{
    constexpr int frame = 3;
    return painted(button->grab(button->rect().adjusted(frame, frame, -frame, -frame)).toImage());
}

} // namespace

class tst_FilterButton : public WindowTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        dressApplication();
    }

    void showsThatItIsDown_data();
    void showsThatItIsDown();
    void showsThatItHasTheKeyboard_data();
    void showsThatItHasTheKeyboard();

private:
    void prepare() override { showWindow(); }
};

void tst_FilterButton::showsThatItIsDown_data()
{
    QTest::addColumn<bool>("focused");
    QTest::addColumn<bool>("hovered");
    QTest::newRow("alone") << false << false;
    QTest::newRow("with the keyboard") << true << false;
    QTest::newRow("under the pointer") << false << true;
}

void tst_FilterButton::showsThatItIsDown()
{
    QFETCH(const bool, focused);
    QFETCH(const bool, hovered);
    QAbstractButton *filter = buttonOf(*window, "F1_button");
    if (focused)
        filter->setFocus(Qt::TabFocusReason);
    filter->setAttribute(Qt::WA_UnderMouse, hovered);
    const Painted up = faceOf(filter);
    filter->click();
    const Painted on = faceOf(filter);
    filter->setDown(true);
    const Painted pressed = faceOf(filter);
    filter->setDown(false);
    QVERIFY2(contrast(up.background, on.background) >= 1.5,
             qPrintable(up.background.name() + on.background.name()));
    for (const Painted &colours : {up, on, pressed})
        QVERIFY2(contrast(colours.text, colours.background) >= readable,
                 qPrintable(colours.text.name() + colours.background.name()));
    filter->click();
    QCOMPARE(faceOf(filter).background, up.background);
}

void tst_FilterButton::showsThatItHasTheKeyboard_data()
{
    QTest::addColumn<bool>("on");
    QTest::newRow("off") << false;
    QTest::newRow("on") << true;
}

void tst_FilterButton::showsThatItHasTheKeyboard()
{
    QFETCH(const bool, on);
    QAbstractButton *filter = buttonOf(*window, "F1_button");
    filter->setChecked(on);
    const QImage without = filter->grab().toImage();
    filter->setFocus(Qt::TabFocusReason);
    window->setAttribute(Qt::WA_KeyboardFocusChange); // as a press of Tab does
    const QImage with = filter->grab().toImage();
    int framed = 0; // columns whose upper edge looks otherwise
    for (int x = 0; x < with.width(); ++x) {
        double most = 1;
        for (int y = 0; y < 4; ++y)
            most = qMax(most, contrast(with.pixelColor(x, y), without.pixelColor(x, y)));
        framed += most >= 1.2 ? 1 : 0;
    }
    QVERIFY2(framed > with.width() * 8 / 10, qPrintable(QString::number(framed)));
}

QTEST_MAIN(tst_FilterButton)
#include "tst_filterbutton.moc"
