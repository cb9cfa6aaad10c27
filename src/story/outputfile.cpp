#include "story/outputfile.h"

#include "app/durablefile.h"
#include "story/console.h"
#include "story/interruption.h"

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>

namespace {

/// A pipe, a terminal, /dev/null: nothing is lost there and nothing can be put in their place.
bool isDevice(const QFileInfo &file) { return file.exists() && !file.isFile() && !file.isDir(); }

} // namespace

QList<QCommandLineOption> OutputFile::options(const QString &value)
{
    return {
        {{QStringLiteral("o"), QStringLiteral("output")},
         tr("Where to write; - is the standard output."),
         value},
        {QStringLiteral("force"), tr("Replaces %1 if it is there.").arg(value)},
    };
}

OutputFile::OutputFile(const QCommandLineParser &parser)
    : OutputFile(parser.value(QStringLiteral("output")), parser.isSet(QStringLiteral("force")))
{}

bool OutputFile::isAt(const QString &file) const
{
    const QFileInfo output(name);
    return !isStandardOutput() && output.isFile() &&
           output.canonicalFilePath() == QFileInfo(file).canonicalFilePath();
}

QString OutputFile::refusal(const QString &source) const
{
    if (isStandardOutput())
        return {};
    const QFileInfo file(name);
    if (file.isDir())
        return tr("is a folder");
    if (file.exists() && !isDevice(file) && !mayReplace)
        return tr("is there already; --force replaces it");
    if (!source.isEmpty() && isAt(source))
        return tr("is what is read, and would be lost");
    return {};
}

QString OutputFile::store(const QByteArray &content, Console &console) const
{
    if (QString reason = refusal(); !reason.isEmpty())
        return reason;
    if (isStandardOutput()) {
        console.write(content);
        return {};
    }
    console.progress().hide(); // a device may be the terminal that shows it
    if (isDevice(QFileInfo(name))) {
        QFile device(name);
        const bool isWritten = device.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                               device.write(content) == content.size();
        return isWritten ? QString() : tr("cannot be written: %1").arg(device.errorString());
    }
    const Interruption::Delay delay;
    DurableFile file(name);
    const QString trouble = file.open() ? file.replaceBy(content) : file.trouble();
    if (trouble.isEmpty())
        return {};
    return file.rescue().isEmpty()
               ? tr("cannot be written: %1").arg(trouble)
               : tr("cannot be written: %1; the result is in %2").arg(trouble, file.rescue());
}
