#include "support/screenwatch.h"

#include "view/nodegraphview.h"

#include <QCoreApplication>
#include <QDir>
#include <QGraphicsView>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

#include <cstring>

namespace {

/// A picture of the window's size, of which only `parts` are painted. They keep their places: somewhere else
/// curves would be rounded otherwise.
const QImage &paintedAnew(QWidget &window, const QRegion &parts)
{
    // Kept for the next time: new memory for each picture takes as long as painting it. The format is that of
    // the screen: letters are smoothed otherwise on a picture that has transparency.
    static QImage picture;
    if (picture.size() != window.size())
        picture = QImage(window.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    // A widget's own painter begins with it, one that is handed over by another with none; a text from right
    // to left shows the difference.
    painter.setLayoutDirection(window.layoutDirection());
    window.render(&painter, parts.boundingRect().topLeft(), parts);
    return picture;
}

QString nameOf(const QWidget *part)
{
    if (!part)
        return QStringLiteral("the window");
    if (const auto *area = qobject_cast<const QAbstractScrollArea *>(part->parentWidget()))
        part = area;
    if (qobject_cast<const NodegraphView *>(part))
        return QStringLiteral("the canvas");
    if (qobject_cast<const QGraphicsView *>(part))
        return QStringLiteral("the panel");
    return QString::fromLatin1(part->metaObject()->className()) + QLatin1Char(' ') + part->objectName();
}

QString inWords(const QRect &rect)
{
    return QStringLiteral("%1,%2 %3x%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

void keep(const QImage &screen, const QImage &anew)
{
    const QString folder = qEnvironmentVariable("FABLEGRID_SCREENS");
    if (folder.isEmpty())
        return;
    screen.save(QDir(folder).filePath(QStringLiteral("on-screen.png")));
    anew.save(QDir(folder).filePath(QStringLiteral("painted-anew.png")));
}

QRegion canvasesOf(const QWidget &window)
{
    QRegion region;
    const QList<QGraphicsView *> canvases = window.findChildren<QGraphicsView *>();
    for (const QGraphicsView *canvas : canvases) {
        const QWidget *viewport = canvas->viewport();
        if (viewport->isVisible() && viewport->window() == &window)
            region += QRect(viewport->mapTo(&window, QPoint()), viewport->size());
    }
    return region;
}

} // namespace

void ScreenWatch::comeToRest()
{
    // A change of an item is collected by its scene, which tells its views, which ask for a frame; painting
    // may then ask for more.
    constexpr int rounds = 5;
    for (int i = 0; i < rounds; ++i)
        QCoreApplication::sendPostedEvents();
}

QImage ScreenWatch::onScreen(const QWidget &window)
{
    return window.screen()->grabWindow(window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
}

ScreenWatch::Difference ScreenWatch::difference(const QImage &one, const QImage &other, const QRect &area)
{
    if (one.size() != other.size())
        return {one.rect(), one.rect() | other.rect(), -1};
    Difference found;
    const QRect compared = area.isNull() ? one.rect() : area & one.rect();
    for (int y = compared.top(); y <= compared.bottom(); ++y) {
        const auto *left = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *right = reinterpret_cast<const QRgb *>(other.constScanLine(y));
        // Nearly all are alike, and this is far quicker.
        const std::size_t bytes = std::size_t(compared.width()) * sizeof(QRgb);
        if (std::memcmp(left + compared.left(), right + compared.left(), bytes) == 0)
            continue;
        QRect row;
        for (int x = compared.left(); x <= compared.right(); ++x) {
            if ((left[x] & RGB_MASK) == (right[x] & RGB_MASK))
                continue;
            row |= QRect(x, y, 1, 1);
            ++found.pixels;
        }
        if (found.all.isNull())
            found.first = row;
        found.all |= row;
    }
    return found;
}

QString ScreenWatch::fault(QWidget &window, Extent extent)
{
    if (!window.isVisible())
        return {};
    comeToRest();
    const QImage screen = onScreen(window);
    if (screen.isNull())
        return QStringLiteral("nothing of the window is on the screen");
    if (screen.size() != window.size() * window.devicePixelRatio())
        return QStringLiteral("the screen is read as something else than the window");
    const QRegion parts = extent == Extent::window ? QRegion(window.rect()) : canvasesOf(window);
    const QImage &anew = paintedAnew(window, parts);
    for (const QRect &part : parts) {
        const Difference found = difference(screen, anew, part);
        if (found.pixels == 0)
            continue;
        keep(screen, anew);
        return QStringLiteral("%1 does not show what it should: %2 pixels within %3, the first at %4")
            .arg(nameOf(window.childAt(found.first.topLeft())))
            .arg(found.pixels)
            .arg(inWords(found.all), inWords(found.first));
    }
    return {};
}
