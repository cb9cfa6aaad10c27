#include "endworks.h"

#include "works.h"

#include "app/mainwindow.h"
#include "app/programend.h"
#include "items/node.h"
#include "scene/nodegraphscene.h"

#include <QApplication>
#include <QDir>
#include <QProcess>

#include <cstdio>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/types.h>

int EndWorks::editAndWait(const QString &file)
{
    StoryWindow story;
    story.window().loadFrom(file);
    story.show();
    story.node(0)->setPos(7, 8);
    const ProgramEnd end([&story] { story.window().keepForTheEnd(); });
    std::puts("ready");
    std::fflush(stdout);
    return QApplication::exec();
}

/// From the signal to the end of the process, with the copy on the disk.
void Works::ending()
{
    const QDir home(folder.filePath(QStringLiteral("home")));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    std::vector<double> values;
    for (int i = 0; i < qMax(3, rounds / 2); ++i) {
        QDir(home).removeRecursively();
        home.mkpath(QStringLiteral("."));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QCoreApplication::applicationFilePath(), {QLatin1String(EndWorks::option), path});
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(-1))
                qFatal("the process to be ended has ended by itself");
        }
        values.push_back(Measure::milliseconds([&process] {
            kill(pid_t(process.processId()), SIGTERM);
            process.waitForFinished(-1);
        }));
        const QDir kept(home.filePath(QStringLiteral("Documents/Fablegrid/Kept")));
        if (process.exitStatus() != QProcess::CrashExit || kept.count() != 3) // with "." and ".."
            qFatal("nothing was kept in %s", qPrintable(kept.path()));
    }
    rows << Row{QStringLiteral("end by a signal"), events, Measure::median(values)};
}

#else

int EndWorks::editAndWait(const QString &) { return 1; }
void Works::ending() {}

#endif
