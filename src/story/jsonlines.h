#pragma once

#include <QByteArray>

#include <vector>

/// In which lines, counted from 1, the objects begin that are `depth` brackets and braces deep in a sound
/// JSON text. The parser does not tell.
std::vector<qint64> linesOfJsonObjects(const QByteArray &json, int depth);
