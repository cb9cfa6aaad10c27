#include "app/windowsupport.h"
#include "faults/killing.h"
#include "faults/savedocuments.h"
#include "walk/desktop.h"
#include "walk/editorwindow.h"
#include "walk/need.h"
#include "walk/program.h"

#include <QCoreApplication>
#include <QThread>

#include <array>
#include <cstdio>

#include <sys/stat.h>

// Kills the real program again and again while it saves two documents to one path in turn, by real keys in a
// real window. Afterwards the file must be one of the two. Not a test by itself: kill-loop.sh runs it.
//
// Arguments: the program, the number of kills, a number that decides on the instants.

namespace {

constexpr int rounds = 80;   // of undo, save, redo, save that are sent ahead
constexpr int span = 400000; // microseconds in which the kill comes

const QString fileName = QStringLiteral("a"); // short, since it is typed

/// Tells a file from the one that takes its place.
std::array<qint64, 3> identity(const QString &path)
{
    struct stat status = {};
    stat(qPrintable(path), &status);
    return {qint64(status.st_ino), status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

class KillWalk
{
public:
    KillWalk(const QString &path, unsigned seed) : programPath(path), seedOfInstants(seed) {}

    bool run(int kills);

private:
    QString story() const { return folder() + QLatin1Char('/') + fileName; }
    QString folder() const { return desktop.homePath(QStringLiteral("stories")); }
    bool start();
    bool press(const QStringList &keys) const;
    /// Presses the keys of a save and waits for the new file.
    bool save(const QStringList &keys) const;
    bool learn();
    bool killOnce();

    Desktop desktop;
    QProcess program;
    QString programPath;
    unsigned seedOfInstants;
    std::unique_ptr<Killing> killing;
};

bool KillWalk::start()
{
    NEED(writeFile(story(), documentOfOneLine()));
    // The window of the run before may be on the screen a moment longer than its process.
    NEED(eventually([this] { return desktop.windowWithTitle(Program::title()) == 0; }));
    Desktop::tieToThisProcess(program);
    program.setProcessEnvironment(desktop.environment());
    program.setWorkingDirectory(folder());
    program.setStandardErrorFile(Desktop::artefacts().filePath(QStringLiteral("program.log")));
    program.start(programPath, {});
    NEED(program.waitForStarted());
    NEED(eventually([this] { return desktop.activeTitle() == Program::title(); }));
    // The window manager calls the window active a moment before its keys arrive there.
    constexpr int again = 2000;
    const QString dialog = QStringLiteral("Load Scene");
    NEED(eventually([&] {
        return press({QStringLiteral("ctrl+o")}) &&
               QTest::qWaitFor([&] { return desktop.windowWithTitle(dialog) != 0; }, again);
    }));
    const EditorWindow window(desktop);
    NEED(window.giveFile(dialog, fileName));
    NEED(window.hasKeyboard());
    return true;
}

bool KillWalk::press(const QStringList &keys) const
{
    QProcess tool;
    tool.setProcessEnvironment(desktop.environment());
    tool.start(QStringLiteral("xdotool"),
               QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("0")} + keys);
    return tool.waitForFinished() && tool.exitCode() == 0;
}

bool KillWalk::save(const QStringList &keys) const
{
    const auto before = identity(story());
    return press(keys) && eventually([&] { return identity(story()) != before; });
}

bool KillWalk::learn()
{
    const QStringList undone{QStringLiteral("ctrl+z"), QStringLiteral("ctrl+s")};
    const QStringList redone{QStringLiteral("ctrl+y"), QStringLiteral("ctrl+s")};
    NEED(start());
    NEED(save(undone));
    const QByteArray first = readFile(story());
    NEED(save(redone));
    const QByteArray second = readFile(story());
    NEED(killing->know(first, QStringLiteral("undone")));
    NEED(killing->know(second, QStringLiteral("redone")));
    for (int i = 0; i < 3; ++i) {
        NEED(save(undone));
        NEED(readFile(story()) == first);
        NEED(save(redone));
        NEED(readFile(story()) == second);
    }
    program.kill();
    NEED(program.waitForFinished());
    return true;
}

bool KillWalk::killOnce()
{
    NEED(start());
    QStringList keys;
    for (int i = 0; i < rounds; ++i)
        keys << QStringLiteral("ctrl+z") << QStringLiteral("ctrl+s") << QStringLiteral("ctrl+y")
             << QStringLiteral("ctrl+s");
    NEED(save(keys));
    QThread::usleep(static_cast<unsigned long>(killing->instant(span)));
    NEED(killing->kill(program));
    NEED(killing->count(story()));
    const QStringList names = filesBelow(folder());
    for (const QString &name : names) {
        if (name == fileName)
            continue;
        NEED(name.startsWith(fileName + QLatin1Char('.')));
        NEED(killing->countLeftOver(folder() + QLatin1Char('/') + name));
        NEED(QFile::remove(folder() + QLatin1Char('/') + name));
    }
    return true;
}

bool KillWalk::run(int kills)
{
    if (!desktop.start()) {
        qCritical().noquote() << desktop.problem();
        return false;
    }
    NEED(QDir().mkpath(folder()));
    killing = std::make_unique<Killing>(folder(), seedOfInstants);
    bool well = learn();
    for (int i = 1; well && i <= kills; ++i) {
        well = killOnce();
        if (i % 10 == 0 || i == kills)
            std::printf("Saving: %s\n", qPrintable(killing->result()));
        std::fflush(stdout);
    }
    if (!well) {
        desktop.keepScreenshot(QStringLiteral("failed.png"));
        QFile::copy(story(), Desktop::artefacts().filePath(QStringLiteral("failed.scene")));
        std::printf("Saving, FAILED: %s\nWhat was left: %s\n", qPrintable(killing->result()),
                    qPrintable(Desktop::artefacts().path()));
    }
    return well && killing->isTelling();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        qCritical("Usage: killwalk <program> <kills> <seed>");
        return 2;
    }
    KillWalk walk(QFileInfo(arguments.at(1)).absoluteFilePath(), arguments.at(3).toUInt());
    return walk.run(arguments.at(2).toInt()) ? 0 : 1;
}
