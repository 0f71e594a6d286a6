#include "PortalKeyMonitor.h"

#include <algorithm>
#include <chrono>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QPointer>
#include <QRandomGenerator>
#include <QRegularExpression>

#include "Explanations.h"
#include "PortalGlobalKeys.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

const auto portalService = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto shortcutsInterface = u"org.freedesktop.portal.GlobalShortcuts"_s;
const auto requestInterface = u"org.freedesktop.portal.Request"_s;
const auto sessionInterface = u"org.freedesktop.portal.Session"_s;

const auto applicationId = u"com.teskara.CorvellanBram"_s;
const auto shortcutId = u"start-or-end-coaching"_s;

/// Desktops that never tell of a release repeat a held key faster than this.
constexpr std::chrono::milliseconds slowestRepeat{1000};

struct Shortcut {
    QString identifier;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Shortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.identifier << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Shortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.identifier >> shortcut.properties;
    argument.endStructure();
    return argument;
}

/// Our own among the shortcuts that the portal lists; `listed` is whatever it sent.
std::optional<Shortcut> ownShortcut(const QVariant& listed) {
    if (listed.metaType() != QMetaType::fromType<QDBusArgument>())
        return std::nullopt;
    const auto argument = listed.value<QDBusArgument>();
    if (argument.currentSignature() != u"a(sa{sv})")
        return std::nullopt;
    const auto shortcuts = qdbus_cast<QList<Shortcut>>(argument);
    const auto own = std::ranges::find(shortcuts, shortcutId, &Shortcut::identifier);
    return own == shortcuts.end() ? std::nullopt : std::optional{*own};
}

/// Names of keys as the desktop words them, in one line that fits a settings page; may be empty.
QString triggerOf(const Shortcut& shortcut) {
    constexpr qsizetype longest = 60;
    const QVariant described = shortcut.properties.value(u"trigger_description"_s);
    if (described.metaType() != QMetaType::fromType<QString>())
        return {};
    QString trigger = described.toString().first(std::min<qsizetype>(described.toString().size(), 1000)).simplified();
    trigger.removeIf([](QChar character) { return !character.isPrint(); });
    return trigger.size() > longest ? QString{} : trigger;
}

QString watchingExplanation(const QString& trigger) {
    const QString keys = trigger.isEmpty() ? u"Your desktop has taken the shortcut over."_s
                                           : u"Your desktop has assigned the shortcut: "_s + trigger + u'.';
    return keys + u" The keys can be changed in the desktop's keyboard settings."_s;
}

bool isWellFormedSession(const QString& path) {
    static const QRegularExpression form{
        uR"(\A/org/freedesktop/portal/desktop/session/[A-Za-z0-9_]{1,100}/[A-Za-z0-9_]{1,100}\z)"_s};
    return form.match(path).hasMatch();
}

/// Not guessable, so that no other program can answer in the portal's place.
QString freshToken() {
    return u"corvellan_"_s + QString::number(QRandomGenerator::system()->generate64(), 16);
}

QDBusMessage callTo(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(portalService, path, interface, method);
    message.setArguments(arguments);
    return message;
}

}  // namespace

std::unique_ptr<GlobalKeyMonitor> PortalGlobalKeys::addGlobalMonitor(std::function<void(const KeyDown&)> onKeyDown) {
    return std::make_unique<PortalKeyMonitor>(m_bus, m_clock, std::move(onKeyDown));
}

PortalKeyMonitor::PortalKeyMonitor(const QDBusConnection& bus, Clock& clock,
                                   std::function<void(const KeyDown&)> onKeyDown)
    : m_bus(bus),
      m_clock(clock),
      m_onKeyDown(std::move(onKeyDown)) {
    qDBusRegisterMetaType<Shortcut>();
    qDBusRegisterMetaType<QList<Shortcut>>();
    if (!m_bus.isConnected()) {
        fail(u"there is no session bus to ask the desktop through"_s);
        return;
    }
    m_ownerWatcher.setConnection(m_bus);
    m_ownerWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_ownerWatcher.addWatchedService(portalService);
    QObject::connect(
        &m_ownerWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString& oldOwner, const QString& newOwner) { ownerChanged(oldOwner, newOwner); });
    // With the portal's name these would ask the bus, and wait, for who has it; so each message is looked at.
    m_bus.connect({}, portalPath, shortcutsInterface, u"Activated"_s, this, SLOT(takeActivated(QDBusMessage)));
    m_bus.connect({}, portalPath, shortcutsInterface, u"Deactivated"_s, this, SLOT(takeDeactivated(QDBusMessage)));
    m_bus.connect({}, portalPath, shortcutsInterface, u"ShortcutsChanged"_s, this,
                  SLOT(takeShortcutsChanged(QDBusMessage)));
    // Made by the library on this side, when there is nobody left to send anything.
    m_bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this,
                  SLOT(takeDisconnected()));
    start();
}

