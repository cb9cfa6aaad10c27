#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <vector>

/// Where a value stands in a JSON text.
struct JsonPlace
{
    qsizetype at = -1; // of its first byte; -1 is nowhere
    qint64 line = 0;   // counted from 1
};

/// Finds the values of a JSON text again, by the way that leads to them: the parser does not tell in which
/// lines they stand.
class JsonLines
{
public:
    /// `json` must be sound, begin with no mark of its encoding, and outlive this object.
    explicit JsonLines(const QByteArray &json) : text(json) {}

    JsonPlace document() const;
    /// Of a list, in their order; none if the value is no list.
    std::vector<JsonPlace> items(const JsonPlace &list) const;
    /// Of an object, by their names; none if the value is no object. Of two with one name it is the last, as
    /// it is to the parser.
    QHash<QString, JsonPlace> members(const JsonPlace &object) const;

private:
    const QByteArray &text;
};
