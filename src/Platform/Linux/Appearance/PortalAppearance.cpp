#include "PortalAppearance.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString colorSchemeKey = u"color-scheme"_s;

/// One for the answer's type, one more that the older of the portal's two questions adds.
constexpr int deepestWrapping = 2;

}  // namespace

PortalAppearance::PortalAppearance(QDBusConnection sessionBus)
    : m_bus(std::move(sessionBus)),
      m_watcher(portalName, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                m_portal.clear();
                // A portal that has gone leaves things as they are: the desktop looks as it did.
                if (!owner.isEmpty())
                    ask();
            });
    m_bus.connect({}, portalPath, settingsInterface, u"SettingChanged"_s, this, SLOT(takeChange(QDBusMessage)));
    ask();
}

void PortalAppearance::ask() {
    auto question = QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, u"Read"_s);
    question.setArguments({appearance, colorSchemeKey});
    question.setAutoStartService(false);
    auto* const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage answer = watcher->reply();
        if (answer.type() != QDBusMessage::ReplyMessage)
            return;
        m_portal = answer.service();
        setScheme(schemeOf(answer.arguments().value(0)));
    });
}

void PortalAppearance::takeChange(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    // Any program may send such a signal.
    if (m_portal.isEmpty() || message.service() != m_portal || arguments.value(0) != appearance ||
        arguments.value(1) != colorSchemeKey)
        return;
    setScheme(schemeOf(arguments.value(2)));
}

ColorScheme PortalAppearance::schemeOf(QVariant value) {
    for (int depth = 0; depth < deepestWrapping && value.metaType() == QMetaType::fromType<QDBusVariant>(); ++depth)
        value = value.value<QDBusVariant>().variant();
    if (value.metaType() != QMetaType::fromType<uint>())
        return ColorScheme::noPreference;
    switch (value.toUInt()) {
    case 1: return ColorScheme::dark;
    case 2: return ColorScheme::light;
    default: return ColorScheme::noPreference;
    }
}

void PortalAppearance::setScheme(ColorScheme scheme) {
    if (m_scheme == scheme)
        return;
    m_scheme = scheme;
    if (onChanged)
        onChanged();
}

}  // namespace corvellan
