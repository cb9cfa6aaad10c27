#include "story/xmltext.h"

namespace {

bool isAllowed(char16_t unit)
{
    const bool isControl = unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r';
    return !isControl && unit != 0xFFFE && unit != 0xFFFF;
}

} // namespace

QString asXmlText(const QString &text)
{
    QString allowed = text;
    for (qsizetype i = 0; i < allowed.size(); ++i) {
        const bool isPair =
            allowed[i].isHighSurrogate() && i + 1 < allowed.size() && allowed[i + 1].isLowSurrogate();
        if (isPair)
            ++i;
        else if (allowed[i].isSurrogate() || !isAllowed(allowed[i].unicode()))
            allowed[i] = QChar::ReplacementCharacter;
    }
    return allowed;
}
