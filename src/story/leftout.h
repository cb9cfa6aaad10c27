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
    /// A kind out of many that the text itself names, as its attributes do: beyond the first ones all are
    /// told as one, `others`.
    void addOneOf(const QString &others, const QString &kind, qint64 line);
    /// The lines of a text with bytes that are no UTF-8, which become replacement signs.
    void addBrokenLetters(const QByteArray &text);
    /// What a tab is called, unless the editor calls one so or it has no name.
    void addTabName(const QString &name, qint64 line);
    /// One for each kind, with the first line and the number of places.
    QStringList notes() const;

private:
    struct Places
    {
        qint64 firstLine;
        int count = 0;
    };
    std::map<QString, Places> kinds;
    std::map<QString, int> countOf; // kinds told beside those others
};

/// "line 7: what is wrong"
QString noteOfLine(qint64 line, const QString &note);
/// How a note calls an event.
QString quotedTitle(const QString &title);
