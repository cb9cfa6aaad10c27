#pragma once

#include "story/storysupport.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

// What the tests share that ask programs nobody here wrote.

/// Titles and texts that one format or the other has to take care of.
inline StoryTab careTab()
{
    const std::vector<std::pair<QString, QString>> texts{
        {QStringLiteral("Start & <b>go</b>"),
         QStringLiteral(
             "It *begins* with _markup_ & \"quotes\" \\ #x\n- no list\n1. nor this\n    nor code\n> nor "
             "quote")},
        {QStringLiteral("0 events"), QStringLiteral("Emoji \U0001F600 \U0001F9D9\u200D\u2640\uFE0F")},
        {QStringLiteral("[[link->x|y]] {t} ::"),
         QStringLiteral("::no passage\n[[nor a link]]\n<script>alert(1)</script>\n&amp; &lt;")},
        {QStringLiteral("\u05E9\u05DC\u05D5\u05DD"), QStringLiteral("\u0645\u0631\u062D\u0628\u0627 a")},
        {QString(10000, QLatin1Char('x')), QStringLiteral("a\u2028b\tc")},
        {QStringLiteral("C:\\N \\G $math$ ~~s~~ ^u^ @cite `code` a_b_c"),
         QStringLiteral("+ plus\n~~~\n```\n: def\n| t | x |\n% p\n=set\n---\n***\n\n\nafter")},
        {QStringLiteral("# no heading #"), QStringLiteral("Enter description")},
        {QStringLiteral("two\nlines"), QStringLiteral("the end")},
    };
    StoryTab tab;
    for (const auto &[title, text] : texts) {
        StoryEvent event;
        event.index = int(tab.events.size());
        event.feeder = event.index - 1;
        event.title = title;
        event.description = text;
        event.position = QPointF(300.0 * event.index, 100);
        tab.events.push_back(event);
    }
    tab.events.back().isEnd = true;
    tab.events[2].isImportant = true;
    tab.joinFed();
    tab.findChain();
    return tab;
}

/// Readers of documents do not tell how white a space was.
inline QString squeezed(QString text)
{
    return text.replace(QLatin1Char('\n'), QLatin1Char(' ')).simplified();
}

inline QStringList titles(bool isSqueezed = true)
{
    QStringList all;
    for (const StoryEvent &event : careTab().events)
        all << (isSqueezed ? squeezed(event.title) : event.title);
    return all;
}

/// What a sheet of paper still tells of a text: letters, without how they are joined, white space and what
/// the fonts at hand may not have.
inline QString lettersOnPaper(const QString &text)
{
    static const QRegularExpression gone(QStringLiteral("[\\s\\x{202A}-\\x{202E}\\x{200D}\\x{FE0F}]"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    QString letters = text.normalized(QString::NormalizationForm_KC).remove(gone);
    letters.removeIf([](QChar unit) { return unit.isSurrogate(); });
    return letters;
}

/// A file with that story, and what others say of what it is exported to.
class ExportedCare
{
public:
    /// The path of what it is exported to, or why it is not.
    QString exported(const QString &suffix) const
    {
        const QString path = folder.path(QStringLiteral("care.") + suffix);
        const CommandResult result = runCommand(
            {QStringLiteral("export"), scene, QStringLiteral("-o"), path, QStringLiteral("--force")});
        return result.code == 0 ? path : QString::fromUtf8(result.errors);
    }

    /// What the program prints; what it complains of if it fails.
    static QByteArray said(const QString &program, const QStringList &arguments, const QByteArray &input = {})
    {
        QProcess process;
        process.start(program, arguments);
        process.write(input);
        process.closeWriteChannel();
        constexpr int patience = 100000; // milliseconds
        if (!process.waitForFinished(patience) || process.exitCode() != 0)
            return "FAILED: " + process.readAllStandardError();
        return process.readAllStandardOutput();
    }

    const StoryFolder folder{};
    const QString scene = folder.put(QStringLiteral("care.scene"), sceneBytes({careTab()}));
};

#define NEEDS(program)                                                                                       \
    if (QStandardPaths::findExecutable(QStringLiteral(program)).isEmpty())                                   \
    QSKIP(program " is not installed")
