#pragma once

#include "items/greekedtext.h"
#include "items/latetext.h"

#include <QColor>
#include <QGraphicsTextItem>

#include <functional>

/// A multi-line text on a rounded panel, edited in place. Owned by its parent item.
///
/// The panel always covers the text: every change of the document's size goes at once to `rect`, and from
/// there to the parent item if that is a ResizeObserver.
class STLineEdit : public QGraphicsTextItem
{
    Q_OBJECT

public:
    /// `text` is shown at first and is the placeholder that goes when somebody begins to write; `textWidth`
    /// in item units.
    STLineEdit(const QString &text, double textWidth, QGraphicsItem *parent,
               TextMaking making = TextMaking::atOnce);

    /// Makes the document and its control if they are still missing. Nobody can see the difference but those
    /// who reach for the document. Of a long text it holds what is shown.
    void make();
    /// Makes the document hold all of its text, for whoever is about to edit it.
    void makeWhole();
    /// Calls `listener` after every change of the text, whether there is a document yet or not.
    void onTextChanged(std::function<void()> listener) { textListener = std::move(listener); }
    QString text() const;
    /// Of all such texts.
    static const QFont &textFont();
    /// What one of that width takes with that text.
    static QSizeF sizeOf(const QString &text, double width);
    /// Paints what such a text looks like at that place where it is too small to be read, with so much of its
    /// ground (from 0 to 1).
    static void paintGreeked(QPainter &painter, GreekedText &bars, const QString &text, const QRectF &place,
                             double ground);
    /// As above, in item coordinates; makes nothing.
    void paintGreeked(QPainter &painter, double ground) { paintGreeked(painter, bars, text(), rect, ground); }

    /// Replaces the text; any text but the placeholder ends the placeholder's display.
    void setText(const QString &text);
    /// What a user who is about to write does not want to see any more: removes the placeholder.
    void removePlaceholder();
    /// As setText() for a text whose place, of the same width, is known from another item.
    void setMeasuredText(const QString &text, const QRectF &place);
    void setTextWidth(double width);
    void setRect(const QRectF &newRect);
    /// Takes `rect` from the document: its text width, or more where a word does not fit, by its height.
    void updateRect();

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    bool sceneEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dropEvent(QGraphicsSceneDragDropEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void keepLate(const QString &text, const QRectF &place);
    void textChanged();

    QRectF rect; // item coordinates
    double width;
    LateText late;
    QString whole; // of a long text whose document holds only what is shown; else null
    GreekedText bars;
    std::function<void()> textListener;
    QString placeholder;
    bool placeholderShown = false;
    QColor placeholderColor{Qt::gray};
};
