#pragma once

#include <QHash>
#include <QProcess>
#include <QStringList>

class Desktop;

/// One run of the built program on a desktop, from its start to its end.
class Program
{
public:
    /// `name` is that of the log among the artefacts. The desktop must outlive this object.
    Program(const Desktop &desktop, const QString &name);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /// Starts it with these variables in its environment; true when the main window is shown and has the
    /// keyboard.
    bool start(const QHash<QString, QString> &variables = {});
    bool isRunning() const { return process.state() == QProcess::Running; }
    /// Waits for the program to end by itself; true if it did so without an error.
    bool endsWell();

    /// What became of the process, for a reader of a failed test.
    QString fate() const;
    QStringList logLines() const;
    /// The lines of the log that are not among the program's own progress lines: Qt's warnings and others.
    QStringList strangeLines() const;

    static QString title();

private:
    const Desktop &desktop;
    QString logPath;
    QProcess process;
};
