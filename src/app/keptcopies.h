#pragma once

#include <QString>

class QByteArray;

/// The folder of the copies of what left a window unsaved, each in a file that is named after the moment and
/// the occasion.
///
/// The newest 200 stay, and the same bytes are there once only. Nobody's copy is ever written over.
class KeptCopies
{
public:
    enum class Occasion { anew, open, tab, close, end, other };

    struct Kept
    {
        QString path;    // of the copy, old or new
        QString trouble; // why there is none, else empty
    };

    static constexpr int most = 200;

    /// The one below the user's documents.
    static QString usualFolder();

    explicit KeptCopies(const QString &folderPath = usualFolder()) : folder(folderPath) {}

    /// Keeps a document's bytes; says in the log if that cannot be done.
    Kept keep(const QByteArray &content, Occasion occasion) const;

private:
    QString sameAs(const QByteArray &content) const;
    Kept store(const QByteArray &content, Occasion occasion) const;
    void dropOldest(const QString &newest) const;

    QString folder;
};
