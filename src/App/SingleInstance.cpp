#include "SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace corvellan {

const QString SingleInstance::name = u"com.teskara.CorvellanBram"_s;
const QString SingleInstance::path = u"/com/teskara/CorvellanBram"_s;

SingleInstance::Outcome SingleInstance::claim(QObject& object, const QString& activationToken) {
    if (!m_bus.isConnected())
        return Outcome::first;
    // The object first: who finds the name can call it at once.
    m_bus.registerObject(path, &object, QDBusConnection::ExportAdaptors);
    const auto reply = m_bus.interface()->registerService(name, QDBusConnectionInterface::DontQueueService,
                                                          QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return Outcome::first;
    m_bus.unregisterObject(path);
    return handOver(activationToken);
}

SingleInstance::Outcome SingleInstance::handOver(const QString& activationToken) {
    auto call = QDBusMessage::createMethodCall(name, path, u"org.freedesktop.Application"_s, u"Activate"_s);
    QVariantMap platformData;
    if (!activationToken.isEmpty()) {
        platformData.insert(u"activation-token"_s, activationToken);
        platformData.insert(u"desktop-startup-id"_s, activationToken);
    }
    call.setArguments({platformData});
    const auto answer = m_bus.call(call, QDBus::Block, static_cast<int>(m_patience.count()));
    return answer.type() == QDBusMessage::ReplyMessage ? Outcome::handedOver : Outcome::unreachable;
}

}  // namespace corvellan
