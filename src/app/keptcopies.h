#pragma once

#include <QString>

class QByteArray;

/// The folder of the copies of what left a window unsaved, each in a file that is named after the moment and
/// the occasion.
///
/// The newest 200 stay, and the same bytes are there once only, under their newest name. Nobody's copy is
/// ever written over.
class KeptCopies
{
public:
    enum class Occasion { anew, open, tab, close, end, other };

    struct Kept
    {
        QString path;    // of the copy
        QString trouble; // why there is none, else empty
    };

    static constexpr int most = 200;

    /// The one below the user's documents.
    static QString usualFolder();

    /// That of a copy of this moment.
    static QString nameNow(Occasion occasion);
    /// Has the library make what it makes once for every program: a copy may be asked for as the program
    /// exits, when nothing comes to life any more.
    static void beReady();

    explicit KeptCopies(const QString &folderPath = usualFolder()) : folder(folderPath) {}
    const QString &folderPath() const { return folder; }

    /// Writes those bytes into a new file beside that one, with a few more letters behind its name.
    static Kept keepBeside(const QString &path, const QByteArray &content);
    /// Keeps a document's bytes; says in the log if that cannot be done.
    Kept keep(const QByteArray &content, Occasion occasion) const;

private:
    struct Same
    {
        QString path;
        bool isNewest = false; // of all copies
    };
    Same sameAs(const QByteArray &content) const;
    Kept store(const QByteArray &content, Occasion occasion) const;
    void dropOldest(const QString &newest) const;

    QString folder;
};
