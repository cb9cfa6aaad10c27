#pragma once

#include "walk/xscreen.h"

#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QVector>

struct xcb_connection_t;

/// Sends keys and the mouse to a screen and tells when the screen changed last because of them.
///
/// The server itself reports what is drawn, so that nothing is asked while the program works; only a place
/// that was drawn is read, and counts if other pixels stand there than before. A step is over once the
/// program has answered twice and nothing was drawn for a while after each answer.
class ScreenClock
{
public:
    /// `display` is a name such as ":99".
    explicit ScreenClock(const QString &display);
    ~ScreenClock();
    ScreenClock(const ScreenClock &) = delete;
    ScreenClock &operator=(const ScreenClock &) = delete;

    bool isReady() const;
    /// The window whose program has to answer.
    void watch(quint32 window) { watched = window; }
    /// Waits for stillness, whatever was going on.
    void rest() { untilStill(); }

    /// Each returns the milliseconds from the event to the last change of the screen; 0 if it changed
    /// nothing.
    double key(const QString &keys); // such as "ctrl+shift+a"
    double moveTo(QPoint place);
    double press(int button = 1);
    double release(int button = 1);
    double turnWheel(bool away);

    /// Milliseconds for reading the whole screen: so much a drawing may wait for the look at the one before
    /// it.
    double costOfALook();

private:
    quint8 keycode(const QString &name) const;
    void send(quint8 kind, quint8 detail, QPoint place = QPoint());
    double untilStill();
    /// What was drawn since the last call; empty if nothing was.
    QRect drawn(bool waiting);
    /// Where other pixels stand than before.
    QRect look(const QRect &place);
    double now() const { return double(time.nsecsElapsed()) / 1e6; }

    XScreen screen;               // for asking the window manager and the program
    xcb_connection_t *connection; // closed by the destructor
    quint32 root = 0;
    quint8 damageEvent = 0;
    QHash<quint32, quint8> keycodes; // by symbol
    QImage seen;
    quint32 watched = 0;
    QElapsedTimer time;
};
