#include "app/applicationpalette.h"
#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QDir>
#include <QImage>
#include <QMenu>
#include <QPushButton>

#include <cmath>

// What the program looks like, beside pictures that were looked at and kept. Run with different scale
// factors, each of which has its own pictures. FABLEGRID_KEEP_RENDERS=1 in the environment replaces them.

namespace {

constexpr int tile = 8;                // physical pixels; letters of another font renderer differ within
constexpr double mostTileDiffers = 40; // of 255, in the tile that differs most
constexpr double mostOnAverage = 1.5;

QString scaleName() { return QString::number(qApp->devicePixelRatio()).replace(u'.', u'_'); }

/// By how much the mean of red, green or blue in that tile differs, whichever differs most.
double tileDifference(const QImage &one, const QImage &other, int left, int top)
{
    double red = 0;
    double green = 0;
    double blue = 0;
    int count = 0;
    for (int y = top; y < qMin(top + tile, one.height()); ++y) {
        for (int x = left; x < qMin(left + tile, one.width()); ++x) {
            red += qRed(one.pixel(x, y)) - qRed(other.pixel(x, y));
            green += qGreen(one.pixel(x, y)) - qGreen(other.pixel(x, y));
            blue += qBlue(one.pixel(x, y)) - qBlue(other.pixel(x, y));
            ++count;
        }
    }
    return std::max({std::abs(red), std::abs(green), std::abs(blue)}) / count;
}

/// Empty if both look alike; font renderers may differ a little.
QString difference(const QImage &actual, const QImage &reference)
{
    if (actual.size() != reference.size())
        return QStringLiteral("%1 x %2 instead of %3 x %4")
            .arg(actual.width())
            .arg(actual.height())
            .arg(reference.width())
            .arg(reference.height());
    double worst = 0;
    double sum = 0;
    int tiles = 0;
    QPoint place;
    for (int y = 0; y < actual.height(); y += tile) {
        for (int x = 0; x < actual.width(); x += tile) {
            const double differs = tileDifference(actual, reference, x, y);
            sum += differs;
            ++tiles;
            if (differs > worst) {
                worst = differs;
                place = QPoint(x, y);
            }
        }
    }
    if (worst <= mostTileDiffers && sum / tiles <= mostOnAverage)
        return {};
    return QStringLiteral("differs by %1 at (%2, %3), by %4 on average")
        .arg(worst)
        .arg(place.x())
        .arg(place.y())
        .arg(sum / tiles);
}

void compareWithReference(const QPixmap &shown, const QString &name)
{
    const QImage actual = shown.toImage().convertToFormat(QImage::Format_RGB32);
    const QString file = QStringLiteral("%1-%2.png").arg(name, scaleName());
    const QString path = QStringLiteral(FABLEGRID_RENDERS "/") + file;
    if (qEnvironmentVariableIsSet("FABLEGRID_KEEP_RENDERS")) {
        QVERIFY(actual.save(path, "PNG", 0)); // as small as can be
        return;
    }
    const QImage reference(path);
    QVERIFY2(!reference.isNull(), qPrintable(path));
    const QString differs = difference(actual, reference);
    if (!differs.isEmpty())
        actual.save(file); // in the folder of the build, to be looked at
    QVERIFY2(differs.isEmpty(), qPrintable(file + u' ' + differs));
}

} // namespace

class tst_Renders : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        dressApplication();
        QApplication::setCursorFlashTime(0);
        ordinary = QApplication::font();
    }
    void init()
    {
        // What the offscreen platform says of itself when a menu comes up is not the program's.
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support )")));
    }
    void cleanup()
    {
        window.reset();
        QApplication::setFont(ordinary);
        flushDeferredDeletes();
    }

    void comparisonSeesWhatIsMissing();
    void windowLooksAsBefore_data();
    void windowLooksAsBefore();
    void menuLooksAsBefore();
    void questionLooksAsBefore();
    void zoomedCanvasLooksAsBefore_data();
    void zoomedCanvasLooksAsBefore();

private:
    void showWindow(QSize size);
    void open(const QString &file);

    PrivateHome home;
    QFont ordinary;
    std::unique_ptr<MainWindow> window;
};

void tst_Renders::showWindow(QSize size)
{
    window = std::make_unique<MainWindow>();
    window->resize(size);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QCOMPARE(window->size(), size);
}

void tst_Renders::open(const QString &file)
{
    window->loadFrom(file);
    QCoreApplication::processEvents();
}

