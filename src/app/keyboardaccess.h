#pragma once

#include <QObject>

class MainWindow;
class QGraphicsView;

namespace Ui {
class MainWindow;
}

/// What the form leaves open for those who do not use a mouse, or do not see the screen: names, tool tips,
/// and keys for what has a button and no menu entry. Owned by the window.
class KeyboardAccess : public QObject
{
    Q_OBJECT

public:
    /// `form` is that of `window`, which has to be set up; `panel` is the list of events in it.
    KeyboardAccess(MainWindow *window, const Ui::MainWindow &form, QGraphicsView *panel);

private:
    void nameParts(QGraphicsView *panel) const;
    void addKeys(MainWindow *window) const;

    const Ui::MainWindow &form;
};
