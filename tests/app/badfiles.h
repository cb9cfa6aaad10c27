#pragma once

#include "app/documentstream.h"
#include "app/windowsupport.h"
#include "fuzz/documentmodel.h"
#include "story/storyagrees.h"

#include <QBuffer>
#include <QLoggingCategory>
#include <QUndoStack>

#include <memory>

// What the tests of damaged and foreign files share: one window that opens them all, and the rules that hold
// for whatever was opened.

/// Collects the warnings of its lifetime; all other lines are swallowed, for thousands of files print many.
class Warnings
{
public:
    Warnings()
    {
        active = this;
        previous = qInstallMessageHandler(&Warnings::handle);
        QLoggingCategory::setFilterRules(QStringLiteral("default.info=false"));
    }
    ~Warnings()
    {
        QLoggingCategory::setFilterRules(QString());
        qInstallMessageHandler(previous);
        active = nullptr;
    }
    Warnings(const Warnings &) = delete;
    Warnings &operator=(const Warnings &) = delete;

    QStringList take() { return std::exchange(collected, {}); }

private:
    /// What Qt says of the platform and of the fonts that this machine has not got.
    static bool isOfTheMachine(const QString &text)
    {
        return text == platformLine || text.contains(QLatin1String("OpenType support missing for"));
    }

    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (!active || type == QtDebugMsg || type == QtInfoMsg || isOfTheMachine(text))
            return;
        active->collected << text;
        if (type == QtFatalMsg)
            active->previous(type, context, text);
    }

    inline static Warnings *active = nullptr;
    QStringList collected;
    QtMessageHandler previous = nullptr;
};

/// Whether the long loops leave nothing out. Otherwise they take a sample that is the same in every run.
inline bool isExhaustive() { return qEnvironmentVariableIntValue("FABLEGRID_EXHAUSTIVE") == 1; }

/// A folder for many short-lived files: where TMPDIR says, else in memory where the system has such a place.
class ScratchFolder
{
public:
    QString filePath(const QString &name) const { return dir.filePath(name); }

private:
    static QString pattern()
    {
        const QString inMemory = QStringLiteral("/dev/shm");
        const bool isUsable = qEnvironmentVariableIsEmpty("TMPDIR") && QFileInfo(inMemory).isWritable();
        return (isUsable ? inMemory : QDir::tempPath()) + QStringLiteral("/fablegrid-test-XXXXXX");
    }
    QTemporaryDir dir{pattern()};
};

/// Opens files in one window and compares what came of them with what the format says of their bytes, and
/// with what the command beside the editor makes of them.
class FileOpener
{
public:
    enum Depth { OpenAndSave, EditToo };

    MainWindow &window() { return *mainWindow; }
    QStringList takeWarnings() { return warnings.take(); }

    /// What went wrong with these bytes in any step from opening to opening what was saved; empty if nothing.
    QString check(const QByteArray &bytes, Depth depth = EditToo)
    {
        const QString trouble = open(bytes);
        if (!trouble.isEmpty() || depth == OpenAndSave)
            return trouble.isEmpty() ? saveAndOpenAgain() : trouble;
        for (const auto &step : {&FileOpener::addAndUndo, &FileOpener::deleteAndUndo, &FileOpener::typeText,
                                 &FileOpener::saveAndOpenAgain}) {
            if (const QString problem = (this->*step)(); !problem.isEmpty())
                return problem;
        }
        return {};
    }

    /// Opens the bytes only.
    QString open(const QByteArray &bytes)
    {
        if (!writeFile(badPath, bytes))
            return QStringLiteral("the file was not written");
        QString trouble = openPath(badPath, DocumentModel::read(bytes));
        if (trouble.isEmpty())
            trouble = StoryAgrees::difference(badPath, *mainWindow, told);
        if (trouble.isEmpty() && readFile(badPath) != bytes)
            return QStringLiteral("opening has changed the file");
        return trouble;
    }

    /// The document as it would be saved now, tab by tab, each ordered by index.
    std::vector<QStringList> lines()
    {
        std::vector<QStringList> all;
        for (const DocumentModel::Tab &tab : DocumentModel::readSaved(bytes()))
            all.push_back(DocumentModel::lines(tab));
        return all;
    }

