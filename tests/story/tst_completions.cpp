#include "story/storycommand.h"
#ifdef Q_OS_LINUX
#include "story/pty.h"
#endif
#include "story/storysupport.h"

#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>

// What shells offer and the manual tells has to follow the commands and their options.

namespace {

// Each shell is asked in a folder for what it offers behind a line, with the file of its completions and the
// line as arguments, and answers with a line for each.

// compopt works only while a key is being answered.
const char *const bashAnswers = R"(
compopt() { :; }
source "$1"
read -ra COMP_WORDS <<<"$2"
[[ $2 == *' ' ]] && COMP_WORDS+=('')
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_fablegrid_story
printf '%s\n' "${COMPREPLY[@]}"
! shopt -q extglob
)";

const char *const fishAnswers = R"(
source $argv[1]
complete -C $argv[2]
)";

// Only a shell on a terminal completes: one runs on a terminal of its own, and notes what is added to the
// list.
const char *const zshAnswers = R"(
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "fpath=(${(q)1:h} \$fpath); source ${(q)HOME}/inside"
zpty -r -m shell seen '*ready*' || exit 1
zpty -n -w shell "$2"$'\t'
zpty -r -m shell seen '*<<*>>*' || exit 1
print -r -- ${${seen#*<<}%%>>*}
zpty -d shell
)";
const char *const insideZsh = R"(
PROMPT=
setopt nolistbeep
autoload -U compinit && compinit -C -d $HOME/known
bindkey '^I' complete-word
typeset -a offered
compadd() {
    local -a hits
    if [[ " ${argv[1,(i)(-|--)]} " != *' -'(O|A|D)' '* ]]; then
        builtin compadd -A hits "$@"
        offered+=($hits)
    fi
    builtin compadd "$@"
}
before() { offered=(); comppostfuncs=(after) }
after() { print -r -- "<<${(pj:\n:)offered}>>" }
compprefuncs=(before)
print rea''dy
)";

} // namespace

class tst_Completions : public TestCase
{
    Q_OBJECT

private slots:
    void everyOptionIsKnown_data();
    void everyOptionIsKnown();
    void shellOffers_data();
    void shellOffers();
#ifdef Q_OS_LINUX
    void tabulatorCompletes();
#endif

private:
    StoryFolder home; // with nobody's settings, and what zsh has found out about all of its functions

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

void tst_Completions::shellOffers_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("offered");
    const QStringList every{QStringLiteral("nest"), QStringLiteral("notes.md"),
                            QStringLiteral("novel.scene")};
    const auto row = [&every](const QString &line, QStringList offered) {
        for (const char *shell : {"bash", "zsh", "fish"}) {
            const bool isFish = QLatin1String(shell) == QLatin1String("fish");
            if (isFish && offered.contains(QLatin1String("nest")))
                offered = every; // of the files it only puts those in front that have the suffix
            if (isFish && line.endsWith(u' ')) // and options it offers to whoever has begun to write one
                offered.removeIf([](const QString &word) { return word.startsWith(QLatin1String("--")); });
            offered.sort();
            QTest::addRow("%s: %s", shell, qPrintable(line)) << QString::fromLatin1(shell) << line << offered;
        }
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
    row(QStringLiteral("fablegrid-story export novel.scene -o n"), every);
    row(QStringLiteral("fablegrid-story copies n"), {});
}

void tst_Completions::shellOffers()
{
    QFETCH(const QString, shell);
    QFETCH(const QString, line);
    QFETCH(const QStringList, offered);
    if (QStandardPaths::findExecutable(shell).isEmpty())
        QSKIP(qPrintable(shell + QStringLiteral(" is not installed")));
    struct Asked
    {
        const char *script;
        const char *completions;
    };
    static const QHash<QString, Asked> shells{
        {QStringLiteral("bash"), {bashAnswers, "fablegrid-story.bash"}},
        {QStringLiteral("zsh"), {zshAnswers, "_fablegrid-story"}},
        {QStringLiteral("fish"), {fishAnswers, "fablegrid-story.fish"}},
    };
    const Asked &asked = shells[shell];
    const StoryFolder folder;
    folder.put(QStringLiteral("novel.scene"), {});
    folder.put(QStringLiteral("notes.md"), {});
    home.put(QStringLiteral("inside"), insideZsh);
    const QString script = home.put(QStringLiteral("asks"), asked.script);
    QVERIFY(QDir(folder.path({})).mkdir(QStringLiteral("nest")));
    QProcess process;
    process.setWorkingDirectory(folder.path({}));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *place : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "ZDOTDIR"})
        environment.insert(QLatin1String(place), home.path({}));
    process.setProcessEnvironment(environment);
    process.start(shell,
                  {script,
                   QStringLiteral(FABLEGRID_LINUX_FILES "/completions/") + QLatin1String(asked.completions),
                   line});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    static const QRegularExpression rest(QStringLiteral("/?(\\t.*)?\\r?$"));
    QStringList found =
        QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (QString &word : found)
        word.remove(rest);
    found.removeAll(QString());
    found.sort();
    QCOMPARE(found, offered);
}

#ifdef Q_OS_LINUX
// As a writer sees it: what is offered is written into the line, with the space behind it.
void tst_Completions::tabulatorCompletes()
{
    if (QStandardPaths::findExecutable(QStringLiteral("bash")).isEmpty())
        QSKIP("bash is not installed");
    const StoryFolder folder;
    folder.put(QStringLiteral("novel.scene"), {});
    folder.put(QStringLiteral("notes.md"), {});
    Pty terminal;
    QProcess bash;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TERM"), QStringLiteral("dumb"));
    environment.insert(QStringLiteral("INPUTRC"), QStringLiteral("/dev/null"));
    environment.insert(QStringLiteral("HISTFILE"), QString());
    bash.setProcessEnvironment(environment);
    bash.setWorkingDirectory(folder.path({}));
    bash.setChildProcessModifier([&terminal] {
        setsid();
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            dup2(terminal.theirs, stream);
    });
    bash.start(QStringLiteral("bash"),
               {QStringLiteral("--norc"), QStringLiteral("--noprofile"), QStringLiteral("-i")});
    QVERIFY(bash.waitForStarted());
    const auto type = [&terminal](const QByteArray &keys) {
        return write(terminal.ours, keys.constData(), std::size_t(keys.size())) == keys.size();
    };
    const auto end = qScopeGuard([&bash] {
        bash.kill();
        bash.waitForFinished();
    });
    QVERIFY(type("source " FABLEGRID_LINUX_FILES "/completions/fablegrid-story.bash; echo rea''dy\n"));
    QTRY_VERIFY2(terminal.seen().contains("\nready"), terminal.seen().constData());
    QVERIFY(type("fablegrid-story ex\t"));
    QTRY_VERIFY2(terminal.seen().endsWith("fablegrid-story export "), terminal.seen().constData());
    QVERIFY(type("no\t"));
    QTRY_VERIFY2(terminal.seen().endsWith("fablegrid-story export novel.scene "),
                 terminal.seen().constData());
    QVERIFY(type("--num\t"));
    QTRY_VERIFY2(terminal.seen().endsWith("novel.scene --numbers "), terminal.seen().constData());
}
#endif

QTEST_MAIN(tst_Completions)
#include "tst_completions.moc"
