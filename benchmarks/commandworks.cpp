#include "works.h"

#include "story/console.h"
#include "story/storyprogram.h"

#include <QBuffer>

// What the command beside the editor takes for the same story, each time from the file to the last byte.

namespace {

QByteArray run(const QStringList &arguments)
{
    QByteArray said;
    QByteArray complained;
    QBuffer output(&said);
    QBuffer errors(&complained);
    output.open(QIODevice::WriteOnly);
    errors.open(QIODevice::WriteOnly);
    Console console(output, errors);
    if (StoryProgram::run(arguments, console) != Done)
        qFatal("%s", complained.constData());
    return said;
}

QStringList writing(const char *command, const QString &file, const char *format)
{
    return {QString::fromLatin1(command), file,
            QStringLiteral("-o"),         QStringLiteral("-"),
            QStringLiteral("--format"),   QString::fromLatin1(format)};
}

} // namespace

void Works::command()
{
    add(QStringLiteral("command: show"), {}, [this] { run({QStringLiteral("show"), path}); });
    for (const char *format : {"md", "json", "csv", "dot", "opml", "twee", "html", "odt", "pdf"}) {
        add(QStringLiteral("command: export ") + QLatin1String(format), {},
            [this, format] { run(writing("export", path, format)); });
    }
    add(QStringLiteral("command: picture"), {}, [this] {
        run(writing("picture", path, "png") << QStringLiteral("--scale") << QStringLiteral("0.1"));
    });
    const QString headings = folder.filePath(QStringLiteral("story.md"));
    QFile file(headings);
    if (!file.open(QIODevice::WriteOnly) || file.write(run(writing("export", path, "md"))) < 0)
        qFatal("cannot write %s", qPrintable(headings));
    file.close();
    add(QStringLiteral("command: import"), {}, [&headings] {
        run({QStringLiteral("import"), headings, QStringLiteral("-o"), QStringLiteral("-")});
    });
}
