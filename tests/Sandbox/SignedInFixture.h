#pragma once

#include "SandboxFixture.h"
#include "Support/PlainHttp.h"

namespace corvellan::test {

/// A sandbox where somebody has signed in, without the detour over the page and the browser.
class SignedInFixture : public SandboxFixture {
protected:
    [[nodiscard]] QString tokenFor(const QString& user = u"anna@fernhill.example"_s) {
        auto& accounts = box->accounts();
        const QByteArray verifier{"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"};
        const sandbox::SignInRequest request{.clientId = u"corvellan-tui"_s,
                                             .redirectUri = u"http://127.0.0.1:9876/callback"_s,
                                             .codeChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s,
                                             .scope = u"openid"_s,
                                             .state = {}};
        const auto tokens =
            accounts.redeemCode(accounts.issueCode(request, user), request.clientId, request.redirectUri, verifier);
        EXPECT_TRUE(tokens);
        return tokens ? tokens->accessToken : QString{};
    }

    /// What a REST client sends to the coach.
    struct Rest {
        QByteArray method = "GET";
        QByteArray path;
        QByteArray body{};
        QByteArray contentType = "application/json";
        QByteArray host = "127.0.0.1";
        QString token{};
        QByteArray moreHeaders{};
    };
    PlainAnswer rest(const Rest& sent) const {
        TcpClient client{box->coachPort(), sent.host.constData()};
        QByteArray request = sent.method + ' ' + sent.path + " HTTP/1.1\r\nHost: " + sent.host + ':' +
                             QByteArray::number(box->coachPort()) + "\r\n" + sent.moreHeaders;
        if (!sent.token.isEmpty())
            request += "Authorization: Bearer " + sent.token.toLatin1() + "\r\n";
        if (sent.method == "POST")
            request += "Content-Type: " + sent.contentType +
                       "\r\nContent-Length: " + QByteArray::number(sent.body.size()) + "\r\n";
        return plainExchange(client, request + "\r\n" + sent.body);
    }
    static QJsonObject json(const PlainAnswer& answer) { return QJsonDocument::fromJson(answer.body).object(); }

    /// A call from its start to its end, over the wire; its id.
    QString holdCall(
        const QByteArray& start =
            R"({"type":"start_session","company":"Halden Freight","sim_mode":false,"audience":"direct_sale"})") {
        WireClient client{coachUrl()};
        client.send(start);
        client.send(R"({"type":"transcript","source":"system","text":"Planning by hand is a real problem for us."})");
        client.send(R"({"type":"end_session"})");
        return client.next(u"summary"_s)[u"call_id"_s].toString();
    }
};

}  // namespace corvellan::test