/// Ten rows of events in all their states, joined one after the other.
static QString longStory(const QTemporaryDir &folder)
{
    std::vector<Record> records;
    for (int i = 0; i < 100; ++i) {
        Record record;
        record.title = QStringLiteral("Event %1").arg(i);
        record.pos = QPointF(600 * (i % 10), 350 * (i / 10)); // NOLINT(bugprone-integer-division)
        record.index = i;
        record.upstream = i - 1;
        record.endOfStory = i == 99;
        record.important = i % 7 == 3;
        record.description = QStringLiteral("Some words of what happens here. ").repeated(1 + i % 4);
        records.push_back(record);
    }
    const QString path = folder.filePath(QStringLiteral("long.scene"));
    writeFile(path, documentBytes({records}));
    return path;
}

void tst_Renders::comparisonSeesWhatIsMissing()
{
    QImage whole(400, 200, QImage::Format_RGB32);
    whole.fill(QColor(54, 54, 54));
    QImage other = whole;
    QCOMPARE(difference(other, whole), QString());
    for (int x = 40; x < 80; ++x) {
        for (int y = 40; y < 52; ++y)
            other.setPixelColor(x, y, QColor(230, 230, 230)); // a word
    }
    QVERIFY(!difference(other, whole).isEmpty());
    QVERIFY(!difference(whole.scaled(200, 100), whole).isEmpty());
    // The end of the story and an important event are equally bright.
    other = whole;
    QPainter(&whole).fillRect(40, 40, 60, 30, QColor(0xD6, 0xB4, 0xFC));
    QPainter(&other).fillRect(40, 40, 60, 30, QColor(0xAD, 0xD8, 0xE6));
    QVERIFY(!difference(other, whole).isEmpty());
}

void tst_Renders::windowLooksAsBefore_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("points");
    QTest::newRow("window") << QSize(1440, 748) << 9.0;
    QTest::newRow("smallest-window") << QSize(962, 601) << 9.0;
    QTest::newRow("large-font") << QSize(1440, 748) << 18.0;
    QTest::newRow("smallest-window-large-font") << QSize(962, 601) << 18.0;
}

void tst_Renders::windowLooksAsBefore()
{
    QFETCH(const QSize, size);
    QFETCH(const double, points);
    QFont font = ordinary;
    font.setPointSizeF(points);
    QApplication::setFont(font);
    showWindow(size);
    open(QStringLiteral(FABLEGRID_EXAMPLES "/the-lighthouse.scene"));
    window->addNodeGraphTab();
    NodegraphScene *scene = sceneOf(*window, 0);
    scene->sl_deselectCurrentNode();
    scene->deselectAll();
    window->sl_frame();
    scene->nodes().front()->setSelected(true);
    compareWithReference(window->grab(), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_Renders::menuLooksAsBefore()
{
    showWindow(QSize(1440, 748));
    auto *menu = window->findChild<QMenu *>(QStringLiteral("menuEdit"));
    menu->popup(window->mapToGlobal(QPoint(100, 100)));
    menu->actions().at(4)->setEnabled(false);
    menu->setActiveAction(menu->actions().at(2));
    compareWithReference(menu->grab(), QStringLiteral("menu"));
    menu->close();
}

void tst_Renders::questionLooksAsBefore()
{
    showWindow(QSize(1440, 748));
    window->addNodeGraphTab();
    QPixmap shown;
    const DialogAnswers answers({[&shown](QDialog *dialog) {
        shown = dialog->grab();
        press(QMessageBox::Cancel)(dialog);
    }});
    window->closeTab(1);
    compareWithReference(shown, QStringLiteral("question"));
}

void tst_Renders::zoomedCanvasLooksAsBefore_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("canvas-at-200") << 2.0;
    QTest::newRow("canvas-at-100") << 1.0;
    QTest::newRow("canvas-at-50") << 0.5;
    QTest::newRow("canvas-at-20") << 0.2;
    QTest::newRow("canvas-at-19") << 0.19;
    QTest::newRow("canvas-at-5") << 0.05;
}

void tst_Renders::zoomedCanvasLooksAsBefore()
{
    QFETCH(const double, scale);
    const QTemporaryDir folder;
    showWindow(QSize(1440, 748));
    open(longStory(folder));
    NodegraphView *view = window->views().front();
    NodegraphScene *scene = sceneOf(*window, 0);
    scene->sl_deselectCurrentNode();
    scene->nodes().at(44)->setSelected(true);
    view->setTransform(QTransform::fromScale(scale, scale));
    view->centerOn(scene->nodes().at(44));
    compareWithReference(view->viewport()->grab(), QString::fromLatin1(QTest::currentDataTag()));
}

QTEST_MAIN(tst_Renders)
#include "tst_renders.moc"
