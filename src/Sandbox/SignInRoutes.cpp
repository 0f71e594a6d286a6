#include "SignInRoutes.h"

#include <algorithm>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <QUrlQuery>

#include "AccountBook.h"
#include "EventLog.h"
#include "Faults.h"
#include "FormFields.h"
#include "SignInPage.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Status = QHttpServerResponse::StatusCode;

const QString authorizePath = u"/api/oauth/authorize"_s;

/// The one client that is registered.
const QString knownClient = u"corvellan-tui"_s;
const QString knownRedirectUri = u"http://127.0.0.1:9876/callback"_s;

QHttpServerResponse html(const QByteArray& page, Status status = Status::Ok) {
    QHttpServerResponse response{"text/html; charset=utf-8", page, status};
    response.addHeader("Cache-Control", "no-store");
    response.addHeader("Referrer-Policy", "no-referrer");
    // Browsers hold the way back to what a form may lead to as well.
    response.addHeader("Content-Security-Policy",
                       "default-src 'none'; style-src 'unsafe-inline'; frame-ancestors 'none'; base-uri 'none'; "
                       "form-action 'self' http://127.0.0.1:9876");
    return response;
}

QHttpServerResponse answer(const QJsonObject& object, Status status = Status::Ok) {
    QHttpServerResponse response{"application/json", QJsonDocument{object}.toJson(QJsonDocument::Compact), status};
    response.addHeader("Cache-Control", "no-store");
    return response;
}

/// Sends the browser back to the client with these fields.
QHttpServerResponse sendBack(const SignInRequest& request, const QList<std::pair<QString, QString>>& fields) {
    QUrl target{request.redirectUri};
    QByteArray query;
    const auto add = [&](const QString& name, const QString& value) {
        query += (query.isEmpty() ? "" : "&") + QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value);
    };
    for (const auto& [name, value] : fields)
        add(name, value);
    if (request.state)
        add(u"state"_s, *request.state);
    target.setQuery(QString::fromLatin1(query), QUrl::StrictMode);
    QHttpServerResponse response{Status::SeeOther};
    response.addHeader("Location", target.toEncoded());
    response.addHeader("Cache-Control", "no-store");
    return response;
}

bool isForm(const QHttpServerRequest& request) {
    return request.value("content-type").split(';').first().trimmed().toLower() == "application/x-www-form-urlencoded";
}

/// 43 characters of the URL-safe alphabet, as the SHA-256 of a verifier has.
bool isChallenge(const QString& text) {
    constexpr qsizetype length = 43;
    return text.size() == length && std::ranges::all_of(text, [](QChar character) {
               return character.unicode() < 0x80 &&
                      (character.isLetterOrNumber() || character == u'-' || character == u'_');
           });
}

/// One server's handlers.
class SignIn {
public:
    SignIn(AccountBook& accounts, const Faults& faults, const EventLog& log)
        : m_accounts(accounts),
          m_faults(faults),
          m_log(log) {}

    QHttpServerResponse ask(const QHttpServerRequest& request) const {
        const auto fields = parseForm(request.url().query(QUrl::FullyEncoded).toLatin1());
        if (!fields)
            return refusePage(u"The address is malformed."_s);
        // A client that is unknown, or an address that is not its own, must not be sent anything.
        if (fields->value(u"client_id"_s) != knownClient)
            return refusePage(u"The client_id is not known here."_s);
        if (fields->value(u"redirect_uri"_s) != knownRedirectUri)
            return refusePage(u"The redirect_uri is not registered for this client."_s);
        SignInRequest asked{
            .clientId = knownClient,
            .redirectUri = knownRedirectUri,
            .codeChallenge = fields->value(u"code_challenge"_s),
            .scope = fields->value(u"scope"_s),
            .state = fields->contains(u"state"_s) ? std::optional{fields->value(u"state"_s)} : std::nullopt};
        if (fields->value(u"response_type"_s) != u"code")
            return refuse(asked, u"unsupported_response_type"_s, u"response_type is not code"_s);
        if (fields->value(u"code_challenge_method"_s) != u"S256")
            return refuse(asked, u"invalid_request"_s, u"code_challenge_method is not S256"_s);
        if (!isChallenge(asked.codeChallenge))
            return refuse(asked, u"invalid_request"_s, u"code_challenge is no SHA-256 in base64url"_s);
        if (!asked.scope.split(u' ').contains(u"openid"_s))
            return refuse(asked, u"invalid_scope"_s, u"scope does not hold openid"_s);
        m_log.event(u"auth"_s, u"asks who signs in"_s);
        return html(pages::signIn(authorizePath, m_accounts.openPage(std::move(asked)), knownClient,
                                  m_accounts.settings().users));
    }

    QHttpServerResponse decide(const QHttpServerRequest& request) const {
        const auto fields = isForm(request) ? parseForm(request.body()) : std::nullopt;
        if (!fields)
            return refusePage(u"What came is not the form of this page."_s);
        const auto asked = m_accounts.closePage(fields->value(u"ticket"_s));
        if (!asked)
            return refusePage(u"This page is too old or was used already. Start the sign-in again."_s);
        const QString user = fields->value(u"user"_s);
        const QString decision = fields->value(u"decision"_s);
        if (decision != u"allow" && decision != u"deny")
            return refusePage(u"What came is not the form of this page."_s);
        if (decision == u"deny")
            return refuse(*asked, u"access_denied"_s, u"the user has cancelled"_s);
        if (!m_accounts.settings().users.contains(user))
            return refusePage(u"There is no such account."_s);
        m_log.event(u"auth"_s, u"%1 signs in, a code is on its way"_s.arg(user));
        return sendBack(*asked, {{u"code"_s, m_accounts.issueCode(*asked, user)}});
    }

