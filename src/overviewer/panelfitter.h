#pragma once

#include <QObject>

class QGraphicsView;

/// Keeps the panel's view free of a horizontal scroll bar: the entries are shown at their own size, and just
/// narrower when they are too long for the panel and share its width with a vertical scroll bar.
/// Owned by the view.
class PanelFitter : public QObject
{
    Q_OBJECT

public:
    /// `view` must have its scene.
    explicit PanelFitter(QGraphicsView *view);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fit();

    QGraphicsView *view;
    bool fitting = false; // showing or hiding the bar resizes the viewport
};
