#include "story/plaintext.h"

#include <algorithm>

void PlainText::addParagraph(const QString &lines)
{
    paragraphs += QString(hasParagraph ? emptyLines + 2 : emptyLines, QLatin1Char('\n')) + lines;
    emptyLines = 0;
    hasParagraph = true;
}

QString PlainText::text() const
{
    return paragraphs + QString(hasParagraph ? emptyLines : std::max(emptyLines - 1, 0), QLatin1Char('\n'));
}
