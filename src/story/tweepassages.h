#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

/// A passage of a text in Twee 3.
struct TweePassage
{
    QString name;
    QStringList tags;
    QJsonObject metadata;
    QString text; // without the empty lines at its end
    qint64 line;  // of its header, counted from 1
    bool hasBrokenMetadata = false;

    struct Link
    {
        QString target;
        qint64 line;
        bool setsSomething; // in a game, when it is followed
    };
    /// Takes the links out of the text, which keeps what they show. A line of nothing but a link that shows
    /// its target goes.
    std::vector<Link> takeLinks();
};

/// In the order of the text. What stands before the first one is left out: `lineOfLoose` is its first line,
/// 0 if there is nothing.
std::vector<TweePassage> tweePassages(const QString &text, qint64 &lineOfLoose);
/// The text that a passage shows which says it in the markup of web pages.
QString withoutEntities(const QString &text);
