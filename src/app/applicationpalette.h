#pragma once

#include <QPalette>
#include <QString>

/// The dark palette of the whole application, in the greys of the main window's form.
///
/// The form's style sheets set backgrounds that children inherit, but not every text on them: without a
/// palette of our own, tab titles and dialogs would come out dark on dark, or light on light, by the
/// desktop's theme.
QPalette applicationPalette();

/// What the form's style sheets leave open: a frame around the menu entry under the pointer or the keyboard.
/// The grey that they give it is one step from the menu's own, which nobody sees.
QString applicationStyleSheet();

/// Gives the application, which must exist, the palette and the style sheet above, and the icons that it
/// brings along for desktops without a theme.
void dressApplication();
