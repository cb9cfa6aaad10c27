#include "story/leftout.h"

#include "story/console.h"
#include "story/story.h"

void LeftOut::add(const QString &kind, qint64 line)
{
    Places &places = kinds.try_emplace(kind, Places{line}).first->second;
    ++places.count;
}

void LeftOut::addOneOf(const QString &others, const QString &kind, qint64 line)
{
    constexpr int mostTold = 10;
    int &told = countOf[others];
    const bool isTold = kinds.contains(kind);
    add(isTold || told < mostTold ? kind : others, line);
    told += isTold || told == mostTold ? 0 : 1;
}

void LeftOut::addBrokenLetters(const QByteArray &text)
{
    if (text.isValidUtf8())
        return;
    qint64 line = 0;
    for (qsizetype at = 0, end = 0; end != -1; at = end + 1) {
        ++line;
        end = text.indexOf('\n', at);
        if (!QByteArrayView(text).sliced(at, (end == -1 ? text.size() : end) - at).isValidUtf8())
            add(tr("letters that are no UTF-8 are left out"), line);
    }
}

void LeftOut::addTabName(const QString &name, qint64 line)
{
    if (!name.isEmpty() && !Story::isNameOfAnyTab(name))
        addOneOf(tr("more names of tabs are left out"),
                 tr("the name of the tab %1 is left out, for tabs have numbers only").arg(quotedTitle(name)),
                 line);
}

QStringList LeftOut::notes() const
{
    QStringList all;
    for (const auto &[kind, places] : kinds) {
        const QString note =
            places.count == 1 ? kind : tr("%1; so in %2 places").arg(kind, QString::number(places.count));
        all << noteOfLine(places.firstLine, note);
    }
    return all;
}

QString noteOfLine(qint64 line, const QString &note)
{
    return QCoreApplication::translate("LeftOut", "line %1: %2").arg(QString::number(line), note);
}

QString quotedTitle(const QString &title) { return QStringLiteral("\"%1\"").arg(inOneLine(title)); }
