#include "walk/desktop.h"

#include "walk/xscreen.h"

#include <QFileInfo>
#include <QTest>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int patience = 30000; // milliseconds for one condition
constexpr int endingTime = 5000;

void end(QProcess &process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(endingTime)) {
        process.kill();
        process.waitForFinished(endingTime);
    }
}

QStringList coordinates(QPoint point) { return {QString::number(point.x()), QString::number(point.y())}; }

/// By itself the tool would rest for a tenth of a second after each click.
QStringList click(int button, int times = 1)
{
    return {QStringLiteral("click"),    QStringLiteral("--delay"), QStringLiteral("10"),
            QStringLiteral("--repeat"), QString::number(times),    QString::number(button)};
}

} // namespace

bool eventually(const std::function<bool()> &condition) { return QTest::qWaitFor(condition, patience); }

Desktop::Desktop() = default;

Desktop::~Desktop()
{
    screen.reset(); // a connection outlives no server
    end(windowManager);
    end(server);
}

bool Desktop::fail(const QString &text)
{
    problemText = text;
    return false;
}

bool Desktop::start()
{
    if (!home.isValid())
        return fail(QStringLiteral("No temporary folder: ") + home.errorString());
    QDir(artefacts()).removeRecursively(); // what lies there afterwards is of this run
    if (!artefacts().mkpath(QStringLiteral(".")))
        return fail(QStringLiteral("No folder for the artefacts"));
    // Qt takes a run-time folder only if nobody else can look into it.
    QDir(home.path()).mkdir(QStringLiteral("runtime"));
    QFile::setPermissions(homePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return startServer() && startWindowManager();
}

bool Desktop::startServer()
{
    tieToThisProcess(server);
    server.setStandardErrorFile(artefacts().filePath(QStringLiteral("xvfb.log")));
    // No auto-repeat (-r): on a busy machine a key may stay down for long between press and release.
    server.start(QStringLiteral("Xvfb"),
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                  QStringLiteral("0"), QStringLiteral("1600x1000x24"), QStringLiteral("-nolisten"),
                  QStringLiteral("tcp"), QStringLiteral("-noreset"), QStringLiteral("-r")});
    if (!server.waitForStarted())
        return fail(QStringLiteral("Xvfb: ") + server.errorString());
    QByteArray number;
    const bool answered = eventually([&] {
        number += server.readAllStandardOutput();
        return number.endsWith('\n') || server.state() == QProcess::NotRunning;
    });
    if (!answered || !number.endsWith('\n'))
        return fail(QStringLiteral("Xvfb found no free display, see xvfb.log"));
    display = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    screen = std::make_unique<XScreen>(display);
    return screen->isConnected() || fail(QStringLiteral("Xvfb takes no connection, see xvfb.log"));
}

bool Desktop::startWindowManager()
{
    tieToThisProcess(windowManager);
    windowManager.setProcessEnvironment(environment());
    windowManager.setProcessChannelMode(QProcess::MergedChannels);
    windowManager.setStandardOutputFile(artefacts().filePath(QStringLiteral("openbox.log")));
    windowManager.start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    if (!windowManager.waitForStarted())
        return fail(QStringLiteral("openbox: ") + windowManager.errorString());
    return eventually([this] { return screen->isManaged(); }) ||
           fail(QStringLiteral("openbox does not manage the screen, see openbox.log"));
}

QProcessEnvironment Desktop::environment() const
{
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment environment;
    for (const char *name : {"PATH", "LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "ASAN_OPTIONS", "LSAN_OPTIONS",
                             "UBSAN_OPTIONS", "LLVM_PROFILE_FILE"}) {
        const QString key = QString::fromLatin1(name);
        if (own.contains(key))
            environment.insert(key, own.value(key));
    }
    // A walk can put programs of its own there, in place of those of the system.
    environment.insert(QStringLiteral("PATH"), homePath(QStringLiteral("bin")) + QLatin1Char(':') +
                                                   own.value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), homePath(QStringLiteral("runtime")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), homePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), homePath(QStringLiteral("cache")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), homePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("DISPLAY"), display);
    // Nothing listens there, so no message bus is found, and none is launched that would outlive the walk.
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                       QStringLiteral("unix:path=") + homePath(QStringLiteral("runtime/no-bus")));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    // The log must reach the test wherever Qt would send it by itself.
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    return environment;
}

