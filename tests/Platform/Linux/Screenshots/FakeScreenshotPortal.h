#pragma once

#include <functional>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

namespace corvellan::test {

/// A stand-in for the desktop's screenshot portal on a message bus.
class FakeScreenshotPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Screenshot")

public:
    explicit FakeScreenshotPortal(QDBusConnection bus) : m_bus(std::move(bus)) {
        m_bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }

    /// 0 grants, 1 is the user's refusal. The answer leaves before the call returns: the quickest there is.
    uint code = 0;
    QString uri;
    bool isSilent = false;
    bool refuses = false;
    int asked = 0;
    QVariantMap lastOptions;

public Q_SLOTS:
    QDBusObjectPath Screenshot(const QString& /*parentWindow*/, const QVariantMap& options) {
        ++asked;
        lastOptions = options;
        if (refuses) {
            sendErrorReply(QDBusError::AccessDenied, QStringLiteral("not for you"));
            return {};
        }
        const QString sender = message().service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
        const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                 .arg(sender, options.value(QStringLiteral("handle_token")).toString());
        if (!isSilent) {
            auto response = QDBusMessage::createTargetedSignal(message().service(), path,
                                                               QStringLiteral("org.freedesktop.portal.Request"),
                                                               QStringLiteral("Response"));
            response << code << QVariantMap{{QStringLiteral("uri"), uri}};
            m_bus.send(response);
        }
        return QDBusObjectPath{path};
    }

private:
    QDBusConnection m_bus;
};

}  // namespace corvellan::test
