#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

#include <functional>

struct xcb_connection_t;

/// Looks at an X server's screen over a connection of its own: starting a tool for each look takes many times
/// as long as the look. Owned by the Desktop, which asks it; a program that runs there notices nothing of it.
class XScreen
{
public:
    /// `display` is a name such as ":99".
    explicit XScreen(const QString &display);
    ~XScreen();
    XScreen(const XScreen &) = delete;
    XScreen &operator=(const XScreen &) = delete;

    bool isConnected() const;
    /// What the whole screen shows, opaque; null if that could not be read.
    QImage picture() const;
    /// Whether a window manager has announced itself.
    bool isManaged() const;
    /// Asks the window manager something that it answers once it is through with what came before: a window
    /// of no size that is never shown, of whose frame it is asked. To be handed to managerHasAnswered().
    quint32 askManager();
    /// The window goes with the answer.
    bool managerHasAnswered(quint32 window);
    /// Asks a window's program for a sign of life, which it gives once it has taken all events before.
    quint32 ping(quint32 window);
    /// Whether it has given it, or the window is gone.
    bool hasAnswered(quint32 window, quint32 ping);
    /// 0 if no window has the keyboard.
    quint32 activeWindow() const;
    QString titleOf(quint32 window) const;
    /// The windows that are shown and meet the condition, frames, menus and dialogs among them.
    QList<quint32> shownWindows(const std::function<bool(quint32)> &wanted) const;
    bool isOfClass(quint32 window, const QString &name) const;
    /// Where a window's contents are on the screen; empty if there is no such window.
    QRect geometry(quint32 window) const;

private:
    quint32 atom(const char *name) const;
    QByteArray property(quint32 window, quint32 name) const;

    xcb_connection_t *connection; // closed by the destructor
    quint32 root = 0;
    quint32 lastPing = 0;
    quint32 lastAnswer = 0;
};
