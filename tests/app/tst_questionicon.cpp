#include "app/applicationpalette.h"
#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QImage>
#include <QLabel>
#include <QStyle>

// The icon of the questions as it is shown where the desktop has none. Run at several device pixel ratios.

class tst_QuestionIcon : public ProgramTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        dressApplication();
    }

    void hasAsManyPixelsAsTheScreenShows();
    void desktopsOwnIconGoesFirst();

private:
    static QPixmap shownIcon();
    PrivateHome home;
};

QPixmap tst_QuestionIcon::shownIcon()
{
    MainWindow window;
    window.addNodeGraphTab();
    QPixmap icon;
    const DialogAnswers answers({[&icon](QDialog *dialog) {
        icon = dialog->findChild<QLabel *>(QStringLiteral("qt_msgboxex_icon_label"))->pixmap();
        press(QMessageBox::Cancel)(dialog);
    }});
    window.closeTab(1);
    return answers.problem().isEmpty() ? icon : QPixmap();
}

// Qt's own picture has too few pixels, and a screen of the double ratio showed each of them as several.
void tst_QuestionIcon::hasAsManyPixelsAsTheScreenShows()
{
    const QPixmap icon = shownIcon();
    const int size = QApplication::style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    QCOMPARE(icon.devicePixelRatio(), qApp->devicePixelRatio());
    QCOMPARE(icon.deviceIndependentSize(), QSizeF(size, size));
    const QImage picture = icon.toImage();
    int sharp = 0; // squares of two by two pixels that are not one pixel enlarged
    for (int y = 0; y + 1 < picture.height(); y += 2) {
        for (int x = 0; x + 1 < picture.width(); x += 2) {
            const QRgb first = picture.pixel(x, y);
            sharp += first != picture.pixel(x + 1, y) || first != picture.pixel(x, y + 1) ? 1 : 0;
        }
    }
    QVERIFY2(sharp > picture.width(), qPrintable(QString::number(sharp)));
}

void tst_QuestionIcon::desktopsOwnIconGoesFirst()
{
    const QTemporaryDir themes;
    QVERIFY(QDir(themes.path()).mkpath(QStringLiteral("desktop/32")));
    QVERIFY(writeFile(themes.filePath(QStringLiteral("desktop/index.theme")),
                      "[Icon Theme]\nName=Desktop\nDirectories=32\n[32]\nSize=32\n"));
    QImage red(32, 32, QImage::Format_RGB32);
    red.fill(Qt::red);
    QVERIFY(red.save(themes.filePath(QStringLiteral("desktop/32/dialog-question.png"))));
    const QStringList paths = QIcon::themeSearchPaths();
    const QString theme = QIcon::themeName();
    QIcon::setThemeSearchPaths(paths + QStringList{themes.path()});
    QIcon::setThemeName(QStringLiteral("desktop"));
    dressApplication();
    const QColor shown = shownIcon().toImage().pixelColor(4, 4);
    // One without that icon leaves it to the program's.
    QVERIFY(QFile::remove(themes.filePath(QStringLiteral("desktop/32/dialog-question.png"))));
    QIcon::setThemeSearchPaths(paths + QStringList{themes.path(), QStringLiteral("/nowhere")});
    const QPixmap fallback = shownIcon();
    QIcon::setThemeSearchPaths(paths);
    QIcon::setThemeName(theme);
    QCOMPARE(shown, QColor(Qt::red));
    QCOMPARE(fallback.toImage(), shownIcon().toImage());
}

QTEST_MAIN(tst_QuestionIcon)
#include "tst_questionicon.moc"
