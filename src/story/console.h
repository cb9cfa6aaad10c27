#pragma once

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

    /// Both devices must be open and outlive this object.
    Console(QIODevice &output, QIODevice &errors, bool errorsAreSeen = false);

    /// A line of text.
    void print(const QString &line);
    /// Bytes as they are.
    void write(const QByteArray &bytes);
    /// Why not all that was printed and written so far has gone out; empty if it has.
    QString trouble();

    /// One line that begins with the program's name, and the file's if it is not empty.
    void complain(const QString &file, const QString &trouble);
    /// Whether somebody sits before the errors and can be shown how far the work is.
    bool errorsAreSeen() const { return isSeen; }
    QIODevice &errors() { return err; }

private:
    QIODevice &out;
    QIODevice &err;
    bool isSeen;
    bool hasFailed = false;
};

/// A text of a writer within a line: in one line, without signs that would steer a terminal, and not too
/// long.
QString inOneLine(const QString &text, qsizetype most = 60);
