#pragma once

#include <QCoreApplication>
#include <QStringList>

#include <map>

/// What a story cannot hold of a text, each kind told once however often it occurs.
class LeftOut
{
    Q_DECLARE_TR_FUNCTIONS(LeftOut)

public:
    /// `kind` is a sentence without a full stop; lines are counted from 1.
    void add(const QString &kind, qint64 line);
    /// One for each kind, with the first line and the number of places.
    QStringList notes() const;

private:
    struct Places
    {
        qint64 firstLine;
        int count = 0;
    };
    std::map<QString, Places> kinds;
};

/// "line 7: what is wrong"
QString noteOfLine(qint64 line, const QString &note);
/// How a note calls an event.
QString quotedTitle(const QString &title);
