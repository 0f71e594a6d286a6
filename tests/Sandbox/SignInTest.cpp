#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

#include "Models/AuthTokens.h"
#include "SandboxFixture.h"
#include "Support/PlainHttp.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

const QByteArray verifier{"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"};

/// The sandbox's authorization server over real sockets. What is sent is written by hand.
class SignInTest : public SandboxFixture {
protected:
    using Fields = QList<std::pair<QByteArray, QByteArray>>;

    /// What the program asks for.
    static Fields question() {
        return {{"response_type", "code"},
                {"client_id", "corvellan-tui"},
                {"redirect_uri", "http://127.0.0.1:9876/callback"},
                {"code_challenge", "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"},
                {"code_challenge_method", "S256"},
                {"scope", "openid%20email%20profile"}};
    }
    static Fields exchange(const QByteArray& code) {
        return {{"grant_type", "authorization_code"},
                {"client_id", "corvellan-tui"},
                {"code", code},
                {"redirect_uri", "http://127.0.0.1:9876/callback"},
                {"code_verifier", verifier}};
    }
    static Fields renewal(const QByteArray& token) {
        return {{"grant_type", "refresh_token"}, {"client_id", "corvellan-tui"}, {"refresh_token", token}};
    }
    static QByteArray joined(const Fields& fields) {
        QByteArray text;
        for (const auto& [name, value] : fields)
            text += (text.isEmpty() ? "" : "&") + name + '=' + value;
        return text;
    }
    /// The fields with one changed, or left out.
    static Fields with(Fields fields, const QByteArray& name, const QByteArray& value) {
        for (auto& field : fields)
            if (field.first == name)
                field.second = value;
        return fields;
    }
    static Fields without(Fields fields, const QByteArray& name) {
        fields.removeIf([&](const auto& field) { return field.first == name; });
        return fields;
    }

    PlainAnswer ask(const Fields& fields) {
        return plainHttp(box->chatPort(), "GET", "/api/oauth/authorize?" + joined(fields));
    }
    PlainAnswer post(const QByteArray& path, const QByteArray& body) {
        return plainHttp(box->chatPort(), "POST", path, body);
    }
    /// The ticket in a page's form.
    static QByteArray ticket(const QByteArray& page) {
        static const QRegularExpression pattern{u"name=\"ticket\" value=\"([^\"]+)\""_s};
        return pattern.match(QString::fromUtf8(page)).captured(1).toLatin1();
    }
    PlainAnswer press(const QByteArray& ticket, const QByteArray& user = "anna%40fernhill.example",
                      const QByteArray& decision = "allow") {
        return post("/api/oauth/authorize", "ticket=" + ticket + "&user=" + user + "&decision=" + decision);
    }
    static QByteArray item(const PlainAnswer& answer, const QString& name) {
        return QUrlQuery{QUrl::fromEncoded(answer.headers.value("location"))}.queryItemValue(name).toLatin1();
    }
    QByteArray code() { return item(press(ticket(ask(question()).body)), u"code"_s); }
    PlainAnswer token(const Fields& fields) { return post("/api/oauth/token", joined(fields)); }
    static QJsonObject json(const PlainAnswer& answer) { return QJsonDocument::fromJson(answer.body).object(); }
    QJsonObject signIn() { return json(token(exchange(code()))); }

    void expectRefusal(const PlainAnswer& answer, const QString& error, int status = 400) {
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(json(answer)[u"error"_s].toString(), error) << answer.body.constData();
        EXPECT_FALSE(json(answer)[u"error_description"_s].toString().isEmpty());
        EXPECT_TRUE(logs(u"refused: "_s + error));
    }
    void expectSentBack(const PlainAnswer& answer, const QByteArray& error) {
        EXPECT_EQ(answer.status, 303);
        EXPECT_TRUE(answer.headers.value("location").startsWith("http://127.0.0.1:9876/callback?error=" + error + '&'))
            << answer.headers.value("location").constData();
        EXPECT_FALSE(answer.headers.value("location").contains("code="));
    }
    static void expectProblem(const PlainAnswer& answer, const QByteArray& text) {
        EXPECT_EQ(answer.status, 400);
        EXPECT_TRUE(answer.body.contains(text)) << answer.body.constData();
        EXPECT_FALSE(answer.headers.contains("location"));
    }
};

}  // namespace

