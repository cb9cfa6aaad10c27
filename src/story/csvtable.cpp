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
    const auto endRow = [&] {
        if (!row.fields.isEmpty() || !field.isEmpty()) {
            row.fields << field;
            all.push_back(row);
        }
        row.fields.clear();
        field.clear();
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
            lineOfOpenQuote = isQuoted ? line : 0;
        } else if (!isQuoted && sign == separator) {
            row.fields << field;
            field.clear();
        } else if (!isQuoted && endsLine) {
            if (field.endsWith(QLatin1Char('\r')))
                field.chop(1);
            endRow();
            row.line = line + 1;
        } else {
            field += sign;
        }
        line += endsLine ? 1 : 0;
    }
    endRow();
}
