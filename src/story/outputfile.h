#pragma once

#include <QCommandLineOption>
#include <QCoreApplication>
#include <QString>

class Console;
class QCommandLineParser;

/// Where the result of a command goes: a file, as a whole or not at all, or the standard output.
class OutputFile
{
    Q_DECLARE_TR_FUNCTIONS(OutputFile)

public:
    /// -o and --force, as a command has them that calls its output `value` in the help.
    static QList<QCommandLineOption> options(const QString &value);

    /// As those options say; without a path if there is none.
    explicit OutputFile(const QCommandLineParser &parser);
    /// `path` "-" is the standard output. A file that is there is replaced only if `overwrite`.
    OutputFile(const QString &path, bool overwrite) : name(path), mayReplace(overwrite) {}

    bool isStandardOutput() const { return name == QLatin1String("-"); }
    const QString &path() const { return name; }
    /// Whether it is that file, by whatever name, which is there.
    bool isAt(const QString &file) const;
    /// Why nothing could be stored there, empty if nothing is known against it. To be asked before the work,
    /// with the file that the work reads: that one is not replaced by what is made of it, whatever was said.
    QString refusal(const QString &source = {}) const;
    /// Returns why the content is not stored, empty if it is; nothing has changed in the former case. Of the
    /// standard output nothing is told here: the console knows at the end whether all has gone out.
    QString store(const QByteArray &content, Console &console) const;

private:
    QString name;
    bool mayReplace;
};