TEST_F(SignInTest, leadsFromThePageToTokens) {
    start();
    const auto page = ask(question());
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.headers.value("content-type"), "text/html; charset=utf-8");
    const auto back = press(ticket(page.body));
    EXPECT_EQ(back.status, 303);
    EXPECT_TRUE(back.headers.value("location").startsWith("http://127.0.0.1:9876/callback?code="));
    const auto answer = token(exchange(item(back, u"code"_s)));
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.headers.value("cache-control"), "no-store");
    const auto tokens = AuthTokens::decodeAnswer(answer.body, clock.wallNow());
    ASSERT_TRUE(tokens);
    EXPECT_EQ(jwtSubject(tokens->accessToken), u"anna@fernhill.example"_s);
    EXPECT_TRUE(tokens->refreshToken);
    EXPECT_EQ(json(answer)[u"expires_in"_s].toInteger(), 3600);
    EXPECT_EQ(json(answer)[u"token_type"_s], u"Bearer"_s);
    EXPECT_EQ(box->accounts().userOf(tokens->accessToken), u"anna@fernhill.example"_s);
    EXPECT_TRUE(logs(u"tokens for anna@fernhill.example, for a code"_s));
}

TEST_F(SignInTest, thePageIsAFormForAnyBrowserAndKeyboard) {
    start();
    const QByteArray page = ask(question()).body;
    EXPECT_TRUE(page.contains("<form method=\"post\" action=\"/api/oauth/authorize\">"));
    EXPECT_TRUE(page.contains("<button type=\"submit\" name=\"decision\" value=\"allow\" autofocus>Sign in</button>"));
    EXPECT_TRUE(page.contains("<label for=\"user\">"));
    EXPECT_TRUE(page.contains("<option>ben@fernhill.example</option>"));
    EXPECT_TRUE(page.contains("<html lang=\"en\">"));
    EXPECT_FALSE(page.contains("<script"));
}

TEST_F(SignInTest, thePageMayBeShownInNoFrameAndLeadsNowhereElse) {
    start();
    const QByteArray policy = ask(question()).headers.value("content-security-policy");
    EXPECT_TRUE(policy.contains("frame-ancestors 'none'"));
    EXPECT_TRUE(policy.contains("form-action 'self' http://127.0.0.1:9876"));
    EXPECT_EQ(ask(question()).headers.value("referrer-policy"), "no-referrer");
}

TEST_F(SignInTest, escapesWhatItShows) {
    start({.accounts = {.users = {u"<b>\"x\"&@y.example"_s}}});
    EXPECT_TRUE(ask(question()).body.contains("<option>&lt;b&gt;&quot;x&quot;&amp;@y.example</option>"));
}

TEST_F(SignInTest, signsInWhoeverIsChosen) {
    start({.accounts = {.users = {u"zoe@x.example"_s, u"kim+1@x.example"_s}}});
    const auto back = press(ticket(ask(question()).body), "kim%2B1%40x.example");
    const auto tokens = json(token(exchange(item(back, u"code"_s))));
    EXPECT_EQ(jwtSubject(tokens[u"access_token"_s].toString()), u"kim+1@x.example"_s);
}

TEST_F(SignInTest, givesTheStateBackAsItIs) {
    start();
    auto fields = question();
    fields.emplaceBack("state", "a%26b%3D+%C3%BC");
    const QByteArray page = ask(fields).body;
    EXPECT_TRUE(press(ticket(page)).headers.value("location").endsWith("&state=a%26b%3D%20%C3%BC"));
    const QByteArray other = ask(fields).body;
    EXPECT_TRUE(press(ticket(other), "x", "deny").headers.value("location").endsWith("&state=a%26b%3D%20%C3%BC"));
}

