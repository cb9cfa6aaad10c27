#pragma once

#include <QClipboard>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QTextCursor>
#include <QtTest>

/// What the scene paints of `area`, one pixel a unit, on the scene's background or else on nothing.
inline QImage painted(QGraphicsScene &scene, const QRectF &area)
{
    QImage image(area.size().toSize(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.render(&painter, QRectF(QPointF(), area.size()), area);
    return image;
}

/// The colour that the scene paints at the pixel that begins at `point`.
inline QColor colorAt(QGraphicsScene &scene, const QPointF &point)
{
    return painted(scene, QRectF(point, QSizeF(1, 1))).pixelColor(0, 0);
}

inline bool hasColor(const QImage &image, const QColor &color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color)
                return true;
        }
    }
    return false;
}

/// A window on a scene that is shown and active: texts can be clicked and typed in it.
struct Desk
{
    QGraphicsScene scene{0, 0, 1000, 800};
    QGraphicsView view{&scene};

    Desk()
    {
        scene.setBspTreeDepth(12); // fine enough to miss an item that moved unannounced
        view.setGeometry(0, 0, 1100, 900);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
    }

    void click(const QPointF &scenePos, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(view.viewport(), button, Qt::NoModifier, view.mapFromScene(scenePos));
    }

    /// Puts the focus and the text cursor, at the end, into the item.
    void edit(QGraphicsTextItem *item)
    {
        item->setFocus();
        QTextCursor end = item->textCursor();
        end.movePosition(QTextCursor::End);
        item->setTextCursor(end);
    }

    void type(const QString &text) { QTest::keyClicks(&view, text); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view, key, modifiers);
    }
    void paste(const QString &html, const QString &text)
    {
        auto *mime = new QMimeData;
        mime->setText(text);
        if (!html.isEmpty())
            mime->setHtml(html);
        QGuiApplication::clipboard()->setMimeData(mime);
        key(Qt::Key_V, Qt::ControlModifier);
        QGuiApplication::clipboard()->clear();
    }
};
