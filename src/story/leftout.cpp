#include "story/leftout.h"

#include "story/console.h"

void LeftOut::add(const QString &kind, qint64 line)
{
    Places &places = kinds.try_emplace(kind, Places{line}).first->second;
    ++places.count;
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
