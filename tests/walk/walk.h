#pragma once

#include "support/testsupport.h"
#include "walk/desktop.h"
#include "walk/editorwindow.h"
#include "walk/program.h"
#include "walk/scenefile.h"

#include <QHash>

#include <memory>

// A walk is one story, told in steps; the first step that fails ends it.
#define STEP(call)                                                                                           \
    do {                                                                                                     \
        call;                                                                                                \
        if (QTest::currentTestFailed())                                                                      \
            return;                                                                                          \
    } while (false)

/// What the walks of one test program share: a desktop, and on it one run of the program after the other.
///
/// The functions that return nothing check what they do; call them through STEP.
class Walk
{
public:
    Desktop desktop;
    std::unique_ptr<Program> program;
    EditorWindow window{desktop};
    /// What the environment of the programs that are started has besides.
    QHash<QString, QString> variables;

    /// Starts the program; `name` is that of its log.
    void start(const QString &name);
    /// Closes the window with that answer to its question, without saving by default; the program must end
    /// well and have told nothing odd.
    void end(const QString &answerKeys = QStringLiteral("alt+n"));
    /// The program has told something, and nothing odd.
    void checkLog() const;
    /// What stands on the screen is what the window paints when it has to paint everything anew. A tab is
    /// open, nothing is held by the mouse, and no menu or dialog is in front.
    void checkScreen() const;
    /// To be called by cleanup(): ends the program, after a failure with what is known of it.
    void tidyUp();

    /// Adds a chain of events by key and brings it in sight as a whole.
    void addChain(int count);
    /// Saves by Ctrl+S into the file dialog.
    void saveFirst(const QString &path);
    /// Tells the file dialog of saving a file that is not there yet, and waits until it is.
    void giveNewFile(const QString &path) const;
    /// Saves by Ctrl+S into that file, which is the document's, and reads it; empty if nothing is written.
    SavedScene savedAgain(const QString &path) const;
    /// The log without what saving writes, which the autosave may add at any moment.
    QStringList linesOfCommands() const;
    /// How often one of these lines stands in the log.
    int logged(const QStringList &lines) const;
};

/// All that a scene file holds, the events of each tab by their indices, to be compared and read.
QString toText(const SavedScene &scene);
