#include "story/storyprogram.h"

#include "story/console.h"
#include "story/storycommand.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(StoryProgram)
};

const StoryCommand *commandNamed(const QString &name)
{
    const auto &all = StoryProgram::commands();
    const auto isIt = [&name](const StoryCommand *command) { return command->name() == name; };
    const auto found = std::find_if(all.begin(), all.end(), isIt);
    return found == all.end() ? nullptr : *found;
}

QString programHelp()
{
    QString text = Texts::tr("Usage: fablegrid-story COMMAND [options] FILE...\n"
                             "Takes stories out of scene files and puts them in.\n\nCommands:\n");
    for (const StoryCommand *command : StoryProgram::commands())
        text += QStringLiteral("  %1  %2\n").arg(command->name(), -8).arg(command->summary());
    return text + Texts::tr("\nOptions:\n"
                            "  -h, --help  Displays this help, or that of a command: "
                            "fablegrid-story show --help\n"
                            "  --version   Displays version information.");
}

/// Qt's own text begins with the path of the program, which is none of the reader's business.
QString commandHelp(const StoryCommand &command, const QCommandLineParser &parser)
{
    const QString text = parser.helpText();
    return Texts::tr("Usage: fablegrid-story %1 [options] %2").arg(command.name(), command.usage()) +
           text.mid(text.indexOf(QLatin1Char('\n'))) + Texts::tr("\nExample:\n  %1").arg(command.example());
}

int runCommand(const StoryCommand &command, const QStringList &arguments, Console &console)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(command.summary());
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  Texts::tr("Displays this help."));
    parser.addOption(help);
    command.addOptions(parser);
    const bool isUnderstood = parser.parse(QStringList(command.name()) + arguments);
    if (parser.isSet(help)) {
        console.print(commandHelp(command, parser));
        return Done;
    }
    if (!isUnderstood) {
        console.complain({}, parser.errorText());
        return Trouble;
    }
    return command.run(parser, console);
}

int runAny(const QStringList &arguments, Console &console)
{
    const QString first = arguments.value(0);
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        console.print(programHelp());
        return Done;
    }
    if (first == QLatin1String("--version")) {
        console.print(QLatin1String(Console::programName) + QLatin1Char(' ') +
                      QStringLiteral(FABLEGRID_VERSION));
        return Done;
    }
    if (const StoryCommand *command = commandNamed(first))
        return runCommand(*command, arguments.mid(1), console);
    console.complain(
        {}, first.isEmpty() ? Texts::tr("what is to be done? See fablegrid-story --help")
                            : Texts::tr("there is no command \"%1\". See fablegrid-story --help").arg(first));
    return Trouble;
}

} // namespace

const std::vector<const StoryCommand *> &StoryProgram::commands()
{
    static const std::vector<const StoryCommand *> all{
        &showCommand(),   &exportCommand(), &pictureCommand(), &checkCommand(),
        &importCommand(), &diffCommand(),   &copiesCommand(),
    };
    return all;
}

int StoryProgram::run(const QStringList &arguments, Console &console)
{
    const int code = runAny(arguments, console);
    if (const QString trouble = console.trouble(); !trouble.isEmpty()) {
        console.complain({}, Texts::tr("cannot write to the standard output: %1").arg(trouble));
        return Trouble;
    }
    return code;
}
