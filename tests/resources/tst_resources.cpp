#include <QFile>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QRegularExpression>
#include <QResource>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString appPng = u":/Logo/Assets/Logo/logo - Square (Fill) - App 1.png"_s;
const QString appSvg = u":/Logo/Assets/Logo/logo - Square (Fill) - App 1.svg"_s;
const QString clippedPng = u":/Logo/Assets/Logo/logo - Fill Clipped 4.png"_s;
const QString windowsIcon = u":/Logo/Assets/Logo/logo - Transparent Clipped.ico"_s;
const QString addNodePng = u":/Icons/Assets/Icons/Add Node.png"_s;

const QColor background("#424242");
const QColor bar("#EDEDED");
const QColor square("#70B0FB");

QRgb pixel(const QImage &image, const QPoint &at)
{
    return image.convertToFormat(QImage::Format_ARGB32).pixel(at);
}

} // namespace

// The macro declares a function of the global namespace, so it cannot stand inside a class or a namespace.
static void registerResources() { Q_INIT_RESOURCE(fablegrid); }

class tst_Resources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void imageIsEmbedded_data();
    void imageIsEmbedded();
    void onlyTheWindowsIconIsCompressed_data();
    void onlyTheWindowsIconIsCompressed();
    void iconGivesPixmap_data();
    void iconGivesPixmap();
    void logoShowsBarsAndSquare_data();
    void logoShowsBarsAndSquare();
    void logoCornersAreRounded_data();
    void logoCornersAreRounded();
    void windowsIconHoldsAllSizes();
    void addNodeIconStandsOutOnGrey_data();
    void addNodeIconStandsOutOnGrey();
};

void tst_Resources::initTestCase() { registerResources(); }

void tst_Resources::init() { QTest::failOnWarning(QRegularExpression(u"QPixmap|QImage|QPainter|[Ss]vg"_s)); }

void tst_Resources::imageIsEmbedded_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QSize>("size");
    QTest::newRow("window icon at start-up") << appPng << "png"_ba << QSize(1024, 1024);
    QTest::newRow("window icon of the form") << appSvg << "svg"_ba << QSize(1024, 1024);
    QTest::newRow("logo of the menu bar") << clippedPng << "png"_ba << QSize(646, 696);
    QTest::newRow("add-node button") << addNodePng << "png"_ba << QSize(1024, 1024);
}

void tst_Resources::imageIsEmbedded()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, format);
    QFETCH(QSize, size);

    QVERIFY(QFile::exists(path));
    QImageReader reader(path);
    QCOMPARE(reader.format(), format);
    QCOMPARE(reader.size(), size);
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(image.size(), size);
}

void tst_Resources::onlyTheWindowsIconIsCompressed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QResource::Compression>("compression");
    QTest::newRow("app png") << appPng << QResource::NoCompression;
    QTest::newRow("app svg") << appSvg << QResource::NoCompression;
    QTest::newRow("clipped logo") << clippedPng << QResource::NoCompression;
    QTest::newRow("windows icon") << windowsIcon << QResource::ZlibCompression;
    QTest::newRow("add node") << addNodePng << QResource::NoCompression;
}

void tst_Resources::onlyTheWindowsIconIsCompressed()
{
    QFETCH(QString, path);
    QFETCH(QResource::Compression, compression);
    QCOMPARE(QResource(path).compressionAlgorithm(), compression);
}

void tst_Resources::iconGivesPixmap_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    QTest::newRow("window icon at start-up") << appPng << QSize(64, 64);
    QTest::newRow("window icon of the form") << appSvg << QSize(64, 64);
    QTest::newRow("add-node button") << addNodePng << QSize(24, 24);
}

// An SVG icon depends on a plugin that is installed apart from Qt's core packages.
void tst_Resources::iconGivesPixmap()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);

    const QPixmap pixmap = QIcon(path).pixmap(size);
    QCOMPARE(pixmap.size(), size);
    // Whichever picture it is, its centre is painted.
    QVERIFY(qAlpha(pixel(pixmap.toImage(), QPoint(size.width() / 2, size.height() / 2))) > 0);
}

void tst_Resources::logoShowsBarsAndSquare_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QPoint>("origin"); // of the picture, in the coordinates of the square logo
    QTest::newRow("png") << appPng << QPoint(0, 0);
    QTest::newRow("svg") << appSvg << QPoint(0, 0);
    QTest::newRow("clipped") << clippedPng << QPoint(189, 164);
}

