#pragma once

#include "app/memoryspare.h"

#include <QApplication>

#include <atomic>
#include <functional>

/// The application, which ends with a reason, and does one last thing before, when there is no memory for
/// something that the user does. What is half done then must not go on: the next save would write it.
class GuardedApplication : public QApplication
{
public:
    GuardedApplication(int &argc, char **argv);
    ~GuardedApplication() override;
    GuardedApplication(const GuardedApplication &) = delete;
    GuardedApplication &operator=(const GuardedApplication &) = delete;

    /// Nothing if it is empty. It is done in this object's thread only, which another thread that finds no
    /// memory has to wait for: those that Qt starts for its dialogs and for the desktop.
    void setLastWork(std::function<void()> work) { lastWork = std::move(work); }

    bool notify(QObject *receiver, QEvent *event) override;

private:
    [[noreturn]] void end();
    [[noreturn]] void endElsewhere();
    [[noreturn]] static void leave();
    [[noreturn]] static void endWhatNobodyCatches();

    std::function<void()> lastWork;
    std::atomic<bool> isToEnd = false; // says another thread
    MemorySpare spare;                 // for the last work
};
