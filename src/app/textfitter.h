#pragma once

#include <QObject>

class QAbstractButton;
class QFont;

/// Keeps the whole text of a button of fixed size in sight by making the font smaller where the desktop's is
/// too large for it. Owned by the button, which has to be in its window already.
class TextFitter : public QObject
{
    Q_OBJECT

public:
    explicit TextFitter(QAbstractButton *fittedButton);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fit();
    bool holds(const QFont &font) const;

    QAbstractButton *button;
    bool isFitting = false;
};
