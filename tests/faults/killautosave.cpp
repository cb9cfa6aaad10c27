#include "faults/killing.h"
#include "faults/savedocuments.h"
#include "walk/desktop.h"

#include <QThread>

#include <cstdio>

// Kills a process again and again while it autosaves two documents in turn, as fast as it can. Afterwards
// every autosave must be one of the two. Not a test by itself: kill-loop.sh runs it.
//
// Arguments: the number of kills, a number that decides on the instants.

namespace {

constexpr int span = 400000; // microseconds in which the kill comes

/// The process that is killed.
[[noreturn]] void autosaveForEver(const QString &document)
{
    MainWindow window;
    window.loadFrom(document);
    for (;;) {
        window.sl_undo();
        window.autosave();
        window.sl_redo();
        window.autosave();
    }
}

class KillAutosave
{
public:
    explicit KillAutosave(unsigned seed) : killing(made(folder()), seed) {}

    bool run(int kills);

private:
    static QString made(const QString &folder)
    {
        QDir().mkpath(folder);
        return folder;
    }
    QString folder() const { return home.filePath(QStringLiteral("Documents/Fablegrid/Autosavedir")); }
    QString document() const { return home.filePath(QStringLiteral("document")); }
    bool learn();
    bool killOnce();
    bool checkFiles();

    PrivateHome home;
    Killing killing;
};

bool KillAutosave::learn()
{
    if (!writeFile(document(), documentOfOneLine()))
        return false;
    const Warnings warnings;
    MainWindow window;
    window.loadFrom(document());
    const QString file = home.filePath(QStringLiteral("learnt"));
    for (int i = 0; i < 3; ++i) {
        window.sl_undo();
        window.saveTo(file);
        if (killing.know(readFile(file), QStringLiteral("undone")) != (i == 0))
            return false;
        window.sl_redo();
        window.saveTo(file);
        if (killing.know(readFile(file), QStringLiteral("redone")) != (i == 0))
            return false;
    }
    return warnings.lines().isEmpty();
}

bool KillAutosave::killOnce()
{
    QProcess process;
    Desktop::tieToThisProcess(process);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--autosave"), document()});
    if (!process.waitForStarted() || !eventually([this] { return !filesBelow(folder()).isEmpty(); }))
        return false;
    QThread::usleep(static_cast<unsigned long>(killing.instant(span)));
    return killing.kill(process) && checkFiles();
}

bool KillAutosave::checkFiles()
{
    static const QRegularExpression autosave(
        QStringLiteral("^Yarnsmith_\\d{8}_\\d{6}_autosaveVersion\\.scene(\\.\\w{6})?$"));
    const QStringList names = filesBelow(folder());
    for (const QString &name : names) {
        const QRegularExpressionMatch match = autosave.match(name);
        const QString path = folder() + QLatin1Char('/') + name;
        const bool temporary = !match.captured(1).isEmpty();
        if (!match.hasMatch() || !(temporary ? killing.countLeftOver(path) : killing.count(path))) {
            std::printf("Damaged: %s\n", qPrintable(name));
            return false;
        }
        QFile::remove(path);
    }
    return true;
}

bool KillAutosave::run(int kills)
{
    bool well = learn();
    for (int i = 1; well && i <= kills; ++i) {
        well = killOnce();
        if (i % 10 == 0 || i == kills || !well)
            std::printf("Autosaving%s: %s\n", well ? "" : ", FAILED", qPrintable(killing.result()));
        std::fflush(stdout);
    }
    return well && killing.isTelling();
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        qCritical("Usage: killautosave <kills> <seed>");
        return 2;
    }
    if (arguments.at(1) == QLatin1String("--autosave"))
        autosaveForEver(arguments.at(2));
    return KillAutosave(arguments.at(2).toUInt()).run(arguments.at(1).toInt()) ? 0 : 1;
}
