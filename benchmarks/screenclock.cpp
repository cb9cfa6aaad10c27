#include "screenclock.h"

#include <QStringList>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <poll.h>
#include <sys/uio.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace {

constexpr double quietTime = 40; // milliseconds; each step waits for it twice
constexpr double patience = 60000;
constexpr QSize caretSize(3, 60); // a text cursor blinks by itself and is no larger at 100 %

xcb_extension_t testExtension = {"XTEST", 0};
xcb_extension_t damageExtension = {"DAMAGE", 0};

// The two requests that are needed of each extension, as they go over the wire.
struct FakeInput
{
    quint8 major = 0, minor = 2;
    quint16 length = 0;
    quint8 kind = 0, detail = 0;
    quint16 gap = 0;
    quint32 delay = 0;
    quint32 root = 0;
    quint32 gaps[2] = {};
    qint16 x = 0, y = 0;
    quint32 moreGaps = 0;
    quint16 stillMoreGaps = 0;
    quint8 lastGap = 0, device = 0;
};
static_assert(sizeof(FakeInput) == 36);

struct DamageVersion
{
    quint8 major = 0, minor = 0;
    quint16 length = 0;
    quint32 wanted[2] = {1, 1};
};

struct DamageCreate
{
    quint8 major = 0, minor = 1;
    quint16 length = 0;
    quint32 damage = 0;
    quint32 drawable = 0;
    quint32 level = 0; // each rectangle that is drawn
};

struct DamageNotify
{
    quint8 kind, level;
    quint16 sequence;
    quint32 drawable, damage, time;
    qint16 x, y;
    quint16 width, height;
};

template <typename Request>
unsigned int sendRequest(xcb_connection_t *connection, xcb_extension_t *extension, Request request,
                         bool answered = false)
{
    iovec parts[3]{}; // the library wants two before the first
    parts[2] = {&request, sizeof(request)};
    const xcb_protocol_request_t about{1, extension, request.minor, quint8(answered ? 0 : 1)};
    return xcb_send_request(connection, 0, parts + 2, &about);
}

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};

quint32 symbolOf(const QString &name)
{
    static const QHash<QString, quint32> names{{QStringLiteral("ctrl"), 0xffe3},
                                               {QStringLiteral("shift"), 0xffe1},
                                               {QStringLiteral("Tab"), 0xff09},
                                               {QStringLiteral("Escape"), 0xff1b},
                                               {QStringLiteral("Return"), 0xff0d}};
    return names.value(name, name.at(0).unicode());
}

} // namespace

ScreenClock::ScreenClock(const QString &display)
    : screen(display), connection(xcb_connect(display.toLatin1().constData(), nullptr))
{
    time.start();
    if (xcb_connection_has_error(connection) != 0)
        return;
    const xcb_setup_t *setup = xcb_get_setup(connection);
    root = xcb_setup_roots_iterator(setup).data->root;
    const auto *damage = xcb_get_extension_data(connection, &damageExtension);
    const auto *test = xcb_get_extension_data(connection, &testExtension);
    if (!damage || !damage->present || !test || !test->present)
        return;
    damageEvent = damage->first_event;
    // Before it has been told the version the server takes no other request of that extension.
    const unsigned int asked = sendRequest(connection, &damageExtension, DamageVersion(), true);
    std::free(xcb_wait_for_reply(connection, asked, nullptr));
    DamageCreate create;
    create.damage = xcb_generate_id(connection);
    create.drawable = root;
    sendRequest(connection, &damageExtension, create);

    const quint8 least = setup->min_keycode;
    const auto mapping = xcb_get_keyboard_mapping(connection, least, quint8(setup->max_keycode - least + 1));
    const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, Freeing> known(
        xcb_get_keyboard_mapping_reply(connection, mapping, nullptr));
    if (!known)
        return;
    const quint32 *symbols = xcb_get_keyboard_mapping_keysyms(known.get());
    for (int i = 0; i < xcb_get_keyboard_mapping_keysyms_length(known.get());
         i += known->keysyms_per_keycode) {
        if (!keycodes.contains(symbols[i]))
            keycodes.insert(symbols[i], quint8(least + i / known->keysyms_per_keycode));
    }
    seen = screen.picture();
}

ScreenClock::~ScreenClock() { xcb_disconnect(connection); }

bool ScreenClock::isReady() const { return !seen.isNull() && xcb_connection_has_error(connection) == 0; }

quint8 ScreenClock::keycode(const QString &name) const { return keycodes.value(symbolOf(name)); }

