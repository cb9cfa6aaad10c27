#pragma once

#include <QFrame>

class QLabel;
class QTabWidget;
class QToolButton;

/// A text at the lower edge of the canvas, over whatever is there, with a button that closes it. It takes
/// neither the keyboard nor any room from the canvas. The tab widget owns it.
class NoticeStrip : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeStrip(QTabWidget *canvas);

    /// Shows the text and tells it to screen readers. Failures look otherwise than good news.
    void show(const QString &text, bool isFailure);

signals:
    /// The user has pressed the button.
    void s_closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();

    QTabWidget *tabs;
    QLabel *label;
    QToolButton *button;
};
