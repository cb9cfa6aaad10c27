#pragma once

#include "items/clickordrag.h"
#include "items/greekedtext.h"
#include "items/latetext.h"
#include "items/titlelook.h"

#include <QColor>
#include <QGraphicsTextItem>
#include <QTextCursor>

/// A node's title, edited in place. Owned by its node, its parent item.
///
/// While it is not being edited, a title that is longer than the header shows its beginning and an ellipsis,
/// and one without a letter still takes the width of the header, with a line to show where it is.
class STNodeName : public QGraphicsTextItem
{
    Q_OBJECT

public:
    explicit STNodeName(QGraphicsItem *parent, TextMaking making = TextMaking::atOnce);

    /// Makes the document and its control if they are still missing. Of a long title it holds what is shown.
    void make();
    /// Makes the document hold all of the title, for whoever is about to edit it.
    void makeWhole();
    void setTitle(const QString &text);
    QString title() const;

    /// The width in item coordinates that the title may cover while it is not being edited.
    void setAvailableWidth(double width);

    /// Paints what it looks like where it is too small to be read, in item coordinates; makes nothing.
    void paintGreeked(QPainter &painter);

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;
    bool sceneEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void paintBelow(QPainter *painter);
    bool isShortened() const { return !editing && look.isShortened(); }
    void updateShortText();
    QSizeF textSize() const;

    QColor focusColor{QStringLiteral("#FFFFFF")};
    QColor groundColor{QStringLiteral("#6642B3")}; // dark enough for the text, wherever it hangs over
    double availableWidth = 0.0;                   // 0 until the node has laid itself out: no limit
    TitleLook look;
    LateText late;
    QString whole; // of a long title whose document holds only what is shown; else null
    GreekedText bars;
    bool editing = false; // has the focus, with the outline to match

    ClickOrDrag hand;
    QTextCursor dragStart; // where the press has put the cursor before all was selected; null if it has not
};
