#include "story/canvaspicture.h"

#include "items/connectionline.h"
#include "items/node.h"
#include "items/stlineedit.h"
#include "scene/nodegraphscene.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSet>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>

namespace {

constexpr double margin = 50;      // around the events, units of the canvas
constexpr double sheetMargin = 10; // of a poster's sheet, millimetres
constexpr int pointsPerInch = 72;
constexpr double largestSide = 32767;    // pixels: beyond that the painter's coordinates end
constexpr double mostPixels = 268435456; // of four bytes: a gigabyte
constexpr double largestDrawing = 1e6;   // units of an SVG
constexpr double largestBounds = 1e9;    // units of the canvas
/// Of SVG and PDF. A text is as large as the resolution of its device makes it, so with any but the screen's
/// some would not fit their lines. Nothing is lost by it: both formats have fractions.
constexpr int unitsPerInch = 96;
constexpr double largestSheet = 14400; // points: what readers of PDF accept

/// Rounded down to two digits, so that it can be told and still fits.
double twoDigits(double scale)
{
    const double unit = std::pow(10, std::floor(std::log10(scale)) - 1);
    return std::floor(scale / unit) * unit;
}

QRectF boundsOf(const NodegraphScene &scene)
{
    QRectF bounds;
    for (const Node *node : scene.nodes()) {
        if (!node->isVisible())
            continue;
        bounds |= node->sceneBoundingRect();
        if (const ConnectionLine *line = node->inLine(); line && line->isVisible())
            bounds |= line->sceneBoundingRect();
    }
    return bounds.isNull() ? bounds : bounds.adjusted(-margin, -margin, margin, margin);
}

/// Signs that no XML may hold: the generator writes them as they are.
QByteArray withoutControls(QByteArray xml)
{
    for (char &byte : xml) {
        if (quint8(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r')
            byte = '?';
    }
    xml.replace("\xEF\xBF\xBE", "?");
    return xml.replace("\xEF\xBF\xBF", "?");
}

/// The generator forgets how far apart the letters of descriptions stand.
QByteArray withSpacing(QByteArray svg)
{
    const QFont &font = STLineEdit::textFont();
    const QByteArray family = "font-family=\"" + font.family().toUtf8() + "\" ";
    return svg.replace(family,
                       family + "letter-spacing=\"" + QByteArray::number(font.letterSpacing()) + "\" ");
}

} // namespace

CanvasPicture::CanvasPicture(NodegraphScene &graph, const Options &options) : scene(graph), wanted(options)
{
    if (wanted.onlyStory)
        hideAllButStory();
    bounds = boundsOf(scene);
}

void CanvasPicture::hideAllButStory() const
{
    QSet<const Node *> shown;
    for (const Node *node : scene.story())
        shown.insert(node);
    for (Node *node : scene.nodes()) {
        node->setVisible(shown.contains(node));
        if (ConnectionLine *line = node->inLine())
            line->setVisible(shown.contains(node) && shown.contains(node->prevNode()));
    }
}

QString CanvasPicture::refusal() const
{
    if (bounds.isNull())
        return wanted.onlyStory ? tr("there is no story to paint") : tr("there is no event to paint");
    const bool isMeasurable = bounds.width() <= largestBounds && bounds.height() <= largestBounds;
    if (!isMeasurable) // by the comparison also if they are no numbers
        return tr("the events are too far apart for a picture");
    if (wanted.paper)
        return {};
    double side = largestSide;
    double all = mostPixels;
    if (wanted.kind != Png) {
        side = wanted.kind == Svg ? largestDrawing : largestSheet;
        all = side * side;
    }
    const double most = std::min(
        {side / bounds.width(), side / bounds.height(), std::sqrt(all / bounds.width() / bounds.height())});
    if (wanted.scale <= most)
        return {};
    return tr("the picture would be %1 x %2 large; at most %3 on a side and %4 in all fit, which --scale %5 "
              "gives")
        .arg(std::ceil(size().width()), 0, 'f', 0)
        .arg(std::ceil(size().height()), 0, 'f', 0)
        .arg(side, 0, 'f', 0)
        .arg(all, 0, 'f', 0)
        .arg(twoDigits(most));
}

QByteArray CanvasPicture::paint(const std::function<void(double part)> &tell)
{
    tell(0);
    QByteArray bytes;
    switch (wanted.kind) {
    case Png:
        bytes = png(tell);
        break;
    case Svg:
        bytes = svg();
        break;
    case Pdf:
        bytes = pdf(tell);
        break;
    }
    tell(1);
    return bytes;
}

void CanvasPicture::paintOn(QPainter &painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, QRectF(QPointF(), size()), bounds, Qt::IgnoreAspectRatio);
}

QByteArray CanvasPicture::png(const std::function<void(double part)> &tell) const
{
    const QSize pixels(std::max(1, int(std::ceil(size().width()))),
                       std::max(1, int(std::ceil(size().height()))));
    QImage image(pixels, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    image.fill(scene.backgroundBrush().color());
    QPainter painter(&image);
    paintOn(painter);
    painter.end();
    constexpr double half = 0.5;
    tell(half);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

QByteArray CanvasPicture::svg() const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(size().toSize().expandedTo({1, 1}));
    generator.setViewBox(QRectF(QPointF(), size()));
    generator.setResolution(unitsPerInch);
    generator.setTitle(wanted.title.toHtmlEscaped()); // which it writes as it is
    QPainter painter(&generator);
    paintOn(painter);
    painter.end();
    return withSpacing(withoutControls(bytes));
}

QByteArray CanvasPicture::pdf(const std::function<void(double part)> &tell) const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(wanted.title);
    writer.setCreator(QStringLiteral("fablegrid-story"));
    writer.setResolution(unitsPerInch);
    if (!wanted.paper) {
        writer.setPageSize(QPageSize(size(), QPageSize::Point, QString(), QPageSize::ExactMatch));
        writer.setPageMargins({});
        QPainter painter(&writer);
        constexpr double unitsPerPoint = double(unitsPerInch) / pointsPerInch;
        painter.scale(unitsPerPoint, unitsPerPoint);
        paintOn(painter);
        painter.end();
        return bytes;
    }

    writer.setPageSize(*wanted.paper);
    const QMarginsF margins(sheetMargin, sheetMargin, sheetMargin, sheetMargin);
    writer.setPageMargins(margins, QPageLayout::Millimeter);
    const auto scaleFor = [&](QPageLayout::Orientation orientation) {
        writer.setPageOrientation(orientation);
        const QSizeF sheet = writer.pageLayout().paintRectPixels(unitsPerInch).size();
        return std::min(sheet.width() * wanted.sheets.width() / bounds.width(),
                        sheet.height() * wanted.sheets.height() / bounds.height());
    };
    const double lying = scaleFor(QPageLayout::Landscape);
    double scale = scaleFor(QPageLayout::Portrait);
    if (lying > scale)
        scale = scaleFor(QPageLayout::Landscape);
    const QSizeF sheet = writer.pageLayout().paintRectPixels(unitsPerInch).size();
    const QSizeF part = sheet / scale; // of the canvas that goes on a sheet
    const QSizeF whole(part.width() * wanted.sheets.width(), part.height() * wanted.sheets.height());
    const QPointF corner = bounds.center() - QPointF(whole.width(), whole.height()) / 2;
    const int count = wanted.sheets.width() * wanted.sheets.height();
    QPainter painter(&writer);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            writer.newPage();
        const int column = i % wanted.sheets.width();
        const int row = i / wanted.sheets.width();
        const QPointF way(column * part.width(), row * part.height());
        scene.render(&painter, QRectF(QPointF(), sheet), QRectF(corner + way, part), Qt::IgnoreAspectRatio);
        tell((i + 1.0) / count);
    }
    painter.end();
    return bytes;
}
