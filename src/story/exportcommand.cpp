#include "story/console.h"
#include "story/outputfile.h"
#include "story/storycommand.h"
#include "story/storyformat.h"
#include "story/storyformats.h"
#include "story/storyreader.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

namespace {

class ExportCommand : public StoryCommand
{
    Q_DECLARE_TR_FUNCTIONS(ExportCommand)

public:
    QString name() const override { return QStringLiteral("export"); }
    QString summary() const override { return tr("Writes stories as documents and as data."); }
    QString usage() const override { return tr("FILE -o OUT"); }
    QString example() const override
    {
        return QStringLiteral("fablegrid-story export novel.scene -o novel.odt --branches");
    }
    void addOptions(QCommandLineParser &parser) const override
    {
        const QString formats = StoryFormats::names().join(QLatin1Char(' '));
        parser.addOptions(OutputFile::options(tr("OUT")));
        parser.addOptions({
            {QStringLiteral("format"), tr("One of %1; else by the name of OUT.").arg(formats), tr("NAME")},
            {QStringLiteral("tab"), tr("Only this tab, counted from 1; may be given several times."),
             tr("N")},
            {QStringLiteral("important"), tr("Only the important events.")},
            {QStringLiteral("branches"),
             tr("What is outside of the story as well, each branch under the event "
                "that it leaves.")},
            {QStringLiteral("numbers"), tr("With a number before each title.")},
            {QStringLiteral("paper"), tr("For odt and pdf: A4 or letter."), tr("SIZE"), QStringLiteral("A4")},
        });
    }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        const QStringList files = parser.positionalArguments();
        if (files.size() != 1)
            return console.refuse({}, tr("one FILE is to be exported, not %1").arg(files.size()));
        const OutputFile output(parser);
        if (output.path().isEmpty())
            return console.refuse({}, tr("where to? -o OUT is missing"));
        const StoryFormat *format = formatOf(parser, output.path());
        if (!format)
            return console.refuse({}, formatTrouble(parser, output.path()));
        ExportOptions options;
        if (const QString trouble = readOptions(parser, *format, options); !trouble.isEmpty())
            return console.refuse({}, trouble);
        if (const QString trouble = output.refusal(files.first()); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        return write(files.first(), *format, options, output, console);
    }

private:
    static const StoryFormat *formatOf(const QCommandLineParser &parser, const QString &path)
    {
        const QString name = parser.value(QStringLiteral("format"));
        return name.isEmpty() ? StoryFormats::forFile(path) : StoryFormats::named(name);
    }

    static QString formatTrouble(const QCommandLineParser &parser, const QString &path)
    {
        const QString formats = StoryFormats::names().join(QLatin1Char(' '));
        const QString name = parser.value(QStringLiteral("format"));
        return name.isEmpty() ? tr("%1 does not say which format; --format NAME does: %2").arg(path, formats)
                              : tr("there is no format \"%1\", only %2").arg(name, formats);
    }

    /// Returns what is wrong with them, empty if nothing is.
    static QString readOptions(const QCommandLineParser &parser, const StoryFormat &format,
                               ExportOptions &options)
    {
        const QStringList tabs = parser.values(QStringLiteral("tab"));
        for (const QString &text : tabs) {
            bool isNumber = false;
            const int number = text.toInt(&isNumber);
            if (!isNumber || number < 1)
                return tr("--tab %1 is no number of a tab").arg(text);
            options.tabs.insert(number - 1);
        }
        options.onlyImportant = parser.isSet(QStringLiteral("important"));
        options.withBranches = parser.isSet(QStringLiteral("branches"));
        options.withNumbers = parser.isSet(QStringLiteral("numbers"));
        for (const char *name : {"important", "branches", "numbers"}) {
            if (parser.isSet(QLatin1String(name)) && !format.tellsInOrder())
                return tr("--%1 is not for %2, which holds every event")
                    .arg(QLatin1String(name), format.name());
        }
        if (parser.isSet(QStringLiteral("paper")) && !format.hasPages())
            return tr("--paper is not for %1, which has no pages").arg(format.name());
        const QString paper = parser.value(QStringLiteral("paper")).toLower();
        if (paper != QLatin1String("a4") && paper != QLatin1String("letter"))
            return tr("--paper is A4 or letter, not %1").arg(parser.value(QStringLiteral("paper")));
        options.paper = paper == QLatin1String("a4") ? QPageSize::A4 : QPageSize::Letter;
        return {};
    }

    static int write(const QString &file, const StoryFormat &format, ExportOptions &options,
                     const OutputFile &output, Console &console)
    {
        constexpr double half = 0.5;
        Story story;
        {
            StoryReader reader;
            if (const QString trouble = reader.read(file, console.progress().between(0, half));
                !trouble.isEmpty())
                return console.refuse(file, trouble);
            const QStringList damages = reader.damage().lines();
            for (const QString &damage : damages)
                console.complain(file, damage);
            story = reader.story();
        } // the graphs take more room than the texts
        if (!options.tabs.empty() && *options.tabs.rbegin() >= int(story.tabs.size()))
            return console.refuse(file, tr("has no tab %1").arg(*options.tabs.rbegin() + 1));
        options.name = QFileInfo(file).completeBaseName();

        QByteArray content;
        QBuffer buffer(&content);
        buffer.open(QIODevice::WriteOnly);
        options.tell = console.progress().between(half, 1);
        options.tell(0);
        format.write(story, options, buffer);
        buffer.close();
        if (const QString trouble = output.store(content, console); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        return Done;
    }
};

} // namespace

const StoryCommand &exportCommand()
{
    static const ExportCommand command;
    return command;
}
