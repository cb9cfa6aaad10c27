#include "story/tweepassages.h"

#include <QHash>
#include <QJsonDocument>
#include <QRegularExpression>

namespace {

/// Reads up to the first of these signs that has no backslash before it; the backslashes go.
QString takeUntil(QStringView header, const QString &ends, qsizetype &at)
{
    QString taken;
    for (; at < header.size() && !ends.contains(header[at]); ++at) {
        if (header[at] == QLatin1Char('\\') && at + 1 < header.size())
            ++at;
        taken += header[at];
    }
    return taken;
}

TweePassage passageOf(const QString &header, qint64 line)
{
    TweePassage passage;
    passage.line = line;
    qsizetype at = 2; // behind the colons
    passage.name = takeUntil(header, QStringLiteral("[{"), at).trimmed();
    if (at < header.size() && header[at] == QLatin1Char('[')) {
        ++at;
        passage.tags = takeUntil(header, QStringLiteral("]"), at).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        at = header.indexOf(QLatin1Char('{'), at);
    }
    if (at >= 0 && at < header.size()) {
        const QJsonDocument metadata = QJsonDocument::fromJson(header.mid(at).toUtf8());
        passage.metadata = metadata.object();
        passage.hasBrokenMetadata = !metadata.isObject();
    }
    return passage;
}

/// The four ways in which a link says what it shows and where it leads.
QString targetOf(QString link, QString &shown)
{
    link = link.section(QLatin1String("]["), 0, 0);
    const qsizetype right = link.lastIndexOf(QLatin1String("->"));
    const qsizetype left = link.indexOf(QLatin1String("<-"));
    const qsizetype bar = link.lastIndexOf(QLatin1Char('|'));
    QString target = link;
    shown = link;
    if (right != -1) {
        shown = link.left(right);
        target = link.mid(right + 2);
    } else if (left != -1) {
        target = link.left(left);
        shown = link.mid(left + 2);
    } else if (bar != -1) {
        shown = link.left(bar);
        target = link.mid(bar + 1);
    }
    return target.trimmed();
}

/// A link with its brackets in a line; -1 where there is none.
struct LinkSpan
{
    qsizetype begin = -1;
    qsizetype end = -1;

    QString of(const QString &line) const { return line.mid(begin, end - begin); }
    QString inside(const QString &line) const { return line.mid(begin + 2, end - begin - 4); }
};

/// No regular expression: a line of nothing but opening brackets would be searched to its end from each.
LinkSpan nextLink(const QString &line, qsizetype from)
{
    constexpr int atLeast = 1; // sign between the brackets
    const qsizetype begin = line.indexOf(QLatin1String("[["), from);
    qsizetype end = begin == -1 ? -1 : line.indexOf(QLatin1String("]]"), begin + 2 + atLeast);
    if (end == -1)
        return {};
    while (end + 2 < line.size() && line[end + 2] == QLatin1Char(']'))
        ++end;
    return {begin, end + 2};
}

} // namespace

std::vector<TweePassage::Link> TweePassage::takeLinks()
{
    std::vector<Link> links;
    QStringList kept;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString &before = lines[i];
        const QString trimmed = before.trimmed();
        QString after;
        qsizetype at = 0;
        bool isLinkAlone = false;
        for (LinkSpan span = nextLink(before, 0); span.begin != -1; span = nextLink(before, at)) {
            QString shown;
            const QString inside = span.inside(before);
            links.push_back({targetOf(inside, shown), line + 1 + i, inside.contains(QLatin1String("]["))});
            isLinkAlone = span.of(before) == trimmed && shown.trimmed() == links.back().target;
            after += QStringView(before).mid(at, span.begin - at);
            after += shown;
            at = span.end;
        }
        if (!isLinkAlone)
            kept << after + before.mid(at);
    }
    while (!kept.isEmpty() && kept.back().isEmpty())
        kept.pop_back();
    text = kept.join(QLatin1Char('\n'));
    return links;
}

std::vector<TweePassage> tweePassages(const QString &text, qint64 &lineOfLoose)
{
    std::vector<TweePassage> passages;
    lineOfLoose = 0;
    qint64 line = 0;
    for (const QStringView whole : QStringView(text).split(QLatin1Char('\n'))) {
        ++line;
        const QStringView content = whole.endsWith(QLatin1Char('\r')) ? whole.chopped(1) : whole;
        if (content.startsWith(QLatin1String("::")))
            passages.push_back(passageOf(content.toString(), line));
        else if (!passages.empty())
            passages.back().text += content.toString() + QLatin1Char('\n');
        else if (lineOfLoose == 0 && !content.trimmed().isEmpty())
            lineOfLoose = line;
    }
    for (TweePassage &passage : passages) {
        while (passage.text.endsWith(QLatin1Char('\n')))
            passage.text.chop(1);
    }
    return passages;
}

QString withoutEntities(const QString &text)
{
    static const QRegularExpression entity(
        QStringLiteral("&(?:(amp|lt|gt|quot)|#(\\d{1,7})|#[xX]([0-9a-fA-F]{1,6}));"));
    static const QHash<QString, QString> named{{QStringLiteral("amp"), QStringLiteral("&")},
                                               {QStringLiteral("lt"), QStringLiteral("<")},
                                               {QStringLiteral("gt"), QStringLiteral(">")},
                                               {QStringLiteral("quot"), QStringLiteral("\"")}};
    QString plain;
    qsizetype at = 0;
    for (auto found = entity.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        plain += QStringView(text).mid(at, match.capturedStart() - at);
        at = match.capturedEnd();
        const char32_t code =
            match.hasCaptured(2) ? match.captured(2).toUInt() : match.captured(3).toUInt(nullptr, 16);
        if (match.hasCaptured(1))
            plain += named.value(match.captured(1));
        else if (code > 0 && code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code))
            plain += QString::fromUcs4(&code, 1);
        else
            plain += QChar(QChar::ReplacementCharacter);
    }
    return plain + text.mid(at);
}
