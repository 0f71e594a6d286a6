#include "Admission.h"

#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QUrl>

#include "AccountBook.h"
#include "EventLog.h"
#include "FormFields.h"
#include "RestAnswers.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

/// By the name and not by the address of the socket, which a proxy in front would hide.
bool isLocal(const QUrl& url) {
    return url.host() == u"127.0.0.1" || url.host() == u"localhost";
}

}  // namespace

std::optional<QHttpServerResponse> Admission::refusal(const QHttpServerRequest& request) const {
    const auto token = bearerToken(request);
    if (admits(request.url(), token))
        return std::nullopt;
    const QString why = token ? u"the access token is not good, or no longer"_s : u"an access token is wanted"_s;
    m_log.event(u"coach"_s, u"refused %1: %2"_s.arg(request.url().path(), why));
    return failure(QHttpServerResponse::StatusCode::Unauthorized, why);
}

bool Admission::admits(const QUrl& webSocket) const {
    const auto query = parseForm(webSocket.query(QUrl::FullyEncoded).toLatin1());
    const auto token = query && query->contains(u"token"_s) ? std::optional{query->value(u"token"_s)} : std::nullopt;
    if (admits(webSocket, token))
        return true;
    m_log.event(u"coach"_s, token ? u"refused a connection: its token is not good, or no longer"_s
                                  : u"refused a connection: it brings no token"_s);
    return false;
}

bool Admission::admits(const QUrl& url, const std::optional<QString>& token) const {
    return isLocal(url) || (token && m_accounts.userOf(*token));
}

}  // namespace corvellan::sandbox