TEST_F(SignInTest, sendsNobodyToAnUnknownClientOrAddress) {
    start();
    for (const auto* const client : {"", "other"})
        expectProblem(ask(with(question(), "client_id", client)), "client_id is not known");
    expectProblem(ask(without(question(), "client_id")), "client_id is not known");
    for (const auto* const address : {"", "http://127.0.0.1:9876/callback/", "http://localhost:9876/callback",
                                      "http://evil.example/callback", "http://127.0.0.1:9877/callback"})
        expectProblem(ask(with(question(), "redirect_uri", address)), "redirect_uri is not registered");
    expectProblem(plainHttp(box->chatPort(), "GET", "/api/oauth/authorize"), "client_id is not known");
    expectProblem(plainHttp(box->chatPort(), "GET", "/api/oauth/authorize?client_id=a&client_id=a"), "malformed");
}

TEST_F(SignInTest, sendsTheBrowserBackFromAQuestionThatIsWrong) {
    start();
    expectSentBack(ask(with(question(), "response_type", "token")), "unsupported_response_type");
    expectSentBack(ask(without(question(), "response_type")), "unsupported_response_type");
    expectSentBack(ask(with(question(), "code_challenge_method", "plain")), "invalid_request");
    expectSentBack(ask(without(question(), "code_challenge_method")), "invalid_request");
    expectSentBack(ask(without(question(), "code_challenge")), "invalid_request");
    expectSentBack(ask(with(question(), "code_challenge", "short")), "invalid_request");
    expectSentBack(ask(with(question(), "code_challenge", QByteArray(43, '.'))), "invalid_request");
    expectSentBack(ask(with(question(), "scope", "email")), "invalid_scope");
    expectSentBack(ask(without(question(), "scope")), "invalid_scope");
}

TEST_F(SignInTest, sendsTheBrowserBackWhereTheUserCancels) {
    start();
    const QByteArray page = ticket(ask(question()).body);
    expectSentBack(press(page, "anna%40fernhill.example", "deny"), "access_denied");
    // The page is spent.
    expectProblem(press(page), "used already");
}

TEST_F(SignInTest, takesNoFormThatIsNotItsOwn) {
    start();
    expectProblem(press(""), "too old or was used already");
    expectProblem(press("page_x"), "too old or was used already");
    expectProblem(post("/api/oauth/authorize", ""), "too old or was used already");
    expectProblem(press(ticket(ask(question()).body), "eve%40x.example"), "no such account");
    expectProblem(press(ticket(ask(question()).body), "anna%40fernhill.example", "maybe"), "not the form");
    expectProblem(post("/api/oauth/authorize", "ticket=a&ticket=b"), "not the form");
    expectProblem(plainHttp(box->chatPort(), "POST", "/api/oauth/authorize", "{}", "application/json"), "not the form");
    const QByteArray page = ticket(ask(question()).body);
    EXPECT_EQ(press(page).status, 303);
    expectProblem(press(page), "too old or was used already");
    const QByteArray old = ticket(ask(question()).body);
    clock.advance(10min);
    expectProblem(press(old), "too old or was used already");
}