    QHttpServerResponse tokens(const QHttpServerRequest& request) const {
        const auto fields = isForm(request) ? parseForm(request.body()) : std::nullopt;
        if (!fields)
            return refuse({.error = u"invalid_request"_s, .description = u"the body is no form"_s});
        const QString type = fields->value(u"grant_type"_s);
        const auto missing = [&](const QString& name) -> std::optional<TokenRefusal> {
            if (!fields->value(name).isEmpty())
                return std::nullopt;
            return TokenRefusal{.error = u"invalid_request"_s, .description = name + u" is missing"_s};
        };
        if (const auto refusal = missing(u"grant_type"_s))
            return refuse(*refusal);
        const QString client = fields->value(u"client_id"_s);
        if (client != knownClient)
            return refuse({.error = u"invalid_client"_s, .description = u"client_id is not known here"_s},
                          Status::Unauthorized);
        if (type == u"authorization_code") {
            for (const auto& name : {u"code"_s, u"redirect_uri"_s, u"code_verifier"_s})
                if (const auto refusal = missing(name))
                    return refuse(*refusal);
            if (m_faults.refuseCode)
                return refuse({.error = u"invalid_grant"_s, .description = u"as --fault refuse-code asks"_s});
            return hand(m_accounts.redeemCode(fields->value(u"code"_s), client, fields->value(u"redirect_uri"_s),
                                              fields->value(u"code_verifier"_s).toUtf8()),
                        u"for a code"_s);
        }
        if (type == u"refresh_token") {
            if (const auto refusal = missing(u"refresh_token"_s))
                return refuse(*refusal);
            if (m_faults.refuseRefresh)
                return refuse({.error = u"invalid_grant"_s, .description = u"as --fault refuse-refresh asks"_s});
            return hand(m_accounts.refresh(fields->value(u"refresh_token"_s), client), u"for a refresh token"_s);
        }
        return refuse({.error = u"unsupported_grant_type"_s, .description = u"there is no such grant_type"_s});
    }

    QHttpServerResponse revoke(const QHttpServerRequest& request) const {
        const auto fields = isForm(request) ? parseForm(request.body()) : std::nullopt;
        if (!fields || fields->value(u"token"_s).isEmpty())
            return refuse({.error = u"invalid_request"_s, .description = u"token is missing"_s});
        if (fields->value(u"client_id"_s) != knownClient)
            return refuse({.error = u"invalid_client"_s, .description = u"client_id is not known here"_s},
                          Status::Unauthorized);
        // An unknown token is as good as revoked.
        const bool wasGood = m_accounts.revoke(fields->value(u"token"_s));
        m_log.event(u"auth"_s, wasGood ? u"a sign-in was revoked"_s : u"nothing to revoke"_s);
        return answer({});
    }

private:
    QHttpServerResponse hand(const std::expected<IssuedTokens, TokenRefusal>& issued, const QString& what) const {
        if (!issued)
            return refuse(issued.error());
        m_log.event(u"auth"_s, u"tokens for %1, %2"_s.arg(issued->user, what));
        QJsonObject body{
            {u"access_token"_s, issued->accessToken}, {u"token_type"_s, u"Bearer"_s}, {u"scope"_s, issued->scope}};
        if (issued->refreshToken)
            body.insert(u"refresh_token"_s, *issued->refreshToken);
        if (issued->expiresIn)
            body.insert(u"expires_in"_s, qint64{issued->expiresIn->count()});
        return answer(body);
    }

    QHttpServerResponse refuse(const TokenRefusal& refusal, Status status = Status::BadRequest) const {
        m_log.event(u"auth"_s, u"refused: %1, %2"_s.arg(refusal.error, refusal.description));
        return answer({{u"error"_s, refusal.error}, {u"error_description"_s, refusal.description}}, status);
    }

    QHttpServerResponse refuse(const SignInRequest& request, const QString& error, const QString& description) const {
        m_log.event(u"auth"_s, u"sends the browser back: %1, %2"_s.arg(error, description));
        return sendBack(request, {{u"error"_s, error}, {u"error_description"_s, description}});
    }

    QHttpServerResponse refusePage(const QString& why) const {
        m_log.event(u"auth"_s, u"shows a page: %1"_s.arg(why));
        return html(pages::problem(why), Status::BadRequest);
    }

    AccountBook& m_accounts;
    const Faults& m_faults;
    const EventLog& m_log;
};

}  // namespace

void addSignInRoutes(QHttpServer& http, AccountBook& accounts, const Faults& faults, const EventLog& log) {
    using Method = QHttpServerRequest::Method;
    const SignIn signIn{accounts, faults, log};
    http.route(authorizePath, Method::Get, [signIn](const QHttpServerRequest& request) { return signIn.ask(request); });
    http.route(authorizePath, Method::Post,
               [signIn](const QHttpServerRequest& request) { return signIn.decide(request); });
    http.route(u"/api/oauth/token"_s, Method::Post,
               [signIn](const QHttpServerRequest& request) { return signIn.tokens(request); });
    http.route(u"/api/oauth/revoke"_s, Method::Post,
               [signIn](const QHttpServerRequest& request) { return signIn.revoke(request); });
}

}  // namespace corvellan::sandbox
