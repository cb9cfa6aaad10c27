#pragma once

#include <QDateTime>
#include <QString>

#include <vector>

/// A copy that the editor has made by itself.
struct SavedCopy
{
    enum Kind {
        autosave,
        kept, // of what left a window unsaved
    };
    QString path;
    QDateTime time; // by its name, which stays the same wherever the file is put
    Kind kind;
    QString occasion; // of a kept one, as its name has it
};

/// All in the two folders, the newest first. What the user has put there by himself is none.
std::vector<SavedCopy> savedCopies();
