#include "app/applicationpalette.h"
#include "app/contrast.h"
#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace {

/// Light text on a dark ground, and readable.
void compareLightOnDark(const Painted &colours)
{
    QVERIFY2(luminance(colours.background) < 0.1, qPrintable(colours.background.name()));
    QVERIFY2(luminance(colours.text) > 0.5, qPrintable(colours.text.name()));
    QVERIFY(contrast(colours.text, colours.background) >= readable);
}

} // namespace

class tst_ApplicationPalette : public ProgramTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        QApplication::setPalette(applicationPalette());
    }

    void textIsReadable_data();
    void textIsReadable();
    void disabledTextIsReadableAndDarker_data();
    void disabledTextIsReadableAndDarker();
    void paletteIsDark();

    void tabTitlesAreLight_data();
    void tabTitlesAreLight();
    void dockTitleIsLight();
    void questionIsLight();

private:
    PrivateHome home;
};

void tst_ApplicationPalette::textIsReadable_data()
{
    QTest::addColumn<QPalette::ColorGroup>("group");
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("ground");
    struct Row
    {
        const char *name;
        QPalette::ColorRole text;
        QPalette::ColorRole ground;
    };
    const std::vector<Row> rows{
        {"text in a window", QPalette::WindowText, QPalette::Window},
        {"text in a field", QPalette::Text, QPalette::Base},
        {"text in every second row", QPalette::Text, QPalette::AlternateBase},
        {"text of a button", QPalette::ButtonText, QPalette::Button},
        {"text of a button in a window", QPalette::ButtonText, QPalette::Window},
        {"emphasised text in a window", QPalette::BrightText, QPalette::Window},
        {"emphasised text in a field", QPalette::BrightText, QPalette::Base},
        {"tool tip", QPalette::ToolTipText, QPalette::ToolTipBase},
        {"selected text", QPalette::HighlightedText, QPalette::Highlight},
        {"placeholder in a field", QPalette::PlaceholderText, QPalette::Base},
        {"link in a window", QPalette::Link, QPalette::Window},
        {"link in a field", QPalette::Link, QPalette::Base},
        {"visited link in a window", QPalette::LinkVisited, QPalette::Window},
        {"visited link in a field", QPalette::LinkVisited, QPalette::Base},
    };
    for (const Row &row : rows) {
        QTest::addRow("%s, active", row.name) << QPalette::Active << row.text << row.ground;
        QTest::addRow("%s, inactive", row.name) << QPalette::Inactive << row.text << row.ground;
    }
}

void tst_ApplicationPalette::textIsReadable()
{
    QFETCH(const QPalette::ColorGroup, group);
    QFETCH(const QPalette::ColorRole, text);
    QFETCH(const QPalette::ColorRole, ground);
    const QPalette palette = applicationPalette();
    const double measured = contrast(palette.color(group, text), palette.color(group, ground));
    QVERIFY2(measured >= readable, qPrintable(QString::number(measured)));
}

void tst_ApplicationPalette::disabledTextIsReadableAndDarker_data()
{
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("ground");
    QTest::newRow("in a window") << QPalette::WindowText << QPalette::Window;
    QTest::newRow("in a field") << QPalette::Text << QPalette::Base;
    QTest::newRow("on a button") << QPalette::ButtonText << QPalette::Button;
}

void tst_ApplicationPalette::disabledTextIsReadableAndDarker()
{
    QFETCH(const QPalette::ColorRole, text);
    QFETCH(const QPalette::ColorRole, ground);
    const QPalette palette = applicationPalette();
    const QColor disabled = palette.color(QPalette::Disabled, text);
    QVERIFY(contrast(disabled, palette.color(QPalette::Disabled, ground)) >= readable);
    QVERIFY(luminance(disabled) < luminance(palette.color(QPalette::Active, text)));
}

void tst_ApplicationPalette::paletteIsDark()
{
    const QPalette palette = applicationPalette();
    QCOMPARE(palette.color(QPalette::Window), QColor(54, 54, 54)); // as the form's style sheet
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base, QPalette::AlternateBase,
                                           QPalette::Button, QPalette::ToolTipBase}) {
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            QVERIFY(luminance(palette.color(group, role)) < 0.1);
    }
}

void tst_ApplicationPalette::tabTitlesAreLight_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("current tab") << 0;
    QTest::newRow("other tab") << 1;
}

void tst_ApplicationPalette::tabTitlesAreLight()
{
    QFETCH(const int, index);
    MainWindow window;
    window.addNodeGraphTab();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTabBar *bar = tabsOf(window)->tabBar();
    // Only the title: the close button beside it has colours of its own.
    QRect title = bar->tabRect(index).adjusted(4, 4, -4, -4);
    for (const QTabBar::ButtonPosition side : {QTabBar::LeftSide, QTabBar::RightSide}) {
        if (const QWidget *button = bar->tabButton(index, side)) {
            if (button->geometry().center().x() > title.center().x())
                title.setRight(button->x() - 1);
            else
                title.setLeft(button->geometry().right() + 1);
        }
    }
    compareLightOnDark(painted(bar->grab(title).toImage()));
}

void tst_ApplicationPalette::dockTitleIsLight()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *dock = window.findChild<QWidget *>(QStringLiteral("Overviewer"));
    const int height = window.findChild<QWidget *>(QStringLiteral("Overviewer_frame"))->y();
    compareLightOnDark(painted(dock->grab(QRect(4, 2, 100, height - 4)).toImage()));
}

void tst_ApplicationPalette::questionIsLight()
{
    MainWindow window;
    window.addNodeGraphTab();
    QList<QImage> pictures;
    const DialogAnswers answers({[&pictures](QDialog *dialog) {
        pictures << dialog->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"))->grab().toImage();
        for (QAbstractButton *button : dialog->findChildren<QPushButton *>())
            pictures << button->grab(button->rect().adjusted(4, 4, -4, -4)).toImage();
        press(QMessageBox::Cancel)(dialog);
    }});
    window.closeTab(1);
    QCOMPARE(pictures.size(), 4);
    for (const QImage &picture : pictures)
        compareLightOnDark(painted(picture));
}

QTEST_MAIN(tst_ApplicationPalette)
#include "tst_applicationpalette.moc"
