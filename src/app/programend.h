#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

/// What tells the program from outside to end, a signal or the end of the desktop's session: it gets to do
/// one last thing first. One object at a time.
///
/// After a signal the program ends as that signal would have ended it, and a second one ends it at
/// once, unless it comes within a quarter of a second, which is the same request. A signal that was ignored
/// when the program started stays ignored, as for a program that is to outlive its terminal.
///
/// When the session ends nothing is asked: the system would otherwise wait for the answer, or not.
class ProgramEnd : public QObject
{
    Q_OBJECT

public:
    /// The application must exist.
    explicit ProgramEnd(std::function<void()> lastWork);
    ~ProgramEnd() override;

    /// A write that cannot be done is to fail, and not to end or stop the program: into a file that may not
    /// grow any more, into a pipe that nobody reads, and to a terminal that another job has.
    static void outliveFailedWrites();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void listen();
    void end();

    std::function<void()> work;
    QSocketNotifier *notifier = nullptr;
    bool sessionEnds = false; // or was about to: the user may have called it off
};
