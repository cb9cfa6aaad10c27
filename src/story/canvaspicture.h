#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QPageSize>
#include <QRectF>
#include <QSize>

#include <functional>
#include <optional>

class NodegraphScene;
class QPainter;

/// The canvas of a tab as the window paints it, by the items themselves, as a file.
class CanvasPicture
{
    Q_DECLARE_TR_FUNCTIONS(CanvasPicture)

public:
    enum Kind { Png, Svg, Pdf };

    struct Options
    {
        Kind kind = Png;
        bool onlyStory = false;
        double scale = 1;               // of a unit of the canvas to a pixel, or to a point of a PDF
        std::optional<QPageSize> paper; // a PDF is cut into sheets of that size, which decide about the scale
        QSize sheets{1, 1};             // side by side, and one below the other
        QString title;
    };

    /// `graph` must outlive this object, which hides what is not to be painted.
    CanvasPicture(NodegraphScene &graph, const Options &options);

    /// Why there can be no such picture, and what would fit; empty if there can.
    QString refusal() const;
    /// The file; empty if the memory did not suffice. `tell` hears what part is done: of posters
    /// each sheet, of others, which are painted and written at one go, where that begins and ends.
    QByteArray paint(const std::function<void(double part)> &tell);

private:
    QSizeF size() const { return bounds.size() * wanted.scale; }
    QByteArray png(const std::function<void(double part)> &tell) const;
    QByteArray svg() const;
    QByteArray pdf(const std::function<void(double part)> &tell) const;
    void hideAllButStory() const;
    void paintOn(QPainter &painter) const;

    NodegraphScene &scene;
    Options wanted;
    QRectF bounds; // scene coordinates; null without events
};