void tst_Resources::logoShowsBarsAndSquare()
{
    QFETCH(QString, path);
    QFETCH(QPoint, origin);

    const QImage image(path);
    const struct
    {
        QRect rect;
        QColor color;
    } shapes[] = {
        {QRect(189, 268, 178, 488), bar},
        {QRect(657, 268, 178, 488), bar},
        {QRect(423, 566, 178, 190), bar},
        {QRect(423, 378, 132, 132), square},
    };
    for (const auto &[shape, color] : shapes) {
        const QRect rect = shape.translated(-origin);
        QCOMPARE(pixel(image, rect.center()), color.rgba());
        // The middle of each edge is the outermost pixel of the shape, and the corner is cut off by its
        // radius.
        QCOMPARE(pixel(image, QPoint(rect.left(), rect.center().y())), color.rgba());
        QCOMPARE(pixel(image, QPoint(rect.right(), rect.center().y())), color.rgba());
        QCOMPARE(pixel(image, QPoint(rect.center().x(), rect.top())), color.rgba());
        QCOMPARE(pixel(image, QPoint(rect.center().x(), rect.bottom())), color.rgba());
        QCOMPARE(pixel(image, QPoint(rect.center().x(), rect.top() - 1)), background.rgba());
        QCOMPARE(pixel(image, QPoint(rect.center().x(), rect.bottom() + 1)), background.rgba());
        QCOMPARE(pixel(image, rect.topLeft()), background.rgba());
        QCOMPARE(pixel(image, rect.bottomRight()), background.rgba());
    }
}

void tst_Resources::logoCornersAreRounded_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("png") << appPng;
    QTest::newRow("svg") << appSvg;
}

void tst_Resources::logoCornersAreRounded()
{
    QFETCH(QString, path);

    const QImage image(path);
    const QRect canvas = image.rect();
    for (const QPoint &corner :
         {canvas.topLeft(), canvas.topRight(), canvas.bottomLeft(), canvas.bottomRight()})
        QCOMPARE(qAlpha(pixel(image, corner)), 0);
    // The arc of radius 64 ends 64 pixels from the corner and crosses the diagonal 64 - 64 / sqrt(2) = 18.7
    // in.
    QCOMPARE(pixel(image, QPoint(64, 0)), background.rgba());
    QCOMPARE(pixel(image, QPoint(0, 64)), background.rgba());
    QCOMPARE(qAlpha(pixel(image, QPoint(17, 17))), 0);
    QCOMPARE(pixel(image, QPoint(20, 20)), background.rgba());
}

void tst_Resources::windowsIconHoldsAllSizes()
{
    const QList<int> expected{16, 24, 32, 48, 64, 72, 96, 128, 256};
    QImageReader reader(windowsIcon);
    QCOMPARE(reader.format(), "ico"_ba);
    QList<int> found;
    for (int i = 0; i < reader.imageCount(); ++i) {
        QVERIFY(reader.jumpToImage(i));
        const QImage image = reader.read();
        QCOMPARE(image.width(), image.height());
        QCOMPARE(qAlpha(pixel(image, QPoint(0, 0))), 0); // no dark square behind the bars
        found << image.width();
    }
    QCOMPARE(found, expected);
}

void tst_Resources::addNodeIconStandsOutOnGrey_data()
{
    QTest::addColumn<QColor>("grey");
    QTest::newRow("window") << QColor(54, 54, 54);
    QTest::newRow("tabs and menu bar") << QColor(66, 66, 66);
}

void tst_Resources::addNodeIconStandsOutOnGrey()
{
    QFETCH(QColor, grey);

    QImage image(24, 24, QImage::Format_RGB32);
    image.fill(grey);
    QPainter painter(&image);
    painter.drawPixmap(0, 0, QIcon(addNodePng).pixmap(24, 24));
    painter.end();

    int bright = 0;
    int untouched = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            bright += qGray(image.pixel(x, y)) >= qGray(grey.rgb()) + 80 ? 1 : 0;
            untouched += image.pixel(x, y) == grey.rgb() ? 1 : 0;
        }
    }
    // A third of the area is clearly lighter than the background, and a tenth of it remains around the
    // outline.
    const int area = image.width() * image.height();
    QVERIFY2(bright >= area / 3, qPrintable(QString::number(bright)));
    QVERIFY2(untouched >= area / 10, qPrintable(QString::number(untouched)));
}

QTEST_MAIN(tst_Resources)
#include "tst_resources.moc"
