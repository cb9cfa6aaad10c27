#pragma once

#include <QCoreApplication>
#include <QString>

class Console;

/// Where the result of a command goes: a file, as a whole or not at all, or the standard output.
class OutputFile
{
    Q_DECLARE_TR_FUNCTIONS(OutputFile)

public:
    /// `path` "-" is the standard output. A file that is there is replaced only if `overwrite`.
    OutputFile(const QString &path, bool overwrite) : name(path), mayReplace(overwrite) {}

    bool isStandardOutput() const { return name == QLatin1String("-"); }
    const QString &path() const { return name; }
    /// Why nothing could be stored there, empty if nothing is known against it. To be asked before the work.
    QString refusal() const;
    /// Returns why the content is not stored, empty if it is; nothing has changed in the former case.
    QString store(const QByteArray &content, Console &console) const;

private:
    QString name;
    bool mayReplace;
};
