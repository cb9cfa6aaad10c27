#pragma once

#include <QColor>
#include <QGraphicsTextItem>

/// A multi-line text on a rounded panel, edited in place. Owned by its parent item.
///
/// The panel always covers the text: every change of the document's size goes at once to `rect`, and from
/// there to the parent item if that is a ResizeObserver.
class STLineEdit : public QGraphicsTextItem
{
    Q_OBJECT

public:
    /// `text` is shown at first and is the placeholder that the first click removes; `textWidth` in item
    /// units.
    STLineEdit(const QString &text, double textWidth, QGraphicsItem *parent);

    /// Replaces the text; any text but the placeholder ends the placeholder's display.
    void setText(const QString &text);
    void setTextWidth(double width);
    void setRect(const QRectF &newRect);
    /// Takes `rect` from the document: its text width, or more where a word does not fit, by its height.
    void updateRect();

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    bool sceneEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    QRectF rect; // item coordinates
    QString placeholder;
    bool placeholderShown = false;
    QColor backgroundColor{QStringLiteral("#F5F5F5")};
    QColor placeholderColor{Qt::gray};
    QColor textColor{QStringLiteral("#343434")};
};
