#include "walk/xscreen.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <xcb/xcb.h>

namespace {

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};

/// The server's answer, null where it answered with an error: a window may be gone at any moment.
template <typename Reply>
std::unique_ptr<Reply, Freeing> owned(Reply *reply)
{
    return std::unique_ptr<Reply, Freeing>(reply);
}

constexpr quint32 longestProperty = 1024; // in units of 4 bytes
constexpr quint8 sentByClient = 0x80;     // in the kind of an event

xcb_client_message_event_t message(quint32 window, quint32 type)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    return event;
}

} // namespace

XScreen::XScreen(const QString &display) : connection(xcb_connect(display.toLatin1().constData(), nullptr))
{
    if (!isConnected())
        return;
    root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    // Programs send their answers to the root, some to those who know of it, some to those of its windows.
    const quint32 answers = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &answers);
}

XScreen::~XScreen() { xcb_disconnect(connection); }

bool XScreen::isConnected() const { return xcb_connection_has_error(connection) == 0; }

QImage XScreen::picture() const
{
    const QSize size = geometry(root).size();
    const auto width = static_cast<quint16>(size.width());
    const auto height = static_cast<quint16>(size.height());
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, 0, 0, width, height, ~0U);
    auto reply = owned(xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply || xcb_get_image_data_length(reply.get()) != int(sizeof(QRgb)) * width * height)
        return {};
    auto *bytes = xcb_get_image_data(reply.get());
    auto *pixels = reinterpret_cast<QRgb *>(bytes);
    // The server leaves it open what stands in the fourth byte.
    std::for_each(pixels, pixels + width * height, [](QRgb &pixel) { pixel |= 0xff000000U; });
    return {bytes, width, height, QImage::Format_RGB32, std::free, reply.release()};
}

bool XScreen::isManaged() const { return !property(root, atom("_NET_SUPPORTING_WM_CHECK")).isEmpty(); }

quint32 XScreen::askManager()
{
    const quint32 window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_client_message_event_t question = message(window, atom("_NET_REQUEST_FRAME_EXTENTS"));
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&question));
    xcb_flush(connection);
    return window;
}

bool XScreen::managerHasAnswered(quint32 window)
{
    if (property(window, atom("_NET_FRAME_EXTENTS")).isEmpty())
        return false;
    xcb_destroy_window(connection, window);
    xcb_flush(connection);
    return true;
}

quint32 XScreen::ping(quint32 window)
{
    xcb_client_message_event_t question = message(window, atom("WM_PROTOCOLS"));
    question.data.data32[0] = atom("_NET_WM_PING");
    question.data.data32[1] = ++lastPing;
    question.data.data32[2] = window;
    xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&question));
    xcb_flush(connection);
    return lastPing;
}

bool XScreen::hasAnswered(quint32 window, quint32 ping)
{
    const quint32 pinging = atom("_NET_WM_PING");
    while (const auto event = owned(xcb_poll_for_event(connection))) {
        const auto *told = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
        if ((event->response_type & ~sentByClient) == XCB_CLIENT_MESSAGE && told->window == root &&
            told->data.data32[0] == pinging)
            lastAnswer = told->data.data32[1];
    }
    return lastAnswer == ping || geometry(window).isEmpty();
}

quint32 XScreen::activeWindow() const
{
    const QByteArray value = property(root, atom("_NET_ACTIVE_WINDOW"));
    quint32 window = 0;
    if (value.size() == qsizetype(sizeof window))
        std::memcpy(&window, value.constData(), sizeof window);
    return window;
}

QString XScreen::titleOf(quint32 window) const
{
    return QString::fromUtf8(property(window, atom("_NET_WM_NAME")));
}

QList<quint32> XScreen::shownWindows(const std::function<bool(quint32)> &wanted) const
{
    QList<quint32> found;
    QList<quint32> open{root};
    while (!open.isEmpty()) {
        const auto cookie = xcb_query_tree(connection, open.takeFirst());
        const auto tree = owned(xcb_query_tree_reply(connection, cookie, nullptr));
        if (!tree)
            continue;
        const quint32 *children = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const auto asked = xcb_get_window_attributes(connection, children[i]);
            const auto known = owned(xcb_get_window_attributes_reply(connection, asked, nullptr));
            if (!known || known->map_state != XCB_MAP_STATE_VIEWABLE)
                continue;
            open.append(children[i]);
            if (wanted(children[i]))
                found.append(children[i]);
        }
    }
    return found;
}

bool XScreen::isOfClass(quint32 window, const QString &name) const
{
    // The name of the instance, that of the class, a zero byte after each.
    const QList<QByteArray> names = property(window, XCB_ATOM_WM_CLASS).split('\0');
    return QString::fromUtf8(names.value(1)).compare(name, Qt::CaseInsensitive) == 0;
}

QRect XScreen::geometry(quint32 window) const
{
    const auto size =
        owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    const auto asked = xcb_translate_coordinates(connection, window, root, 0, 0);
    const auto place = owned(xcb_translate_coordinates_reply(connection, asked, nullptr));
    return size && place ? QRect(place->dst_x, place->dst_y, size->width, size->height) : QRect();
}

quint32 XScreen::atom(const char *name) const
{
    const auto asked = xcb_intern_atom(connection, 0, static_cast<quint16>(std::strlen(name)), name);
    const auto reply = owned(xcb_intern_atom_reply(connection, asked, nullptr));
    return reply ? reply->atom : quint32(XCB_ATOM_NONE);
}

QByteArray XScreen::property(quint32 window, quint32 name) const
{
    const auto asked =
        xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
    const auto reply = owned(xcb_get_property_reply(connection, asked, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}
