#pragma once

#include <QStringList>

#include <vector>

/// Rows and fields of a text by RFC 4180, where the separator may be a semicolon or a tab as well.
class CsvTable
{
public:
    struct Row
    {
        QStringList fields;
        qint64 line; // in which it begins, counted from 1
    };

    explicit CsvTable(const QString &text);

    /// Without those that are empty lines. The first one is the heading.
    const std::vector<Row> &rows() const { return all; }
    /// The line of a quotation mark that has no other one behind it, 0 if there is none.
    qint64 openQuote() const { return lineOfOpenQuote; }

private:
    std::vector<Row> all;
    qint64 lineOfOpenQuote = 0;
};