PortalKeyMonitor::~PortalKeyMonitor() {
    if (!m_requestPath.isEmpty() && !m_portal.isEmpty())
        m_bus.send(callTo(m_requestPath, requestInterface, u"Close"_s, {}));
    endSession();
}

void PortalKeyMonitor::start() {
    ++m_attempt;
    m_portal.clear();
    m_step = Step::creatingSession;
    m_isDown = false;
    m_lastActivated.reset();
    // Programs outside a sandbox say who they are, or some desktops refuse; older portals don't know the question.
    call(callTo(portalPath, u"org.freedesktop.host.portal.Registry"_s, u"Register"_s, {applicationId, QVariantMap{}}),
         &PortalKeyMonitor::takeRegistered);
    set(GlobalKeyWatch::starting, u"Asking the desktop for the shortcut."_s);
}

void PortalKeyMonitor::call(const QDBusMessage& message, OnReply onReply) {
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, onReply, attempt = m_attempt] {
        watcher->deleteLater();
        if (attempt == m_attempt && m_step != Step::ended)
            (this->*onReply)(watcher->reply());
    });
}

void PortalKeyMonitor::takeRegistered(const QDBusMessage&) {
    call(callTo(portalPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {shortcutsInterface, u"version"_s}),
         &PortalKeyMonitor::takeVersion);
}

void PortalKeyMonitor::takeVersion(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"v" ||
        reply.arguments().value(0).value<QDBusVariant>().variant().metaType() != QMetaType::fromType<uint>()) {
        fail(u"this desktop offers programs no global shortcuts"_s);
        return;
    }
    m_portal = reply.service();
    createSession();
}

void PortalKeyMonitor::createSession() {
    const QString token = beginRequest();
    const QVariantMap options{{u"handle_token"_s, token}, {u"session_handle_token"_s, freshToken()}};
    call(callTo(portalPath, shortcutsInterface, u"CreateSession"_s, {options}), &PortalKeyMonitor::takeRequested);
}

void PortalKeyMonitor::bindShortcut(const QVariantMap& results) {
    // Documented as a string, although it is a path.
    const QVariant handle = results.value(u"session_handle"_s);
    const QString path = handle.metaType() == QMetaType::fromType<QDBusObjectPath>()
                             ? handle.value<QDBusObjectPath>().path()
                         : handle.metaType() == QMetaType::fromType<QString>() ? handle.toString()
                                                                               : QString{};
    if (!isWellFormedSession(path)) {
        fail(u"the desktop answered in a way that makes no sense"_s);
        return;
    }
    m_sessionPath = path;
    m_bus.connect({}, m_sessionPath, sessionInterface, u"Closed"_s, this, SLOT(takeSessionClosed(QDBusMessage)));

    m_step = Step::binding;
    const QString token = beginRequest();
    const QList<Shortcut> shortcuts{
        {.identifier = shortcutId,
         .properties = {{u"description"_s, u"Start or end coaching"_s}, {u"preferred_trigger"_s, u"LOGO+SHIFT+j"_s}}}};
    call(callTo(portalPath, shortcutsInterface, u"BindShortcuts"_s,
                {QVariant::fromValue(QDBusObjectPath{m_sessionPath}), QVariant::fromValue(shortcuts), QString{},
                 QVariantMap{{u"handle_token"_s, token}}}),
         &PortalKeyMonitor::takeRequested);
    // From here on the desktop may be asking the user, who has all the time in the world.
    set(GlobalKeyWatch::starting, u"Your desktop has been asked for the shortcut and may want your consent."_s);
}

/// The portal has taken the request on, or not; its answer proper comes as a response.
void PortalKeyMonitor::takeRequested(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage)
        fail(u"the desktop refused it"_s);
}

void PortalKeyMonitor::takeResponse(const QDBusMessage& message) {
    if (message.service() != m_portal || m_portal.isEmpty() || message.path() != m_requestPath)
        return;
    endRequest();
    if (message.signature() != u"ua{sv}") {
        fail(u"the desktop answered in a way that makes no sense"_s);
        return;
    }
    constexpr uint granted = 0;
    constexpr uint refusedByUser = 1;
    const uint response = message.arguments().at(0).toUInt();
    const auto results = qdbus_cast<QVariantMap>(message.arguments().at(1));
    if (response != granted)
        fail(response == refusedByUser ? u"it was refused on this desktop"_s : u"the desktop refused it"_s);
    else if (m_step == Step::creatingSession)
        bindShortcut(results);
    else if (m_step == Step::binding)
        takeBinding(results);
}

void PortalKeyMonitor::takeBinding(const QVariantMap& results) {
    const auto own = ownShortcut(results.value(u"shortcuts"_s));
    if (!own) {
        fail(u"the desktop assigned no keys to it"_s);
        return;
    }
    m_step = Step::bound;
    set(GlobalKeyWatch::watching, watchingExplanation(triggerOf(*own)));
}