QString Desktop::homePath(const QString &name) const { return home.filePath(name); }

QDir Desktop::artefacts()
{
    return QDir(QStringLiteral(WALK_ARTEFACTS "/") + QCoreApplication::applicationName());
}

bool Desktop::run(const QString &tool, const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(tool, arguments, QIODevice::ReadOnly);
    const bool ended = process.waitForFinished(patience);
    if (!ended && process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(endingTime);
    }
    return ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QImage Desktop::screenshot() const { return screen->picture(); }

bool Desktop::keepScreenshot(const QString &name, const QRect &part) const
{
    const QImage whole = screenshot();
    const QImage kept = part.isEmpty() ? whole : whole.copy(part);
    return kept.save(artefacts().filePath(name));
}

QString Desktop::activeTitle() const { return screen->titleOf(screen->activeWindow()); }

quint32 Desktop::windowWithTitle(const QString &title) const
{
    return screen->shownWindows([&](quint32 window) { return screen->titleOf(window) == title; }).value(0);
}

QList<quint32> Desktop::windowsOfClass(const QString &name) const
{
    return screen->shownWindows([&](quint32 window) { return screen->isOfClass(window, name); });
}

QRect Desktop::geometry(quint32 window) const { return screen->geometry(window); }

bool Desktop::resize(quint32 window, const QSize &size) const
{
    return run(QStringLiteral("xdotool"),
               {QStringLiteral("windowsize"), QStringLiteral("--sync"), QString::number(window),
                QString::number(size.width()), QString::number(size.height())});
}

/// A button that goes down belongs to the window manager first, and the server holds the mouse back until it
/// has seen it. What is let go in that time is told with the place of any move that came after it: a click
/// would look like a drag to there. And a program that is busy is told only the last of the moves that it has
/// not taken, so that it would never know of a rest between two of them.
bool Desktop::useMouse(const QStringList &steps) const
{
    if (!run(QStringLiteral("xdotool"), steps))
        return false;
    const quint32 asked = screen->askManager();
    if (!eventually([&] { return screen->managerHasAnswered(asked); }))
        return false;
    const quint32 window = screen->activeWindow();
    const quint32 ping = screen->ping(window);
    return eventually([&] { return screen->hasAnswered(window, ping); });
}

bool Desktop::click(QPoint point) const
{
    return useMouse(QStringList{QStringLiteral("mousemove")} + coordinates(point) + ::click(1));
}

bool Desktop::scroll(QPoint point, int notches) const
{
    return useMouse(QStringList{QStringLiteral("mousemove")} + coordinates(point) +
                    ::click(notches > 0 ? 4 : 5, qAbs(notches)));
}

bool Desktop::drag(QPoint from, QPoint to) const
{
    QStringList steps{QStringLiteral("mousemove")};
    steps += coordinates(from) + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")};
    constexpr int moves = 8;
    for (int i = 1; i <= moves; ++i)
        steps += QStringList{QStringLiteral("mousemove")} + coordinates(from + (to - from) * i / moves);
    steps += QStringList{QStringLiteral("mouseup"), QStringLiteral("1")};
    return useMouse(steps);
}

bool Desktop::press(QPoint point, int button) const
{
    return useMouse(QStringList{QStringLiteral("mousemove")} + coordinates(point) +
                    QStringList{QStringLiteral("mousedown"), QString::number(button)});
}

// In two steps, as a hand would: one jump alone can look like no move at all.
bool Desktop::moveTo(QPoint point) const
{
    return useMouse(QStringList{QStringLiteral("mousemove")} + coordinates(point - QPoint(3, 3)) +
                    QStringList{QStringLiteral("mousemove")} + coordinates(point));
}

bool Desktop::release(int button) const
{
    return useMouse({QStringLiteral("mouseup"), QString::number(button)});
}

bool Desktop::key(const QString &keys) const
{
    return run(QStringLiteral("xdotool"), {QStringLiteral("key"), keys});
}

bool Desktop::type(const QString &text) const
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0 && !key(QStringLiteral("Return")))
            return false;
        if (!lines.at(i).isEmpty() &&
            !run(QStringLiteral("xdotool"), {QStringLiteral("type"), QStringLiteral("--"), lines.at(i)}))
            return false;
    }
    return true;
}

void Desktop::tieToThisProcess(QProcess &process)
{
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}
