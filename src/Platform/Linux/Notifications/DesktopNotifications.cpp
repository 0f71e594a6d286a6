#include "DesktopNotifications.h"

#include <algorithm>
#include <QCoroDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QPointer>
#include <QVariantMap>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

const auto notificationService = u"org.freedesktop.Notifications"_s;
const auto notificationPath = u"/org/freedesktop/Notifications"_s;
const auto notificationInterface = notificationService;

/// A service that never tells of an end would have us remember all.
constexpr std::size_t mostRemembered = 64;
/// How long a service that does not answer keeps the next notification, or the question whether there is one.
constexpr int timeoutMilliseconds = 10'000;

QDBusMessage callTo(const QString& interface, const QString& method, const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(notificationService, notificationPath, interface, method);
    message.setArguments(arguments);
    return message;
}

/// What to say to a service that reads bodies as markup, so that it shows `text` as it is.
QString escaped(QString text) {
    text.replace(u'&', u"&amp;"_s);
    text.replace(u'<', u"&lt;"_s);
    text.replace(u'>', u"&gt;"_s);
    return text;
}

QString bodyOf(const NotificationRequest& request) {
    if (request.subtitle.isEmpty() || request.body.isEmpty())
        return request.subtitle + request.body;
    return request.subtitle + u'\n' + request.body;
}

QVariantMap hintsFor(const NotificationRequest& request) {
    QVariantMap hints{{u"desktop-entry"_s, u"com.teskara.CorvellanBram"_s}};
    if (request.playsDefaultSound)
        hints.insert(u"sound-name"_s, u"message-new-instant"_s);
    else
        hints.insert(u"suppress-sound"_s, true);
    return hints;
}

bool isReply(const QDBusMessage& message, QLatin1StringView signature) {
    return message.type() == QDBusMessage::ReplyMessage && message.signature() == signature;
}

/// Knows nothing of the object that asked, which may be gone by the time of the answer.
QCoro::Task<NotificationAuthorization> lookAtService(QDBusConnection bus) {
    if (!bus.isConnected())
        co_return NotificationAuthorization::unknown;
    const auto question = callTo(notificationInterface, u"GetServerInformation"_s);
    const QDBusPendingCall asked = bus.asyncCall(question, timeoutMilliseconds);
    const QDBusMessage information = co_await asked;
    if (!isReply(information, "ssss"_L1))
        co_return NotificationAuthorization::unknown;
    const auto inhibition =
        callTo(u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {notificationInterface, u"Inhibited"_s});
    const QDBusPendingCall askedAgain = bus.asyncCall(inhibition, timeoutMilliseconds);
    const QDBusMessage inhibited = co_await askedAgain;
    // Most services have no such property, and hold nothing back that we could know of.
    const QVariant value =
        isReply(inhibited, "v"_L1) ? inhibited.arguments().at(0).value<QDBusVariant>().variant() : QVariant{};
    const bool isInhibited = value.metaType() == QMetaType::fromType<bool>() && value.toBool();
    co_return isInhibited ? NotificationAuthorization::denied : NotificationAuthorization::authorized;
}

}  // namespace

DesktopNotifications::DesktopNotifications(const QDBusConnection& bus) : m_bus(bus) {
    if (!m_bus.isConnected())
        return;
    m_ownerWatcher.setConnection(m_bus);
    m_ownerWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_ownerWatcher.addWatchedService(notificationService);
    QObject::connect(&m_ownerWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                     [this](const QString&, const QString& oldOwner) { ownerChanged(oldOwner); });
    // With the service's name these would ask the bus, and wait, for who has it; so each message is looked at.
    m_bus.connect({}, notificationPath, notificationInterface, u"ActivationToken"_s, this,
                  SLOT(takeActivationToken(QDBusMessage)));
    m_bus.connect({}, notificationPath, notificationInterface, u"ActionInvoked"_s, this,
                  SLOT(takeAction(QDBusMessage)));
    m_bus.connect({}, notificationPath, notificationInterface, u"NotificationClosed"_s, this,
                  SLOT(takeClosed(QDBusMessage)));
}

QCoro::Task<NotificationAuthorization> DesktopNotifications::authorization() {
    return lookAtService(m_bus);
}

void DesktopNotifications::setCategory(NotificationCategory category) {
    const QString identifier = category.identifier;
    m_categories.insert(identifier, std::move(category));
}

void DesktopNotifications::add(NotificationRequest request) {
    if (!m_bus.isConnected())
        return;
    m_requests.push_back(std::move(request));
    if (m_requests.size() == 1)
        showNext();
}

void DesktopNotifications::showNext() {
    if (m_requests.empty())
        return;
    // Asked each time, since another service may have taken over that reads bodies otherwise.
    auto* watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(callTo(notificationInterface, u"GetCapabilities"_s), timeoutMilliseconds), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        takeCapabilities(watcher->reply());
    });
}

