#pragma once

#include <QByteArray>
#include <QJsonDocument>

/// JSON as text, in UTF-8.
///
/// Many a reader takes U+FEFF at the head of a text for the mark of an encoding, and drops it: Qt's parser
/// does so with every single string. Spelled out as an escape it stays.
namespace JsonText {

/// With each such sign spelled out, which can stand within strings only.
inline QByteArray spelledOut(QByteArray json) { return json.replace("\xEF\xBB\xBF", "\\uFEFF"); }

inline QByteArray of(const QJsonDocument &document) { return spelledOut(document.toJson()); }

} // namespace JsonText
