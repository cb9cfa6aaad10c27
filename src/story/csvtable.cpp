#include "story/csvtable.h"

namespace {

/// The first of them in the heading that stands in no quotation marks.
QChar separatorOf(const QString &text)
{
    bool isQuoted = false;
    for (const QChar sign : text) {
        if (sign == QLatin1Char('"'))
            isQuoted = !isQuoted;
        else if (!isQuoted && QLatin1String(",;\t").contains(sign))
            return sign;
        else if (!isQuoted && sign == QLatin1Char('\n'))
            break;
    }
    return QLatin1Char(',');
}

} // namespace

CsvTable::CsvTable(const QString &text)
{
    const QChar separator = separatorOf(text);
    qint64 line = 1;
    Row row{{}, line};
    QString field;
    bool isQuoted = false;
    qsizetype quotedTo = 0; // of the field: what stands there is no end of a line
    bool isEmptyLine = true;
    const auto endRow = [&] {
        if (!isEmptyLine) {
            row.fields << field;
            all.push_back(row);
        }
        row.fields.clear();
        field.clear();
        isEmptyLine = true;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar sign = text[i];
        const bool isMark = sign == QLatin1Char('"');
        const bool endsLine = sign == QLatin1Char('\n');
        if (isQuoted && isMark && i + 1 < text.size() && text[i + 1] == QLatin1Char('"')) {
            field += sign;
            ++i;
        } else if (isMark && (isQuoted || field.isEmpty())) {
            isQuoted = !isQuoted;
            quotedTo = field.size();
            lineOfOpenQuote = isQuoted ? line : 0;
            isEmptyLine = false; // even if nothing stands between the marks
        } else if (!isQuoted && sign == separator) {
            row.fields << field;
            field.clear();
            quotedTo = 0;
            isEmptyLine = false;
        } else if (!isQuoted && endsLine) {
            if (field.size() > quotedTo && field.endsWith(QLatin1Char('\r')))
                field.chop(1);
            isEmptyLine = isEmptyLine && field.isEmpty();
            endRow();
            quotedTo = 0;
            row.line = line + 1;
        } else {
            field += sign;
        }
        line += endsLine ? 1 : 0;
    }
    isEmptyLine = isEmptyLine && field.isEmpty();
    endRow();
}