void ScreenClock::send(quint8 kind, quint8 detail, QPoint place)
{
    FakeInput input;
    input.kind = kind;
    input.detail = detail;
    input.root = root;
    input.x = qint16(place.x());
    input.y = qint16(place.y());
    sendRequest(connection, &testExtension, input);
}

double ScreenClock::key(const QString &keys)
{
    const QStringList names = keys.split(QLatin1Char('+'));
    for (const QString &name : names)
        send(XCB_KEY_PRESS, keycode(name));
    for (qsizetype i = names.size() - 1; i >= 0; --i)
        send(XCB_KEY_RELEASE, keycode(names.at(i)));
    return untilStill();
}

double ScreenClock::moveTo(QPoint place)
{
    send(XCB_MOTION_NOTIFY, 0, place);
    return untilStill();
}

double ScreenClock::press(int button)
{
    send(XCB_BUTTON_PRESS, quint8(button));
    return untilStill();
}

double ScreenClock::release(int button)
{
    send(XCB_BUTTON_RELEASE, quint8(button));
    return untilStill();
}

double ScreenClock::turnWheel(bool away)
{
    const quint8 button = away ? 4 : 5;
    send(XCB_BUTTON_PRESS, button);
    send(XCB_BUTTON_RELEASE, button);
    return untilStill();
}

double ScreenClock::untilStill()
{
    const double start = now();
    xcb_flush(connection);
    const quint32 manager = screen.askManager();
    quint32 ping = 0;
    double lastChange = start;
    double lastSign = start;
    enum { asksManager, asksProgram, asksAgain, still } state = asksManager;
    while (state != still && now() - start < patience) {
        QRect place = drawn(true);
        double told = now();
        while (!place.isEmpty()) {
            lastSign = told;
            const QRect changed = look(place);
            const bool isCaret =
                changed.width() <= caretSize.width() && changed.height() <= caretSize.height();
            if (!changed.isEmpty() && !isCaret)
                lastChange = told;
            // What was drawn before the picture came is in the picture, and would seem to change nothing.
            place = drawn(false);
            told = now();
            if (!place.isEmpty() && !changed.isEmpty() && !isCaret)
                lastChange = told;
        }
        if (state == asksManager) {
            if (!screen.managerHasAnswered(manager))
                continue;
            ping = screen.ping(watched);
            state = asksProgram;
        }
        if (ping != 0 && screen.hasAnswered(watched, ping)) {
            ping = 0;
            lastSign = now();
        }
        if (ping == 0 && now() - lastSign > quietTime) {
            ping = state == asksProgram ? screen.ping(watched) : 0;
            state = state == asksProgram ? asksAgain : still;
        }
    }
    return lastChange - start;
}

QRect ScreenClock::drawn(bool waiting)
{
    constexpr int longestWait = 10; // milliseconds, between two questions whether the program has answered
    pollfd wire{xcb_get_file_descriptor(connection), POLLIN, 0};
    xcb_generic_event_t *event = xcb_poll_for_event(connection);
    if (!event && waiting && poll(&wire, 1, longestWait) > 0)
        event = xcb_poll_for_event(connection);
    QRect place;
    for (; event; event = xcb_poll_for_event(connection)) {
        const std::unique_ptr<xcb_generic_event_t, Freeing> owned(event);
        if ((event->response_type & 0x7f) != damageEvent)
            continue;
        DamageNotify notify{};
        std::memcpy(&notify, event, sizeof(notify));
        place |= QRect(notify.x, notify.y, notify.width, notify.height);
    }
    return place & seen.rect();
}

QRect ScreenClock::look(const QRect &place)
{
    const auto cookie =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, qint16(place.x()), qint16(place.y()),
                      quint16(place.width()), quint16(place.height()), ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, Freeing> reply(
        xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    const auto *pixels = reinterpret_cast<const QRgb *>(xcb_get_image_data(reply.get()));
    QRect changed;
    for (int y = 0; y < place.height(); ++y, pixels += place.width()) {
        auto *known = reinterpret_cast<QRgb *>(seen.scanLine(place.y() + y)) + place.x();
        const auto differ = [](QRgb a, QRgb b) { return ((a ^ b) & RGB_MASK) != 0; };
        int left = 0;
        int right = place.width();
        while (left < right && !differ(known[left], pixels[left]))
            ++left;
        while (right > left && !differ(known[right - 1], pixels[right - 1]))
            --right;
        if (left < right)
            changed |= QRect(place.x() + left, place.y() + y, right - left, 1);
        std::copy(pixels + left, pixels + right, known + left);
    }
    return changed;
}

double ScreenClock::costOfALook()
{
    constexpr int times = 20;
    const double start = now();
    for (int i = 0; i < times; ++i)
        look(seen.rect());
    return (now() - start) / times;
}
