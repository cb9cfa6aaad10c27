#pragma once

#include <QByteArray>
#include <QDir>
#include <QProcess>
#include <QString>

#include <map>
#include <random>

/// Kills processes at random instants while they write two documents in turn, and keeps count of what was
/// left.
class Killing
{
public:
    /// `folder` is the one where the files are written; `seed` decides on the instants.
    Killing(const QString &folder, unsigned seed);

    /// One of the documents; returns false if it is already known.
    bool know(const QByteArray &document, const QString &name);

    /// An instant within that many microseconds.
    int instant(int most);
    /// Halts the process in the midst of its work, notes whether it was writing, and kills it; false if it
    /// had ended by itself.
    bool kill(QProcess &process);
    /// Takes the file as the outcome of the last kill; false if it is not one of the documents.
    bool count(const QString &path);
    /// As count(), for a file that was left under a temporary name.
    bool countLeftOver(const QString &path);

    /// For reading by people.
    QString result() const;
    /// Whether the kills came at instants that tell anything: some while writing, some that left the one
    /// document and some that left the other.
    bool isTelling() const;

private:
    bool isWriting(qint64 process) const;

    QDir folder;
    std::mt19937 random;
    std::map<QByteArray, QString> names; // of the documents, by their hashes
    std::map<QString, int> outcomes;
    int kills = 0;
    int whileWriting = 0;
    int leftOver = 0;
};