bool PortalKeyMonitor::isOurShortcut(const QDBusMessage& message) const {
    return m_step == Step::bound && message.service() == m_portal && message.signature() == u"osta{sv}" &&
           message.arguments().at(0).value<QDBusObjectPath>().path() == m_sessionPath &&
           message.arguments().at(1).toString() == shortcutId;
}

void PortalKeyMonitor::takeActivated(const QDBusMessage& message) {
    if (!isOurShortcut(message))
        return;
    const auto now = m_clock.now();
    const bool isRepeat = m_isDown && m_lastActivated && now - *m_lastActivated < slowestRepeat;
    m_isDown = true;
    m_lastActivated = now;
    if (isRepeat || !m_onKeyDown)
        return;
    const QVariant token = qdbus_cast<QVariantMap>(message.arguments().at(3)).value(u"activation_token"_s);
    const KeyDown keyDown{
        .key = PhysicalKey::j,
        .isCommandDown = true,
        .isShiftDown = true,
        .activationToken = token.metaType() == QMetaType::fromType<QString>() ? token.toString() : QString{}};
    const auto onKeyDown = m_onKeyDown;
    onKeyDown(keyDown);
}

void PortalKeyMonitor::takeDeactivated(const QDBusMessage& message) {
    if (isOurShortcut(message))
        m_isDown = false;
}

void PortalKeyMonitor::takeShortcutsChanged(const QDBusMessage& message) {
    if (m_step != Step::bound || message.service() != m_portal || message.signature() != u"oa(sa{sv})" ||
        message.arguments().at(0).value<QDBusObjectPath>().path() != m_sessionPath)
        return;
    if (const auto own = ownShortcut(message.arguments().at(1)))
        set(GlobalKeyWatch::watching, watchingExplanation(triggerOf(*own)));
}

void PortalKeyMonitor::takeSessionClosed(const QDBusMessage& message) {
    if (message.service() != m_portal || m_portal.isEmpty() || message.path() != m_sessionPath)
        return;
    m_sessionPath.clear();
    fail(u"the desktop has taken it back"_s);
}

void PortalKeyMonitor::takeDisconnected() {
    m_requestPath.clear();
    m_sessionPath.clear();
    fail(u"the connection to the desktop was lost"_s);
}

void PortalKeyMonitor::ownerChanged(const QString& oldOwner, const QString& newOwner) {
    if (!m_portal.isEmpty() && oldOwner == m_portal) {
        const bool wasBound = m_step == Step::bound;
        m_sessionPath.clear();
        endRequest();
        m_portal.clear();
        // Only one that has kept its word once is asked again: another might fall over at each question.
        if (newOwner.isEmpty() || !wasBound) {
            m_mayAskAgain = wasBound;
            fail(u"the part of the desktop that delivers it has ended"_s);
            return;
        }
        start();
    } else if (!newOwner.isEmpty() && std::exchange(m_mayAskAgain, false)) {
        start();
    }
}

/// Listens for the answer before the question is out, as it may be quicker than the call's own reply.
QString PortalKeyMonitor::beginRequest() {
    const QString token = freshToken();
    QString sender = m_bus.baseService().sliced(1);
    sender.replace(u'.', u'_');
    m_requestPath = portalPath + u"/request/"_s + sender + u'/' + token;
    m_bus.connect({}, m_requestPath, requestInterface, u"Response"_s, this, SLOT(takeResponse(QDBusMessage)));
    return token;
}

void PortalKeyMonitor::endRequest() {
    if (m_requestPath.isEmpty())
        return;
    m_bus.disconnect({}, m_requestPath, requestInterface, u"Response"_s, this, SLOT(takeResponse(QDBusMessage)));
    m_requestPath.clear();
}

void PortalKeyMonitor::endSession() {
    if (m_sessionPath.isEmpty())
        return;
    m_bus.disconnect({}, m_sessionPath, sessionInterface, u"Closed"_s, this, SLOT(takeSessionClosed(QDBusMessage)));
    m_bus.send(callTo(m_sessionPath, sessionInterface, u"Close"_s, {}));
    m_sessionPath.clear();
}

/// Last in what calls it, since `onChanged` may destroy this object.
void PortalKeyMonitor::set(GlobalKeyWatch watch, const QString& explanation) {
    if (m_watch == watch && m_explanation == explanation)
        return;
    m_watch = watch;
    m_explanation = explanation;
    if (onChanged)
        std::function{onChanged}();
}

void PortalKeyMonitor::fail(const QString& reason) {
    m_step = Step::ended;
    endRequest();
    endSession();
    set(GlobalKeyWatch::unavailable, shortcutUnavailable(reason));
}

}  // namespace corvellan
