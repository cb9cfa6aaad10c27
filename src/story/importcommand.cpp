#include "app/documentformat.h"
#include "story/console.h"
#include "story/outputfile.h"
#include "story/storycommand.h"
#include "story/storyformat.h"
#include "story/storyformats.h"
#include "story/storygraph.h"
#include "story/storylayout.h"
#include "story/storyreader.h"
#include "story/terminal.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>

namespace {

QStringList namesOfReadable()
{
    QStringList names;
    for (const StoryFormat *format : StoryFormats::all()) {
        if (format->canRead())
            names << format->name();
    }
    return names;
}

constexpr double beforeImport = 0.2; // of the work: reading the story that is added to, and the text

/// Makes stories of texts in other formats.
class ImportCommand : public StoryCommand
{
    Q_DECLARE_TR_FUNCTIONS(ImportCommand)

public:
    QString name() const override { return QStringLiteral("import"); }
    QString summary() const override { return tr("Makes a story of an outline or of data."); }
    QString usage() const override { return tr("IN -o FILE"); }
    QString example() const override
    {
        return QStringLiteral("fablegrid-story import outline.md -o novel.scene");
    }
    void addOptions(QCommandLineParser &parser) const override
    {
        parser.addOptions(OutputFile::options(tr("FILE")));
        parser.addOptions({
            {QStringLiteral("format"),
             tr("One of %1; else by the name of IN, which may be -, the standard input.")
                 .arg(namesOfReadable().join(QLatin1Char(' '))),
             tr("NAME")},
            {QStringLiteral("into"),
             tr("Adds the tabs behind those of the story FILE, which is written anew, or with -o stays as it "
                "is; a damaged one only with -o."),
             tr("FILE")},
        });
    }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        const QStringList files = parser.positionalArguments();
        if (files.size() != 1)
            return console.refuse({}, tr("one IN is to be imported, not %1").arg(files.size()));
        const QString into = parser.value(QStringLiteral("into"));
        const QString to = parser.value(QStringLiteral("output"));
        const OutputFile output(to.isEmpty() ? into : to,
                                parser.isSet(QStringLiteral("force")) || to.isEmpty());
        if (output.path().isEmpty())
            return console.refuse({}, tr("where to? -o FILE or --into FILE is missing"));
        const QString formatName = parser.value(QStringLiteral("format"));
        const StoryFormat *format =
            formatName.isEmpty() ? StoryFormats::forFile(files.first()) : StoryFormats::named(formatName);
        if (!format || !format->canRead())
            return console.refuse({}, formatTrouble(formatName, files.first()));
        if (const QString trouble = output.refusal(files.first()); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);

        StoryReader before;
        if (!into.isEmpty()) {
            if (const QString trouble = troubleWith(before, into, output, console); !trouble.isEmpty())
                return console.refuse(into, trouble);
        }
        return import(files.first(), *format, before, output, console);
    }

private:
    static QString formatTrouble(const QString &name, const QString &path)
    {
        const QString readable = namesOfReadable().join(QLatin1Char(' '));
        return name.isEmpty() ? tr("%1 does not say which format; --format NAME does: %2").arg(path, readable)
                              : tr("the format \"%1\" cannot be imported, only %2").arg(name, readable);
    }

    /// What is damaged would be gone from the file when it is written anew, so that only another one may hold
    /// what can be read of it.
    static QString troubleWith(StoryReader &before, const QString &into, const OutputFile &output,
                               Console &console)
    {
        if (QString trouble = before.read(into, console.progress().between(0, beforeImport));
            !trouble.isEmpty())
            return trouble;
        const QStringList damages = before.damage().lines();
        if (!damages.isEmpty() && output.isAt(into))
            return tr(
                "is damaged, as fablegrid-story check tells; with -o to another file it stays as it is");
        for (const QString &damage : damages)
            console.complain(into, tr("damaged: %1").arg(damage));
        return {};
    }

    static int import(const QString &path, const StoryFormat &format, const StoryReader &before,
                      const OutputFile &output, Console &console)
    {
        QFile file(path);
        if (QFileInfo(path).isDir())
            return console.refuse(path, tr("is a folder"));
        const bool isOpen = path == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                       : file.open(QIODevice::ReadOnly);
        if (!isOpen)
            return console.refuse(path, file.errorString());
        const bool isTyped = Terminal::isAt(file.handle());
        if (isTyped)
            console.progress().hide();
        const QByteArray text = file.readAll();
        if (isTyped)
            console.progress().beginAnew();
        if (file.error() != QFileDevice::NoError)
            return console.refuse(path, file.errorString());
        Story story;
        ImportResult result = format.read(text, story);
        if (!result.trouble.isEmpty())
            return console.refuse(path, result.trouble);
        if (story.tabs.empty() && result.places != ImportResult::Places::exact)
            return console.refuse(path, tr("has no events"));

        std::size_t count = 0;
        for (const StoryTab &tab : story.tabs)
            count += tab.events.size();
        double reached = beforeImport;
        std::vector<StoryGraph> graphs;
        for (const StoryTab &tab : story.tabs) {
            const double share = double(tab.events.size()) / double(std::max<std::size_t>(1, count));
            graphs.emplace_back(tab,
                                console.progress().between(reached, reached + share * (1 - beforeImport)));
            reached += share * (1 - beforeImport);
            if (!layOut(graphs.back(), tab, result))
                return console.refuse(path, tr("has more than the canvas of one tab has room for"));
            graphs.back().connect(tab);
        }
        for (const QString &note : std::as_const(result.notes))
            console.complain(path, note);
        std::vector<NodegraphScene *> scenes = before.scenes();
        for (const StoryGraph &graph : graphs)
            scenes.push_back(&graph.scene());
        // As late as can be: whoever saves it meanwhile would lose that.
        if (output.isAt(before.path()) && before.hasChangedSince())
            return console.refuse(output.path(),
                                  tr("was changed by somebody else meanwhile, and stays as it is"));
        if (const QString trouble = output.store(DocumentFormat::bytes(scenes), console); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        return Done;
    }

    /// False if there is no room.
    static bool layOut(StoryGraph &graph, const StoryTab &tab, ImportResult &result)
    {
        if (result.places == ImportResult::Places::exact)
            return true;
        const std::vector<QSizeF> sizes = graph.sizes();
        if (result.places == ImportResult::Places::wished) {
            std::vector<QRectF> boxes;
            for (std::size_t i = 0; i < sizes.size(); ++i)
                boxes.emplace_back(tab.events[i].position, sizes[i]);
            if (StoryLayout::isClear(std::move(boxes), graph.canvas()))
                return true;
            result.notes << tr("the places would let events overlap or leave the canvas; they are laid out "
                               "anew");
        }
        const std::vector<QPointF> places = StoryLayout(tab, sizes, graph.canvas()).places();
        if (places.size() != tab.events.size())
            return false;
        graph.place(places);
        return true;
    }
};

} // namespace

const StoryCommand &importCommand()
{
    static const ImportCommand command;
    return command;
}
