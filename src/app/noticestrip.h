#pragma once

#include <QFrame>
#include <QPointer>
#include <QToolButton>

class QLabel;
class QTabWidget;

/// A text at the lower edge of the canvas, over whatever is there, with a button that closes it. It takes
/// neither the keyboard nor any room from the canvas, and lets the mouse through to it. The tab widget owns
/// it.
class NoticeStrip : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeStrip(QTabWidget *canvas);
    ~NoticeStrip() override;

    /// Shows the text and tells it to screen readers. Failures look otherwise than good news.
    void show(const QString &text, bool isFailure);

    /// Stands on the strip and comes and goes with it, but is no child of it: where a widget lets the mouse
    /// through, its children do as well.
    QToolButton *closeButton() const { return button; }

signals:
    /// The user has pressed the button.
    void s_closed();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();

    QTabWidget *tabs;
    QLabel *label;
    QPointer<QToolButton> button; // goes with this object, or before with the tab widget
};
