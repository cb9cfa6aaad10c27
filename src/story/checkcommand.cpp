#include "story/console.h"
#include "story/storycommand.h"
#include "story/storyreader.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

class CheckCommand : public StoryCommand
{
    Q_DECLARE_TR_FUNCTIONS(CheckCommand)

public:
    QString name() const override { return QStringLiteral("check"); }
    QString summary() const override { return tr("Tells whether files are sound, or what is damaged."); }
    QString usage() const override { return tr("FILE..."); }
    QString example() const override { return QStringLiteral("fablegrid-story check *.scene"); }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        const QStringList files = parser.positionalArguments();
        if (files.isEmpty())
            return console.refuse({}, tr("which file is to be checked?"));
        int code = Done;
        const double part = 1.0 / double(files.size());
        for (qsizetype i = 0; i < files.size(); ++i)
            code =
                qMax(code, check(files[i], console.progress().between(double(i) * part, double(i + 1) * part),
                                 console));
        return code;
    }

private:
    static int check(const QString &file, const PartTold &tell, Console &console)
    {
        StoryReader reader;
        if (const QString trouble = reader.read(file, tell); !trouble.isEmpty())
            return console.refuse(file, trouble);
        const QStringList damages = reader.damage().lines();
        if (damages.isEmpty())
            console.print(tr("%1: sound").arg(file));
        for (const QString &damage : damages)
            console.print(tr("%1: damaged: %2").arg(file, damage));
        return damages.isEmpty() ? Done : Differs;
    }
};

} // namespace

const StoryCommand &checkCommand()
{
    static const CheckCommand command;
    return command;
}