TEST_F(SignInTest, refusesAnExchangeThatIsIncomplete) {
    start();
    const QByteArray good = code();
    for (const auto* const name : {"grant_type", "code", "redirect_uri", "code_verifier"})
        expectRefusal(token(without(exchange(good), name)), u"invalid_request"_s);
    expectRefusal(token(without(exchange(good), "client_id")), u"invalid_client"_s, 401);
    expectRefusal(token(with(exchange(good), "client_id", "other")), u"invalid_client"_s, 401);
    expectRefusal(token(with(exchange(good), "grant_type", "password")), u"unsupported_grant_type"_s);
    expectRefusal(post("/api/oauth/token", joined(exchange(good)) + "&code=again"), u"invalid_request"_s);
    expectRefusal(post("/api/oauth/token", ""), u"invalid_request"_s);
    expectRefusal(post("/api/oauth/token", QByteArray(100'000, 'x')), u"invalid_request"_s);
    expectRefusal(plainHttp(box->chatPort(), "POST", "/api/oauth/token", "{}", "application/json"),
                  u"invalid_request"_s);
    // None of this has spent the code.
    EXPECT_EQ(token(exchange(good)).status, 200);
}

TEST_F(SignInTest, refusesACodeThatIsNotGood) {
    start();
    expectRefusal(token(exchange("code_x")), u"invalid_grant"_s);
    expectRefusal(token(with(exchange(code()), "code_verifier", "wrong")), u"invalid_grant"_s);
    expectRefusal(token(with(exchange(code()), "redirect_uri", "http://127.0.0.1:9876/other")), u"invalid_grant"_s);
    const QByteArray once = code();
    EXPECT_EQ(token(exchange(once)).status, 200);
    expectRefusal(token(exchange(once)), u"invalid_grant"_s);
    const QByteArray late = code();
    clock.advance(60s);
    expectRefusal(token(exchange(late)), u"invalid_grant"_s);
}

TEST_F(SignInTest, refreshesWithARefreshTokenThatIsGood) {
    start();
    const QByteArray first = signIn()[u"refresh_token"_s].toString().toLatin1();
    const auto renewed = token(renewal(first));
    EXPECT_EQ(renewed.status, 200);
    EXPECT_EQ(jwtSubject(json(renewed)[u"access_token"_s].toString()), u"anna@fernhill.example"_s);
    EXPECT_NE(json(renewed)[u"refresh_token"_s].toString().toLatin1(), first);
    expectRefusal(token(renewal(first)), u"invalid_grant"_s);
    expectRefusal(token(renewal("refresh_x")), u"invalid_grant"_s);
    expectRefusal(token(renewal("")), u"invalid_request"_s);
    expectRefusal(token(with(renewal(first), "client_id", "other")), u"invalid_client"_s, 401);
}

TEST_F(SignInTest, leavesOutWhatItIsToldToLeaveOut) {
    start({.accounts = {.tokenLifetime = std::nullopt, .refreshTokens = sandbox::RefreshTokens::keep}});
    const auto tokens = signIn();
    EXPECT_FALSE(tokens.contains(u"expires_in"_s));
    const auto renewed = token(renewal(tokens[u"refresh_token"_s].toString().toLatin1()));
    EXPECT_EQ(renewed.status, 200);
    EXPECT_FALSE(json(renewed).contains(u"refresh_token"_s));
}

TEST_F(SignInTest, revokesASignIn) {
    start();
    const auto tokens = signIn();
    const QByteArray refresh = tokens[u"refresh_token"_s].toString().toLatin1();
    const QByteArray client = "client_id=corvellan-tui&token=";
    EXPECT_EQ(post("/api/oauth/revoke", client + refresh).status, 200);
    EXPECT_EQ(box->accounts().userOf(tokens[u"access_token"_s].toString()), std::nullopt);
    expectRefusal(token(renewal(refresh)), u"invalid_grant"_s);
    // What is unknown is as good as revoked.
    EXPECT_EQ(post("/api/oauth/revoke", client + "x").status, 200);
    expectRefusal(post("/api/oauth/revoke", "client_id=corvellan-tui"), u"invalid_request"_s);
    expectRefusal(post("/api/oauth/revoke", "token=x"), u"invalid_client"_s, 401);
}

TEST_F(SignInTest, misbehavesWhenToldTo) {
    sandbox::SandboxOptions options;
    options.faults.refuseCode = true;
    start(options);
    expectRefusal(token(exchange(code())), u"invalid_grant"_s);
    options.faults = {};
    options.faults.refuseRefresh = true;
    start(options);
    const auto tokens = signIn();
    expectRefusal(token(renewal(tokens[u"refresh_token"_s].toString().toLatin1())), u"invalid_grant"_s);
}

TEST_F(SignInTest, noSecretReachesTheLog) {
    start();
    const QByteArray once = code();
    const auto tokens = json(token(exchange(once)));
    std::ignore = token(exchange(once));
    std::ignore = token(renewal(tokens[u"refresh_token"_s].toString().toLatin1()));
    for (const auto& secret : {QString::fromLatin1(once), tokens[u"access_token"_s].toString(),
                               tokens[u"refresh_token"_s].toString(), QString::fromLatin1(verifier)})
        EXPECT_FALSE(logs(secret)) << secret.toStdString();
}

}  // namespace corvellan::test
