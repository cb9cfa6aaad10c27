#pragma once

#include <QString>

/// A description that is put together of paragraphs and empty lines.
class PlainText
{
public:
    void addParagraph(const QString &lines);
    /// One more empty line than two paragraphs have between them anyway.
    void addEmptyLine() { ++emptyLines; }

    bool isNone() const { return !hasParagraph && emptyLines == 0; }
    QString text() const;

private:
    QString paragraphs;
    int emptyLines = 0; // since the last paragraph
    bool hasParagraph = false;
};
