#include "app/applicationpalette.h"

#include <QApplication>
#include <QColor>
#include <QIcon>

QPalette applicationPalette()
{
    const QColor window(54, 54, 54);
    const QColor base(66, 66, 66);
    const QColor button(77, 77, 77);
    const QColor text(255, 255, 255);
    const QColor placeholder(185, 185, 185);
    const QColor disabledText(190, 190, 190);
    const QColor highlight(48, 112, 190);

    QPalette palette(button, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, placeholder);
    palette.setColor(QPalette::Button, button);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, text);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Link, QColor(126, 184, 252));
    palette.setColor(QPalette::LinkVisited, QColor(190, 160, 250));
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, text);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabledText);
    return palette;
}

QString applicationStyleSheet()
{
    // Once an entry has a frame, the style sheet lays out all of it.
    return QStringLiteral(
        "QMenu { padding: 2px; }"
        "QMenu::item { padding: 4px 24px 4px 24px; border: 2px solid transparent; }"
        "QMenu::item:selected { border-color: rgb(112, 176, 251); }"
        "QMenu::item:disabled { color: rgb(190, 190, 190); }"
        "QMenu::separator { height: 1px; margin: 4px 8px; background: rgb(110, 110, 110); }");
}

/// Qt has the question's icon as a picture of 32 pixels only, which is blurred on a fine screen. The
/// desktop's own theme goes first; without one Qt asks no theme at all.
static void offerIcons()
{
    const QString name = QStringLiteral("fablegrid");
    QIcon::setFallbackThemeName(name);
    if (QIcon::themeName().isEmpty())
        QIcon::setThemeName(name);
}

void dressApplication()
{
    offerIcons();
    QApplication::setPalette(applicationPalette());
    qApp->setStyleSheet(applicationStyleSheet());
}