    QByteArray bytes()
    {
        QByteArray all = intBytes(int(mainWindow->views().size()));
        for (const NodegraphView *view : mainWindow->views()) {
            QBuffer block;
            block.open(QIODevice::WriteOnly);
            DocumentStream stream(&block);
            view->nodegraphScene()->saveSceneToFile(stream);
            all += block.data();
        }
        return all;
    }

private:
    using Lines = std::vector<QStringList>;

    static QString difference(const Lines &expected, const Lines &actual, const char *when)
    {
        if (expected.size() != actual.size()) {
            return QStringLiteral("%1: %2 tabs, not %3")
                .arg(QLatin1String(when))
                .arg(actual.size())
                .arg(expected.size());
        }
        for (std::size_t tab = 0; tab < expected.size(); ++tab) {
            const QStringList &wanted = expected[tab];
            const QStringList &found = actual[tab];
            for (qsizetype i = 0; i < std::max(wanted.size(), found.size()); ++i) {
                if (wanted.value(i) != found.value(i)) {
                    return QStringLiteral("%1: tab %2 has %3 events, not %4; the first difference is\n  "
                                          "found  %5\n  wanted %6")
                        .arg(QLatin1String(when))
                        .arg(tab)
                        .arg(found.size())
                        .arg(wanted.size())
                        .arg(found.value(i), wanted.value(i));
                }
            }
        }
        return {};
    }

    QString openPath(const QString &path, const DocumentModel::Document &expected)
    {
        warnings.take();
        mainWindow->loadFrom(path);
        flushDeferredDeletes();
        if (mainWindow->currentFilePath() != path)
            return QStringLiteral("the opened file is not the document");
        Lines wanted;
        for (const DocumentModel::Tab &tab : expected.tabs)
            wanted.push_back(DocumentModel::lines(tab));
        if (tabsOf(*mainWindow)->count() != int(wanted.size()))
            return QStringLiteral("%1 tabs are shown").arg(tabsOf(*mainWindow)->count());
        if (const QString problem = difference(wanted, lines(), "opened"); !problem.isEmpty())
            return problem;
        told = warnings.take();
        return warningProblem(told, path, expected);
    }

    /// Exactly the announced kinds of warning, each with the file's name and its numbers; for coordinates
    /// with the node's number.
    static QString warningProblem(QStringList left, const QString &path,
                                  const DocumentModel::Document &expected)
    {
        QStringList missing;
        const auto expect = [&](const QString &what, const QStringList &parts) {
            const auto found = std::find_if(left.begin(), left.end(), [&](const QString &line) {
                return line.startsWith(QLatin1String("Damaged scene file:")) && line.contains(path) &&
                       std::all_of(parts.begin(), parts.end(),
                                   [&line](const QString &part) { return line.contains(part); });
            });
            if (found == left.end())
                missing << what;
            else
                left.erase(found);
        };
        if (expected.cutOff)
            expect(QStringLiteral("the tabs"),
                   {QString::number(expected.storedCount), QString::number(qlonglong(expected.tabs.size()))});
        int notFinite = 0;
        int refused = 0;
        int renumbered = 0;
        for (const DocumentModel::Tab &tab : expected.tabs) {
            if (tab.cutOff)
                expect(QStringLiteral("the blank events"),
                       {QString::number(tab.storedCount), QString::number(qlonglong(tab.events.size()))});
            refused += tab.refused;
            renumbered += tab.renumbered;
            notFinite += tab.notFinite;
        }
        constexpr int mostNamed = 20;
        for (int i = 0; i < qMin(refused, mostNamed); ++i)
            expect(QStringLiteral("a cycle"), {QStringLiteral("a connection that closes a cycle")});
        if (refused > mostNamed)
            expect(QStringLiteral("the other cycles"),
                   {QStringLiteral("has %1 more connections").arg(refused - mostNamed)});
        if (renumbered > 0)
            expect(QStringLiteral("the new indices"),
                   {QStringLiteral("has %1 events without an index").arg(renumbered)});
        if (notFinite > mostNamed)
            expect(QStringLiteral("the other coordinates"),
                   {QStringLiteral("has %1 more coordinates").arg(notFinite - mostNamed)});
        // One line may stand for several coordinates.
        static const QRegularExpression coordinate(QRegularExpression::anchoredPattern(
            QStringLiteral("Damaged node -?\\d+ has a coordinate that is not a finite number, read as 0")));
        const QStringList coordinates = left.filter(coordinate);
        if ((notFinite > 0) != !coordinates.isEmpty() || coordinates.size() > notFinite)
            missing << QStringLiteral("the coordinates");
        for (const QString &line : coordinates)
            left.removeOne(line);
        if (missing.isEmpty() && left.isEmpty())
            return {};
        return QStringLiteral("no proper warning of %1; others: %2")
            .arg(missing.join(QStringLiteral(", ")), (left + coordinates).join(QLatin1Char('\n')));
    }

