#include "walk/program.h"

#include "walk/desktop.h"

#include <QFile>
#include <QRegularExpression>

namespace {

constexpr int killTime = 5000;

/// Every progress line that the program may write, as Qt prints its items. Failures are not among them.
const QRegularExpression &progressLine()
{
    static const QRegularExpression expression(QRegularExpression::anchoredPattern(QStringLiteral(
        "Undoing|Redoing|Copy|Copying|Copying node  \\d+|cut|paste|Pasting|Pasting node  "
        "\\d+|ZoomingIn|Opening Support page"
        "|Tabs to save \\d+|Clearing tabs|Tabs to open \\d+|Adding tabs|Autosaved scene to: \".*\""
        "|Nodes to save \\d+|Serializing node|Fileopening|Nodes to open \\d+|deserializing node"
        "|Saving event data|Opening event data|SetEventData"
        "|Old node index  -?\\d+  New node index  -?\\d+"
        "|Connected node  \\d+  to  \\d+|Disconnected node  \\d+|Del|Deleted node  \\d+|clearing scene"
        "|No storyNode|No of ovnodes now:  \\d+|Found ovNode|Changing ovNode index from:  \\d+  to  \\d+"
        "|Setting importance|Setting filter|Calculating bounds|Setting bounds")));
    return expression;
}

} // namespace

Program::Program(const Desktop &desktopToUse, const QString &name)
    : desktop(desktopToUse), logPath(Desktop::artefacts().filePath(name + QStringLiteral(".log")))
{}

Program::~Program()
{
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(killTime);
    }
}

QString Program::title() { return QStringLiteral("Fablegrid v0.1a"); }

bool Program::start(const QHash<QString, QString> &variables)
{
    Desktop::tieToThisProcess(process);
    QProcessEnvironment environment = desktop.environment();
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        environment.insert(it.key(), it.value());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(desktop.homePath(QString()));
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(logPath);
    process.start(QStringLiteral(WALK_PROGRAM), {});
    return process.waitForStarted() &&
           eventually([this] { return desktop.activeTitle() == title() || !isRunning(); }) && isRunning();
}

bool Program::endsWell()
{
    return eventually([this] { return process.state() == QProcess::NotRunning; }) &&
           process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QString Program::fate() const
{
    if (process.error() == QProcess::FailedToStart)
        return process.errorString();
    if (isRunning())
        return QStringLiteral("still running");
    if (process.exitStatus() == QProcess::CrashExit)
        return QStringLiteral("ended by signal %1").arg(process.exitCode());
    return QStringLiteral("ended with code %1").arg(process.exitCode());
}

QStringList Program::logLines() const
{
    QFile log(logPath);
    if (!log.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList Program::strangeLines() const
{
    QStringList strange;
    const QStringList lines = logLines();
    for (const QString &line : lines) {
        if (!progressLine().match(line).hasMatch())
            strange.append(line);
    }
    return strange;
}
