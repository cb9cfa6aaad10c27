#pragma once

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class XScreen;

/// A screen of its own: a virtual X server with a window manager, with a mouse and a keyboard to use it.
///
/// Everything it starts ends with it, and everything it writes lies in a temporary home or in artefacts().
class Desktop
{
public:
    Desktop();
    ~Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;

    /// Starts server and window manager; if that fails, problem() tells why.
    bool start();
    QString problem() const { return problemText; }

    /// What a program needs to run on this screen, and nothing of the caller's own session.
    QProcessEnvironment environment() const;
    /// An absolute path in the user's home.
    QString homePath(const QString &name) const;
    /// The folder in the build tree where pictures and logs of this test program are kept.
    static QDir artefacts();

    QImage screenshot() const;
    /// Saves a picture of the screen, or of a part of it, among the artefacts.
    bool keepScreenshot(const QString &name, const QRect &part = QRect()) const;

    /// The title of the window that has the keyboard, empty if none has.
    QString activeTitle() const;
    /// The visible window with exactly that title; 0 if there is none.
    quint32 windowWithTitle(const QString &title) const;
    /// The visible windows of that class, dialogs and menus among them.
    QList<quint32> windowsOfClass(const QString &name) const;
    /// Where the contents of a window are on the screen; empty for 0.
    QRect geometry(quint32 window) const;
    /// Gives a window's contents another size than they have, and waits until they have it.
    bool resize(quint32 window, const QSize &size) const;

    /// Each returns whether the event could be sent. Points are those of the screen. Those of the
    /// mouse wait until the window manager and the program have taken it.
    bool click(QPoint point) const;
    /// Turns the wheel there, away from the user for notches above 0.
    bool scroll(QPoint point, int notches) const;
    bool drag(QPoint from, QPoint to) const;
    /// The parts of a drag, for looking at what is shown in the middle of it. Buttons: 1 left, 3 right.
    bool press(QPoint point, int button = 1) const;
    bool moveTo(QPoint point) const;
    bool release(int button = 1) const;
    /// A key with its modifiers, such as "ctrl+shift+a".
    bool key(const QString &keys) const;
    /// Types the text, a Return for every line break.
    bool type(const QString &text) const;

    /// Makes a process end with this one, however this one ends.
    static void tieToThisProcess(QProcess &process);

private:
    bool startServer();
    bool startWindowManager();
    bool fail(const QString &text);
    /// Runs a tool to its end; false if it could not run or reported an error.
    bool run(const QString &tool, const QStringList &arguments) const;
    bool useMouse(const QStringList &steps) const;

    QTemporaryDir home;
    QProcess server;
    QProcess windowManager;
    std::unique_ptr<XScreen> screen; // once the server runs
    QString display;
    QString problemText;
};

/// Waits until the condition holds; false if it does not within the time a slow machine may need.
bool eventually(const std::function<bool()> &condition);
