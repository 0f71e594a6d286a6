#include "TrayHosts.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QTimer>

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

// The watcher knows the hosts, and the name has outlived the desktop that gave it.
const auto watcherService = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;

constexpr int patienceMilliseconds = 2000;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;

xcb_atom_t atom(xcb_connection_t* display, const QByteArray& name) {
    const auto cookie = xcb_intern_atom(display, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const ReplyPointer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(display, cookie, nullptr)};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The X screen that the program is on, of those that the server has.
int defaultScreen() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    const bool isParsed = xcb_parse_display(nullptr, &host, &display, &screen) != 0;
    std::free(host);
    return isParsed ? screen : 0;
}

}  // namespace

TrayHosts::TrayHosts() {
    watchBus();
    watchDisplay();
}

TrayHosts::~TrayHosts() {
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool TrayHosts::arePossible() const {
    return m_hasBus || m_display;
}

void TrayHosts::watchBus() {
    auto bus = QDBusConnection::sessionBus();
    m_hasBus = bus.isConnected();
    if (!m_hasBus) {
        m_isNotifierHostKnown = true;
        return;
    }
    auto* const owner = new QDBusServiceWatcher{watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, this};
    connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayHosts::askForNotifierHost);
    for (const auto& signal : {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        bus.connect(watcherService, watcherPath, watcherService, signal, this, SLOT(askForNotifierHost()));
    askForNotifierHost();
}

void TrayHosts::askForNotifierHost() {
    auto message =
        QDBusMessage::createMethodCall(watcherService, watcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message.setAutoStartService(false);
    message.setArguments({watcherService, u"IsStatusNotifierHostRegistered"_s});
    m_question = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(message, patienceMilliseconds));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, [this] {
        const QDBusPendingReply<QDBusVariant> reply = *m_question;
        setNotifierHost(reply.isValid() && reply.value().variant().toBool());
    });
}

void TrayHosts::setNotifierHost(bool isThere) {
    const bool isNews = !m_isNotifierHostKnown || m_hasNotifierHost != isThere;
    m_isNotifierHostKnown = true;
    m_hasNotifierHost = isThere;
    if (isNews)
        Q_EMIT changed();
}

void TrayHosts::watchDisplay() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Off screen there may be the one without the other.
    m_display = x11 ? x11->connection() : nullptr;
    if (!m_display)
        return;
    m_managerAtom = atom(m_display, "MANAGER"_ba);
    m_trayAtom = atom(m_display, "_NET_SYSTEM_TRAY_S"_ba + QByteArray::number(defaultScreen()));
    qGuiApp->installNativeEventFilter(this);
}

bool TrayHosts::hasEmbeddingTray() const {
    if (!m_display)
        return false;
    const auto cookie = xcb_get_selection_owner(m_display, m_trayAtom);
    const ReplyPointer<xcb_get_selection_owner_reply_t> reply{
        xcb_get_selection_owner_reply(m_display, cookie, nullptr)};
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool TrayHosts::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    constexpr int withoutOrigin = 0x7f;
    if ((event->response_type & withoutOrigin) != XCB_CLIENT_MESSAGE)
        return false;
    const auto* const told = static_cast<const xcb_client_message_event_t*>(message);
    // Not from within the event: whoever hears of it makes windows.
    if (told->type == m_managerAtom && told->format == 32 && told->data.data32[1] == m_trayAtom)
        QTimer::singleShot(0, this, &TrayHosts::changed);
    return false;
}

}  // namespace corvellan
