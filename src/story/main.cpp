#include "app/applicationpalette.h"
#include "story/console.h"
#include "story/interruption.h"
#include "story/storyprogram.h"
#include "story/terminal.h"

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>

#include <csignal>
#include <cstdio>
#include <new>

namespace {

/// What the libraries say of the machine (no runtime folder, no font for a sign) is no error of this command.
void keepLibrariesQuiet(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s: %s\n", Console::programName, qPrintable(text));
}

} // namespace

int main(int argc, char *argv[])
{
#ifdef Q_OS_UNIX
    // Whoever started this program may have it ignored, and then nothing would end it when its reader goes.
    std::signal(SIGPIPE, SIG_DFL);
#endif
    Terminal::keepPlacesOfClosed();
    Interruption::listen();
    qInstallMessageHandler(&keepLibrariesQuiet);
    // What is damaged is told in the log of the reading, which nobody's rules are to thin out.
    qunsetenv("QT_LOGGING_CONF");
    qunsetenv("QT_LOGGING_RULES");
    QLoggingCategory::setFilterRules(QStringLiteral("default=true"));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", "");
    QApplication::setStyle(QStringLiteral("Fusion"));
    const QApplication application(argc, argv);
    dressApplication();

    QFile output;
    QFile errors;
    output.open(stdout, QIODevice::WriteOnly);
    errors.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered);
    // A program that pages what comes out has the terminal for itself.
    Console console(output, errors,
                    Terminal::isAt(errors.handle()) && !Terminal::isProgramAt(output.handle()));
    try {
        return StoryProgram::run(QApplication::arguments().mid(1), console);
    } catch (const std::bad_alloc &) {
        return console.refuse({}, QCoreApplication::translate("StoryProgram", "the memory does not suffice"));
    }
}
