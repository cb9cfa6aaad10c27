#include "app/textfitter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QFontMetricsF>
#include <QMarginsF>

namespace {
constexpr double smallest = 5.0; // points
constexpr double step = 0.5;
constexpr QMarginsF frame(3, 2, 3, 2); // pixels between the text and each edge
} // namespace

TextFitter::TextFitter(QAbstractButton *fittedButton) : QObject(fittedButton), button(fittedButton)
{
    button->installEventFilter(this);
    button->window()->installEventFilter(this); // which alone hears of a new font of the application
    fit();
}

bool TextFitter::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool isOfButton = watched == button && (type == QEvent::Polish || type == QEvent::StyleChange ||
                                                  type == QEvent::LanguageChange);
    if ((isOfButton && !isFitting) || type == QEvent::ApplicationFontChange)
        fit();
    return QObject::eventFilter(watched, event);
}

bool TextFitter::holds(const QFont &font) const
{
    const QFontMetricsF metrics(font, button);
    const QSizeF room = QSizeF(button->maximumSize()).shrunkBy(frame);
    return metrics.horizontalAdvance(button->text()) <= room.width() && metrics.height() <= room.height();
}

void TextFitter::fit()
{
    isFitting = true; // a new font is a change of style, too
    QFont font = QApplication::font(button);
    font.setWeight(button->font().weight());
    while (!holds(font) && font.pointSizeF() - step >= smallest)
        font.setPointSizeF(font.pointSizeF() - step);
    button->setFont(font);
    isFitting = false;
}
