#include "app/autosavefolder.h"
#include "app/keptcopies.h"
#include "app/wholefile.h"
#include "story/console.h"
#include "story/outputfile.h"
#include "story/savedcopies.h"
#include "story/storycommand.h"
#include "story/storyreader.h"
#include "story/summary.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace {

/// Lists what the editor has put by, and brings it back.
class CopiesCommand : public StoryCommand
{
    Q_DECLARE_TR_FUNCTIONS(CopiesCommand)

public:
    QString name() const override { return QStringLiteral("copies"); }
    QString summary() const override { return tr("Lists autosaves and kept copies, the newest first."); }
    QString usage() const override { return tr("[--restore N -o FILE]"); }
    QString example() const override
    {
        return QStringLiteral("fablegrid-story copies --restore 1 -o novel.scene");
    }
    void addOptions(QCommandLineParser &parser) const override
    {
        parser.addOptions(OutputFile::options(tr("FILE")));
        parser.addOptions({
            {QStringLiteral("restore"),
             tr("Copies one out: by its number in the list, or, as every new copy moves the others on, by "
                "the name of its file."),
             tr("N")},
        });
    }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        if (!parser.positionalArguments().isEmpty())
            return console.refuse({}, tr("no file is to be named but behind -o"));
        const std::vector<SavedCopy> copies = savedCopies();
        const bool restores = parser.isSet(QStringLiteral("restore"));
        const QString path = parser.value(QStringLiteral("output"));
        if (restores && !path.isEmpty())
            return restore(copies, parser.value(QStringLiteral("restore")), OutputFile(parser), console);
        if (restores)
            return console.refuse({}, tr("where to? -o FILE is missing"));
        if (!path.isEmpty())
            return console.refuse({}, tr("which one? --restore N is missing"));
        const double part = 1.0 / double(std::max<std::size_t>(1, copies.size()));
        for (std::size_t i = 0; i < copies.size(); ++i) {
            const PartTold tell = console.progress().between(double(i) * part, double(i + 1) * part);
            console.print(lineOf(int(i) + 1, copies[i], tell));
        }
        if (copies.empty())
            console.print(
                tr("no copies in %1 and %2").arg(AutosaveFolder::usualFolder(), KeptCopies::usualFolder()));
        return Done;
    }

private:
    static QString lineOf(int number, const SavedCopy &copy, const PartTold &tell)
    {
        const QString kind =
            copy.kind == SavedCopy::autosave ? tr("autosave") : tr("kept (%1)").arg(copy.occasion);
        return QStringLiteral("%1  %2  %3  %4  %5")
            .arg(number, 3)
            .arg(copy.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
            .arg(kind, -12)
            .arg(QFileInfo(copy.path).fileName(), contentOf(copy, tell));
    }

    static QString contentOf(const SavedCopy &copy, const PartTold &tell)
    {
        StoryReader reader;
        if (const QString trouble = reader.read(copy.path, tell); !trouble.isEmpty())
            return tr("cannot be read: %1").arg(trouble);
        int events = 0;
        int words = 0;
        const Story story = reader.story();
        for (const StoryTab &tab : story.tabs) {
            const TabSummary summary = summaryOf(tab);
            events += summary.events;
            words += summary.words;
        }
        const QString content =
            tr("tabs: %1, events: %2, words: %3").arg(story.tabs.size()).arg(events).arg(words);
        return reader.damage().isNone() ? content : tr("%1, damaged").arg(content);
    }

    /// The bytes as they are: a damaged copy may be all that is left, and check tells of it.
    static int restore(const std::vector<SavedCopy> &copies, const QString &wanted, const OutputFile &output,
                       Console &console)
    {
        const auto hasName = [&wanted](const SavedCopy &copy) {
            return QFileInfo(copy.path).fileName() == wanted;
        };
        const auto named = std::find_if(copies.begin(), copies.end(), hasName);
        bool isNumber = false;
        const int number = named == copies.end() ? wanted.toInt(&isNumber) : int(named - copies.begin()) + 1;
        if (number < 1 || number > int(copies.size()))
            return console.refuse({}, tr("--restore %1: there is no such copy").arg(wanted));
        if (const QString trouble = output.refusal(); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        const QString path = copies[std::size_t(number) - 1].path;
        const WholeFile copy(path);
        if (!copy.trouble().isEmpty())
            return console.refuse(path, copy.trouble());
        if (const QString trouble = output.store(copy.content(), console); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        if (!output.isStandardOutput())
            console.print(tr("%1 is what %2 was").arg(output.path(), path));
        return Done;
    }
};

} // namespace

const StoryCommand &copiesCommand()
{
    static const CopiesCommand command;
    return command;
}
