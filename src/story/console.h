#pragma once

#include "story/progress.h"

#include <QString>

class QIODevice;

/// What a command says when it ends.
enum ExitCode {
    Done = 0,
    Differs = 1, // a damaged file, two stories that are not the same
    Trouble = 2, // wrong use, or something could not be read or written
};

/// Where a command writes: what was asked for goes out, what went wrong to the errors.
class Console
{
public:
    static constexpr auto programName = "fablegrid-story";

    /// Both devices must be open and outlive this object. With `errorsAreSeen` somebody sits before them, who
    /// is shown how far the work is when it takes longer than `patience`, in milliseconds.
    Console(QIODevice &output, QIODevice &errors, bool errorsAreSeen = false,
            qint64 patience = Progress::usualPatience);

    /// A line of text.
    void print(const QString &line);
    /// Bytes as they are.
    void write(const QByteArray &bytes);
    /// Why not all that was printed and written so far has gone out; empty if it has.
    QString trouble();

    /// One line that begins with the program's name, and the file's if it is not empty.
    void complain(const QString &file, const QString &trouble);
    /// The same, from whoever cannot go on: returns the exit code for that.
    int refuse(const QString &file, const QString &trouble);
    /// How far the command is. The bar gives way to whatever else is written here.
    Progress &progress() { return bar; }

private:
    QIODevice &out;
    QIODevice &err;
    Progress bar;
    bool hasFailed = false;
};

/// A text of a writer within a line: in one line, without signs that would steer a terminal, and not too
/// long.
QString inOneLine(const QString &text, qsizetype most = 60);