void DesktopNotifications::takeCapabilities(const QDBusMessage& reply) {
    const NotificationRequest& request = m_requests.front();
    m_service = reply.service();
    const bool readsMarkup =
        isReply(reply, "as"_L1) && reply.arguments().at(0).toStringList().contains(u"body-markup"_s);
    const QString body = bodyOf(request);

    // Some services draw no buttons; what the user clicks on is then the notification itself.
    m_offeredActions = {defaultNotificationAction.toString()};
    QStringList actions{defaultNotificationAction.toString(), u"Open"_s};
    for (const NotificationAction& action : m_categories.value(request.categoryIdentifier).actions) {
        m_offeredActions.append(action.identifier);
        actions.append({action.identifier, action.title});
    }

    const auto replaced = std::ranges::find_if(m_shown, [&](const Shown& shown) {
        return shown.identifier == request.identifier && shown.service == m_service;
    });
    const std::uint32_t replacedNumber = replaced == m_shown.end() ? 0 : replaced->number;
    constexpr int whateverIsUsual = -1;
    const QVariantList arguments{
        u"Corvellan Bram"_s, replacedNumber, QString{}, request.title, readsMarkup ? escaped(body) : body, actions,
        hintsFor(request),   whateverIsUsual};
    auto* watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(callTo(notificationInterface, u"Notify"_s, arguments), timeoutMilliseconds), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        takeShown(watcher->reply());
    });
}

void DesktopNotifications::takeShown(const QDBusMessage& reply) {
    const NotificationRequest request = std::move(m_requests.front());
    m_requests.pop_front();
    const auto early = std::exchange(m_early, {});
    const std::uint32_t number = isReply(reply, "u"_L1) ? reply.arguments().at(0).toUInt() : 0;
    if (number != 0) {
        // What it replaced, and what the service has forgotten if it uses a number twice.
        std::erase_if(m_shown, [&](const Shown& shown) {
            return shown.identifier == request.identifier ||
                   (shown.service == reply.service() && shown.number == number);
        });
        if (m_shown.size() == mostRemembered)
            m_shown.erase(m_shown.begin());
        m_shown.push_back({.service = reply.service(),
                           .number = number,
                           .identifier = request.identifier,
                           .actions = m_offeredActions,
                           .userInfo = request.userInfo});
    }
    showNext();
    const QPointer<DesktopNotifications> self{this};
    for (const EarlyAnswer& answer : early)
        if (self)
            (this->*answer.answer)(answer.message);
}

void DesktopNotifications::ownerChanged(const QString& oldOwner) {
    // What a service showed went with it.
    std::erase_if(m_shown, [&](const Shown& shown) { return shown.service == oldOwner; });
}

/// The end for a notification that is not ours.
std::vector<DesktopNotifications::Shown>::iterator DesktopNotifications::find(const QDBusMessage& message) {
    const QVariant number = message.arguments().value(0);
    return std::ranges::find_if(m_shown, [&](const Shown& shown) {
        return number.metaType() == QMetaType::fromType<uint>() && shown.number == number.toUInt() &&
               shown.service == message.service();
    });
}

void DesktopNotifications::keepForLater(const QDBusMessage& message, Answer answer) {
    if (!m_requests.empty() && message.service() == m_service && m_early.size() < mostRemembered)
        m_early.push_back({.message = message, .answer = answer});
}

void DesktopNotifications::takeActivationToken(const QDBusMessage& message) {
    if (message.signature() != "us"_L1)
        return;
    if (const auto shown = find(message); shown != m_shown.end())
        shown->activationToken = message.arguments().at(1).toString();
    else
        keepForLater(message, &DesktopNotifications::takeActivationToken);
}

void DesktopNotifications::takeAction(const QDBusMessage& message) {
    if (message.signature() != "us"_L1)
        return;
    const auto shown = find(message);
    if (shown == m_shown.end()) {
        keepForLater(message, &DesktopNotifications::takeAction);
        return;
    }
    const QString action = message.arguments().at(1).toString();
    if (!shown->actions.contains(action))
        return;
    const NotificationResponse response{.actionIdentifier = action,
                                        .userInfo = std::move(shown->userInfo),
                                        .activationToken = std::move(shown->activationToken)};
    // Answered once and for all, although some services leave it on the screen. Not by the well-known name, which
    // may have passed to a service that counts from the beginning.
    auto close =
        QDBusMessage::createMethodCall(shown->service, notificationPath, notificationInterface, u"CloseNotification"_s);
    close.setArguments({shown->number});
    m_bus.send(close);
    m_shown.erase(shown);
    // Last: whoever is told may destroy this object.
    if (didReceive)
        std::function{didReceive}(response);
}

void DesktopNotifications::takeClosed(const QDBusMessage& message) {
    if (message.signature() != "uu"_L1)
        return;
    if (const auto shown = find(message); shown != m_shown.end())
        m_shown.erase(shown);
    else
        keepForLater(message, &DesktopNotifications::takeClosed);
}

}  // namespace corvellan
