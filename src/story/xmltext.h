#pragma once

#include <QString>

/// The text with a replacement sign in place of each that no XML document may hold: control signs, halves of
/// pairs, and what is no sign at all.
QString asXmlText(const QString &text);
