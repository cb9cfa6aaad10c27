#pragma once

#include <QWidget>

/// What the panel's view paints on. Owned by the view.
///
/// An entry outlines itself with the pen that it finds, and a widget's own is one pixel wide: from here it is
/// a line of three pixels, whatever the view's scale, in the colour that the widget has for its texts.
class PanelViewport : public QWidget
{
    Q_OBJECT

protected:
    void initPainter(QPainter *painter) const override;
};
