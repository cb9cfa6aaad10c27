#include "story/canvaspicture.h"
#include "story/console.h"
#include "story/outputfile.h"
#include "story/storycommand.h"
#include "story/storyreader.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <cmath>

namespace {

class PictureCommand : public StoryCommand
{
    Q_DECLARE_TR_FUNCTIONS(PictureCommand)

public:
    QString name() const override { return QStringLiteral("picture"); }
    QString summary() const override { return tr("Paints the canvas as the window does."); }
    QString usage() const override { return tr("FILE -o OUT"); }
    QString example() const override
    {
        return QStringLiteral("fablegrid-story picture novel.scene -o poster.pdf --paper A3 --pages 2x1");
    }
    void addOptions(QCommandLineParser &parser) const override
    {
        parser.addOptions(OutputFile::options(tr("OUT")));
        parser.addOptions({
            {QStringLiteral("format"), tr("One of png svg pdf; else by the name of OUT."), tr("NAME")},
            {QStringLiteral("tab"), tr("This tab, counted from 1."), tr("N"), QStringLiteral("1")},
            {QStringLiteral("story"), tr("Only the events of the story.")},
            {QStringLiteral("scale"), tr("So many pixels, or points of a PDF, to a unit of the canvas."),
             tr("S"), QStringLiteral("1")},
            {QStringLiteral("paper"),
             tr("For pdf: sheets of this size, which the picture fills: A0 to A6, letter, legal or tabloid."),
             tr("SIZE")},
            {QStringLiteral("pages"), tr("With --paper: so many sheets side by side and below one another."),
             tr("CxR"), QStringLiteral("1x1")},
        });
    }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        const QStringList files = parser.positionalArguments();
        if (files.size() != 1)
            return console.refuse({}, tr("one FILE is to be painted, not %1").arg(files.size()));
        const OutputFile output(parser);
        if (output.path().isEmpty())
            return console.refuse({}, tr("where to? -o OUT is missing"));
        CanvasPicture::Options options;
        options.title = QFileInfo(files.first()).completeBaseName();
        options.onlyStory = parser.isSet(QStringLiteral("story"));
        for (const auto &read : {&readKind, &readScale, &readSheets}) {
            if (const QString trouble = read(parser, options); !trouble.isEmpty())
                return console.refuse({}, trouble);
        }
        if (const QString trouble = output.refusal(files.first()); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        return paint(files.first(), parser.value(QStringLiteral("tab")), options, output, console);
    }

private:
    // Each returns what is wrong with the options that it reads, empty if nothing is.

    static QString readKind(const QCommandLineParser &parser, CanvasPicture::Options &options)
    {
        static const QHash<QString, CanvasPicture::Kind> kinds{{QStringLiteral("png"), CanvasPicture::Png},
                                                               {QStringLiteral("svg"), CanvasPicture::Svg},
                                                               {QStringLiteral("pdf"), CanvasPicture::Pdf}};
        const QString path = parser.value(QStringLiteral("output"));
        const QString asked = parser.value(QStringLiteral("format"));
        const QString name = asked.isEmpty() ? QFileInfo(path).suffix().toLower() : asked;
        if (kinds.contains(name)) {
            options.kind = kinds[name];
            return {};
        }
        return asked.isEmpty() ? tr("%1 does not say which format; --format NAME does: png svg pdf").arg(path)
                               : tr("there is no format \"%1\", only png svg pdf").arg(asked);
    }

    static QString readScale(const QCommandLineParser &parser, CanvasPicture::Options &options)
    {
        const QString text = parser.value(QStringLiteral("scale"));
        bool isNumber = false;
        options.scale = text.toDouble(&isNumber);
        const bool isUsable = isNumber && std::isfinite(options.scale) && options.scale > 0;
        return isUsable ? QString() : tr("--scale %1 is no number above 0").arg(text);
    }

    static QString readSheets(const QCommandLineParser &parser, CanvasPicture::Options &options)
    {
        const QString paper = parser.value(QStringLiteral("paper"));
        const bool hasPages = parser.isSet(QStringLiteral("pages"));
        if (paper.isEmpty())
            return hasPages ? tr("--pages needs a --paper") : QString();
        if (options.kind != CanvasPicture::Pdf)
            return tr("--paper is for pdf only");
        if (parser.isSet(QStringLiteral("scale")))
            return tr("--scale and --paper do not go together: the sheets are filled");
        static const QHash<QString, QPageSize::PageSizeId> sizes{
            {QStringLiteral("a0"), QPageSize::A0},       {QStringLiteral("a1"), QPageSize::A1},
            {QStringLiteral("a2"), QPageSize::A2},       {QStringLiteral("a3"), QPageSize::A3},
            {QStringLiteral("a4"), QPageSize::A4},       {QStringLiteral("a5"), QPageSize::A5},
            {QStringLiteral("a6"), QPageSize::A6},       {QStringLiteral("letter"), QPageSize::Letter},
            {QStringLiteral("legal"), QPageSize::Legal}, {QStringLiteral("tabloid"), QPageSize::Tabloid},
        };
        if (!sizes.contains(paper.toLower()))
            return tr("--paper is A0 to A6, letter, legal or tabloid, not %1").arg(paper);
        options.paper = QPageSize(sizes[paper.toLower()]);

        static const QRegularExpression shape(QStringLiteral("^([1-9]\\d?)x([1-9]\\d?)$"));
        const QString pages = parser.value(QStringLiteral("pages"));
        const QRegularExpressionMatch match = shape.match(pages);
        if (!match.hasMatch())
            return tr("--pages %1 is not such as 2x1, from 1x1 to 99x99").arg(pages);
        options.sheets = QSize(match.captured(1).toInt(), match.captured(2).toInt());
        return {};
    }

    static int paint(const QString &file, const QString &tab, const CanvasPicture::Options &options,
                     const OutputFile &output, Console &console)
    {
        constexpr double half = 0.5;
        StoryReader reader(StoryReader::Boxes::measured);
        if (const QString trouble = reader.read(file, console.progress().between(0, half));
            !trouble.isEmpty())
            return console.refuse(file, trouble);
        const QStringList damages = reader.damage().lines();
        for (const QString &damage : damages)
            console.complain(file, damage);
        const std::vector<NodegraphScene *> scenes = reader.scenes();
        bool isNumber = false;
        const int number = tab.toInt(&isNumber);
        if (!isNumber || number < 1 || std::size_t(number) > scenes.size())
            return console.refuse(file, tr("has no tab %1").arg(tab));

        CanvasPicture picture(*scenes[std::size_t(number) - 1], options);
        if (const QString trouble = picture.refusal(); !trouble.isEmpty())
            return console.refuse(file, trouble);
        const QByteArray content = picture.paint(console.progress().between(half, 1));
        if (content.isEmpty())
            return console.refuse(file, tr("the memory does not suffice for a picture of this scale"));
        if (const QString trouble = output.store(content, console); !trouble.isEmpty())
            return console.refuse(output.path(), trouble);
        return Done;
    }
};

} // namespace

const StoryCommand &pictureCommand()
{
    static const PictureCommand command;
    return command;
}
