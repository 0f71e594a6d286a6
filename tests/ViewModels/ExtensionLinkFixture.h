#pragma once

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

namespace corvellan::test {

/// A call that the extension sees.
inline const ExtensionContextPayload acme{.entityType = QStringLiteral("contact"),
                                          .entityId = QStringLiteral("7"),
                                          .displayName = QStringLiteral("Dana Moor"),
                                          .companyName = QStringLiteral("Acme"),
                                          .hubspotCompanyId = QStringLiteral("h-9"),
                                          .callActive = true};

/// The poll's answer, as a server writes it.
inline QByteArray status(bool isConnected, const std::optional<ExtensionContextPayload>& context = std::nullopt) {
    QJsonObject root{{QStringLiteral("sensor_connected"), isConnected}};
    if (context) {
        QJsonObject object{{QStringLiteral("call_active"), context->callActive},
                           {QStringLiteral("entity_type"), context->entityType},
                           {QStringLiteral("entity_id"), context->entityId}};
        if (context->displayName)
            object[QStringLiteral("display_name")] = *context->displayName;
        if (context->companyName)
            object[QStringLiteral("company_name")] = *context->companyName;
        if (context->hubspotCompanyId)
            object[QStringLiteral("hubspot_company_id")] = *context->hubspotCompanyId;
        root[QStringLiteral("context")] = object;
    }
    return QJsonDocument{root}.toJson();
}

/// The session between the extension's listener and its poll.
class ExtensionLinkTest : public testing::Test {
protected:
    ExtensionLinkTest() { auth->accessToken = QStringLiteral("to.k+en"); }

    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] FakeWebSocket& listener() const { return *fixture.factory.listeners.back(); }
    [[nodiscard]] std::size_t listeners() const { return fixture.factory.listeners.size(); }
    [[nodiscard]] std::size_t polls() const { return fixture.http.requests.size(); }

    void start() {
        session().startSensorPolling();
        settle();
    }
    void poll(const QByteArray& body, int code = 200) {
        fixture.http.answer(code, body);
        session().checkSensorStatus();
        settle();
    }
    void tell(ServerMsg::Value message) {
        listener().deliver(std::move(message));
        settle();
    }
    /// The start messages of sessions so far.
    [[nodiscard]] int starts() const { return fixture.ws->countSent<ClientMsg::StartSession>(); }

    SessionFixture fixture;
    FakeAuth* auth = fixture.auth;
};

}  // namespace corvellan::test
