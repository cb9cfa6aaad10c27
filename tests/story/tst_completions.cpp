#include "story/storycommand.h"
#include "story/storysupport.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

// What shells offer and the manual tells has to follow the commands and their options.

class tst_Completions : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void everyOptionIsKnown_data();
    void everyOptionIsKnown();
    void bashOffers_data();
    void bashOffers();

private:
    static QString file(const char *name)
    {
        return QString::fromUtf8(readFile(QStringLiteral(FABLEGRID_LINUX_FILES "/") + QLatin1String(name)));
    }
    /// Sorted; of the program itself if `command` is empty.
    static QStringList options(const QString &command)
    {
        QStringList arguments{command, QStringLiteral("--help")};
        arguments.removeAll(QString());
        static const QRegularExpression option(QStringLiteral("^  (?:-\\w, )?(--\\w+)"),
                                               QRegularExpression::MultilineOption);
        QStringList all;
        for (auto found = option.globalMatch(QString::fromUtf8(runCommand(arguments).output));
             found.hasNext();)
            all << found.next().captured(1);
        all.sort();
        return all;
    }
    static QStringList commands()
    {
        QStringList names;
        for (const StoryCommand *command : StoryProgram::commands())
            names << command->name();
        return names;
    }
    /// From a line that matches up to the next one that matches, or the end.
    static QString part(const QString &text, const QString &first, const QString &last)
    {
        const QRegularExpression pattern(QStringLiteral("^%1$.*?(?=^%2$|\\z)").arg(first, last),
                                         QRegularExpression::MultilineOption |
                                             QRegularExpression::DotMatchesEverythingOption);
        return pattern.match(text).captured();
    }
};

void tst_Completions::everyOptionIsKnown_data()
{
    QTest::addColumn<QString>("command");
    const QStringList all = commands();
    for (const QString &command : all)
        QTest::newRow(qPrintable(command)) << command;
}

void tst_Completions::everyOptionIsKnown()
{
    QFETCH(const QString, command);
    const QString zsh = part(file("completions/_fablegrid-story"), QStringLiteral(" +%1\\)").arg(command),
                             QStringLiteral(" +;;"));
    const QString fish = file("completions/fablegrid-story.fish");
    const QString manual = file("fablegrid-story.1.in");
    QVERIFY(fish.contains(QStringLiteral(" -a %1 -d ").arg(command)));
    QVERIFY(manual.contains(QStringLiteral("\n.TP\n.B %1\n").arg(command)));
    const QStringList all = options(command);
    QVERIFY(all.contains(QStringLiteral("--help")));
    for (const QString &option : all) {
        const bool isOutput = option == QLatin1String("--output") || option == QLatin1String("--force");
        const QString name = option.mid(2);
        QVERIFY2(zsh.contains(isOutput ? QStringLiteral("$output") : option), qPrintable(option));
        QVERIFY2(fish.contains(QStringLiteral(" -l %1 ").arg(name)), qPrintable(option));
        const QString inManual =
            name == QLatin1String("output") ? QStringLiteral("\\-o") : QStringLiteral("\\-\\-") + name;
        QVERIFY2(manual.contains(inManual), qPrintable(option));
    }
}

void tst_Completions::bashOffers_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("offered");
    const auto row = [](const QString &line, QStringList offered) {
        offered.sort();
        QTest::newRow(qPrintable(line)) << line << offered;
    };
    row(QStringLiteral("fablegrid-story "), commands() + options({}));
    const QStringList all = commands();
    for (const QString &command : all)
        row(QStringLiteral("fablegrid-story %1 --").arg(command), options(command));
    row(QStringLiteral("fablegrid-story export --format o"), {QStringLiteral("odt"), QStringLiteral("opml")});
    row(QStringLiteral("fablegrid-story picture --format "),
        {QStringLiteral("pdf"), QStringLiteral("png"), QStringLiteral("svg")});
    row(QStringLiteral("fablegrid-story show n"), {QStringLiteral("nest"), QStringLiteral("novel.scene")});
    row(QStringLiteral("fablegrid-story import n"), {QStringLiteral("nest"), QStringLiteral("notes.md")});
    row(QStringLiteral("fablegrid-story import notes.md --into n"),
        {QStringLiteral("nest"), QStringLiteral("novel.scene")});
    row(QStringLiteral("fablegrid-story export novel.scene -o n"),
        {QStringLiteral("nest"), QStringLiteral("notes.md"), QStringLiteral("novel.scene")});
    row(QStringLiteral("fablegrid-story copies n"), {});
}

void tst_Completions::bashOffers()
{
    QFETCH(const QString, line);
    QFETCH(const QStringList, offered);
    if (QStandardPaths::findExecutable(QStringLiteral("bash")).isEmpty())
        QSKIP("bash is not installed");
    const StoryFolder folder;
    folder.put(QStringLiteral("novel.scene"), {});
    folder.put(QStringLiteral("notes.md"), {});
    QVERIFY(QDir(folder.path({})).mkdir(QStringLiteral("nest")));
    QProcess bash;
    bash.setWorkingDirectory(folder.path({}));
    // compopt works only while a key is being answered.
    const QString script =
        QStringLiteral("compopt() { :; }; source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1))\n"
                       "_fablegrid_story; printf '%s\\n' \"${COMPREPLY[@]}\"; ! shopt -q extglob");
    const QStringList arguments{QStringLiteral("-c"), script, QStringLiteral("bash"),
                                QStringLiteral(FABLEGRID_LINUX_FILES "/completions/fablegrid-story.bash")};
    bash.start(QStringLiteral("bash"), arguments + line.split(QLatin1Char(' ')));
    QVERIFY(bash.waitForFinished());
    QCOMPARE(bash.readAllStandardError(), QByteArray());
    QCOMPARE(bash.exitCode(), 0);
    QStringList found =
        QString::fromUtf8(bash.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    found.sort();
    QCOMPARE(found, offered);
}

QTEST_MAIN(tst_Completions)
#include "tst_completions.moc"