    NodegraphScene *currentScene()
    {
        if (mainWindow->views().empty())
            mainWindow->addNodeGraphTab();
        return dynamic_cast<NodegraphView *>(tabsOf(*mainWindow)->currentWidget())->nodegraphScene();
    }

    QString noWarnings(const char *when)
    {
        const QStringList lines = warnings.take();
        return lines.isEmpty()
                   ? QString()
                   : QLatin1String(when) + QStringLiteral(" warns: ") + lines.join(QLatin1Char('\n'));
    }

    QString addAndUndo()
    {
        NodegraphScene *scene = currentScene();
        const Lines before = lines();
        const std::size_t count = scene->nodes().size();
        mainWindow->addEventNode();
        if (scene->nodes().size() != count + 1)
            return QStringLiteral("no event was added");
        const int index = scene->nodes().back()->getIndex();
        if (scene->findNodeByIndex(index) != scene->nodes().back())
            return QStringLiteral("the added event took the index %1 of another").arg(index);
        const Lines added = lines();
        mainWindow->sl_undo();
        if (const QString problem = difference(before, lines(), "add undone"); !problem.isEmpty())
            return problem;
        mainWindow->sl_redo();
        if (const QString problem = difference(added, lines(), "add done again"); !problem.isEmpty())
            return problem;
        mainWindow->sl_undo();
        flushDeferredDeletes();
        const QString problem = difference(before, lines(), "add undone again");
        return problem.isEmpty() ? noWarnings("adding") : problem;
    }

    QString deleteAndUndo()
    {
        NodegraphScene *scene = currentScene();
        if (scene->nodes().empty())
            return {};
        const Lines before = lines();
        const std::size_t count = scene->nodes().size();
        scene->sl_selectCurrentNode(scene->nodes()[count / 2]);
        mainWindow->sl_delete();
        flushDeferredDeletes();
        if (scene->nodes().size() != count - 1)
            return QStringLiteral("no event was deleted");
        mainWindow->sl_undo();
        const QString problem = difference(before, lines(), "deletion undone");
        return problem.isEmpty() ? noWarnings("deleting") : problem;
    }

    QString typeText()
    {
        const NodegraphScene *scene = currentScene();
        if (scene->nodes().empty())
            return {};
        const QString text = QStringLiteral("typed");
        typeInto(descriptionOf(scene->nodes().front()), text);
        if (descriptionOf(scene->nodes().front())->toPlainText() != text)
            return QStringLiteral("nothing was typed");
        return noWarnings("typing");
    }

    QString saveAndOpenAgain()
    {
        const QByteArray current = bytes();
        const Lines before = lines();
        mainWindow->saveTo(savedPath);
        if (readFile(savedPath) != current)
            return QStringLiteral("the saved file is not what is shown");
        if (const QString problem = noWarnings("saving"); !problem.isEmpty())
            return problem;
        if (const QString problem = openPath(savedPath, DocumentModel::read(current)); !problem.isEmpty())
            return QStringLiteral("second opening: ") + problem;
        if (const QString problem = difference(before, lines(), "opened again"); !problem.isEmpty())
            return problem;
        return bytes() == current ? QString() : QStringLiteral("the second saving gives other bytes");
    }

    QStringList told; // by the last opening
    Warnings warnings;
    ScratchFolder folder;
    QString badPath = folder.filePath(QStringLiteral("bad.scene"));
    QString savedPath = folder.filePath(QStringLiteral("saved.scene"));
    std::unique_ptr<MainWindow> mainWindow = std::make_unique<MainWindow>();
};

/// What a failing file holds, for the test's log.
inline QByteArray shortHex(const QByteArray &bytes)
{
    constexpr int most = 600;
    QByteArray hex = bytes.left(most).toHex();
    if (bytes.size() > most)
        hex += "... (" + QByteArray::number(bytes.size()) + " bytes)";
    return hex;
}
