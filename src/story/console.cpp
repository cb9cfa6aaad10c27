#include "story/console.h"

#include <QFileDevice>

namespace {

QString withoutControls(QString text)
{
    for (QChar &sign : text) {
        if (sign.category() == QChar::Other_Control || sign == QChar::LineSeparator ||
            sign == QChar::ParagraphSeparator)
            sign = QLatin1Char(' ');
    }
    return text;
}

} // namespace

Console::Console(QIODevice &output, QIODevice &errors, bool errorsAreSeen, qint64 patience)
    : out(output), err(errors), bar(errors, errorsAreSeen, patience)
{}

void Console::print(const QString &line) { write(line.toUtf8() + '\n'); }

void Console::write(const QByteArray &bytes)
{
    bar.hide();
    if (!hasFailed && out.write(bytes) != bytes.size())
        hasFailed = true;
}

QString Console::trouble()
{
    if (auto *file = qobject_cast<QFileDevice *>(&out); file && !file->flush())
        hasFailed = true;
    return hasFailed ? out.errorString() : QString();
}

void Console::complain(const QString &file, const QString &trouble)
{
    bar.hide();
    QString line = QLatin1String(programName) + QStringLiteral(": ");
    if (!file.isEmpty())
        line += file + QStringLiteral(": ");
    err.write(withoutControls(line + trouble).toLocal8Bit() + '\n');
    if (auto *device = qobject_cast<QFileDevice *>(&err))
        device->flush();
}

int Console::refuse(const QString &file, const QString &trouble)
{
    complain(file, trouble);
    return Trouble;
}

QString inOneLine(const QString &text, qsizetype most)
{
    QString line = withoutControls(text.left(4 * most)).simplified();
    if (line.size() <= most && text.size() <= 4 * most)
        return line;
    line.truncate(most - 1);
    if (!line.isEmpty() && line.back().isHighSurrogate())
        line.chop(1);
    return line + QChar(u'\u2026');
}
