#include "random/hands.h"

#include "app/windowsupport.h"
#include "random/documents.h"
#include "support/processfigures.h"

#include <QDir>
#include <QStandardPaths>

namespace {

constexpr int mostTabs = 5;
constexpr int mostFiles = 6;
constexpr int autosavesKept = 10;

QDir autosaveFolder()
{
    return {QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
            QStringLiteral("/Fablegrid/Autosavedir")};
}

} // namespace

void Hands::addTab()
{
    if (tabsOf(window)->count() >= mostTabs)
        return;
    step.effects = Effect::documents;
    buttonOf(window, "AddNodeGraph_tool_button")->click();
}

void Hands::switchTab()
{
    if (view())
        tabsOf(window)->setCurrentIndex(choices.below(tabsOf(window)->count()));
}

void Hands::dragTab()
{
    if (view())
        tabsOf(window)->tabBar()->moveTab(choices.below(tabsOf(window)->count()),
                                          choices.below(tabsOf(window)->count()));
}

void Hands::closeTab()
{
    if (!view())
        return;
    if (tabsOf(window)->count() == 1) {
        // The last tab stays and asks nothing; a question here would never be answered.
        emit tabsOf(window)->tabCloseRequested(0);
        return;
    }
    step.effects = Effect::documents;
    const bool hasPath = !window.currentFilePath().isEmpty();
    const int answer = choices.below(hasPath ? 5 : 4);
    const bool minutePasses = choices.oneIn(3);
    say(QString::number(answer));
    QTimer::singleShot(0, &window, [this, answer, minutePasses] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box) {
            complain(QStringLiteral("closing a tab asked nothing"));
            return;
        }
        if (minutePasses)
            autosave();
        static constexpr QMessageBox::StandardButton buttons[] = {
            QMessageBox::No, QMessageBox::No, QMessageBox::No, QMessageBox::Cancel, QMessageBox::Yes};
        box->button(buttons[answer])->click();
    });
    emit tabsOf(window)->tabCloseRequested(choices.below(tabsOf(window)->count()));
}

void Hands::saveDocument()
{
    const QByteArray bytes = documentOf(window);
    QString path = window.currentFilePath();
    if (!path.isEmpty()) {
        actionOf(window, "actionSave")->trigger();
    } else {
        path = QDir(folder).filePath(QStringLiteral("%1.scene").arg(choices.below(mostFiles)));
        window.saveTo(path);
    }
    if (readFile(path) != bytes)
        complain(QStringLiteral("what was saved is not what the window holds"));
    if (!savedFiles.contains(path))
        savedFiles << path;
}

/// Through the dialog, which takes its time, so only now and then.
void Hands::saveAs()
{
    const QString path = QDir(folder).filePath(QStringLiteral("%1.scene").arg(choices.below(mostFiles)));
    const QByteArray bytes = documentOf(window);
    if (choices.oneIn(16)) {
        QFile::remove(path); // or the dialog asks whether to replace it
        if (const QString problem = ::saveAs(window, path); !problem.isEmpty())
            complain(problem);
    } else {
        window.saveTo(path);
    }
    if (readFile(path) != bytes)
        complain(QStringLiteral("what was saved under another name is not what the window holds"));
    if (!savedFiles.contains(path))
        savedFiles << path;
}

void Hands::openDocument()
{
    autosavePerhaps();
    QStringList known = savedFiles;
    // The next autosave may fall into the same second and take the same name.
    const QString copy = QDir(folder).filePath(QStringLiteral("from-autosave.scene"));
    if (!lastAutosave.isNull() && writeFile(copy, lastAutosave))
        known << copy;
    if (known.isEmpty())
        return;
    const QString path = choices.anyOf(known);
    open(path, readFile(path));
}

/// A file that this program could have written in a longer session than this one.
void Hands::openForeign()
{
    const QByteArray bytes = foreignDocument(choices);
    const QString path = QDir(folder).filePath(QStringLiteral("foreign.scene"));
    if (!writeFile(path, bytes))
        complain(QStringLiteral("no room for a document"));
    open(path, bytes);
}

void Hands::open(const QString &path, const QByteArray &bytes)
{
    step.effects = Effect::documents;
    if (choices.oneIn(24)) {
        if (const QString problem = openFile(window, path); !problem.isEmpty())
            complain(problem);
    } else {
        // Sanitizers hold back up to 256 MB of what was freed: these documents are small enough for that.
        const Cost cost = costOf([&] { window.loadFrom(path); });
        if (const QString problem = faultOfOpening(cost); !problem.isEmpty())
            complain(problem);
    }
    if (window.currentFilePath() != path)
        complain(QStringLiteral("the opened file is not the document"));
    if (sortedDocument(documentOf(window)) != sortedDocument(asOpened(bytes)))
        complain(QStringLiteral("what was opened is not what the file holds"));
}

void Hands::newDocument() { command("actionNew", Effect::documents); }

void Hands::autosave()
{
    if (step.name.isEmpty())
        step.name = QStringLiteral("autosave");
    const QByteArray bytes = documentOf(window);
    window.autosave();
    QDir copies = autosaveFolder();
    const QStringList files = copies.entryList(QDir::Files, QDir::Name);
    lastAutosave = files.isEmpty() ? QByteArray() : readFile(copies.filePath(files.constLast()));
    if (lastAutosave != bytes)
        complain(QStringLiteral("the autosave is not what the window holds"));
    if (documentOf(window) != bytes)
        complain(QStringLiteral("the autosave changed what the window holds"));
    if (files.size() > autosavesKept && !copies.removeRecursively())
        complain(QStringLiteral("the autosaves cannot be removed"));
}

void Hands::autosavePerhaps()
{
    if (choices.oneIn(24)) {
        say(QStringLiteral("[autosave]"));
        autosave();
    }
}

/// The user looks away; everything that was put off is done, painting too.
void Hands::pause() { QCoreApplication::processEvents(); }
