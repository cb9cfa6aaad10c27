#pragma once

#include <QtGlobal>

#include <functional>
#include <thread>

/// Does one last thing when the connection to the display breaks, for Qt then ends the program from within
/// the event loop: the X server is killed, the network drops, the compositor of Wayland ends. One object at a
/// time, for as long as there is something to lose.
///
/// Whatever else calls exit() in the object's thread is taken for the same.
class DisplayLoss
{
public:
    /// The application must exist. The work must touch no widget. What it uses of static objects must have
    /// been made by now: those that are made later are gone before it comes.
    explicit DisplayLoss(std::function<void()> lastWork);
    ~DisplayLoss();
    DisplayLoss(const DisplayLoss &) = delete;
    DisplayLoss &operator=(const DisplayLoss &) = delete;

private:
    static void act();
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    std::function<void()> work;
    std::thread::id home = std::this_thread::get_id();
    bool watchesTheLog = false;
};
