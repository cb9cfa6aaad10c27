#pragma once

#include <QString>

#include <vector>

/// A run of words, and of what is between them, that is in both texts or in one of them.
struct WordRun
{
    enum Kind {
        same,
        removed,
        added,
    };
    Kind kind;
    QString text;
};

/// What of `before` went and what came to make it `after`. Where both went and came in one place, what went
/// stands first.
std::vector<WordRun> wordsChanged(const QString &before, const QString &after);
