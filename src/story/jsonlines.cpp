#include "story/jsonlines.h"

std::vector<qint64> linesOfJsonObjects(const QByteArray &json, int depth)
{
    std::vector<qint64> lines;
    qint64 line = 1;
    int open = 0;
    bool isInText = false;
    for (qsizetype i = 0; i < json.size(); ++i) {
        const char sign = json[i];
        if (sign == '\n')
            ++line;
        else if (sign == '\\' && isInText)
            ++i;
        else if (sign == '"')
            isInText = !isInText;
        else if (!isInText && (sign == '{' || sign == '[')) {
            if (open++ == depth && sign == '{')
                lines.push_back(line);
        } else if (!isInText && (sign == '}' || sign == ']'))
            --open;
    }
    return lines;
}
