#include "CoachRoutes.h"

#include <algorithm>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrlQuery>

#include "CallBook.h"
#include "ProviderServer.h"
#include "UpdatePages.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Status = QHttpServerResponse::StatusCode;

/// Counts what the provider has received, one entry a connection.
QJsonArray audioFigures(const ProviderServer& provider) {
    QJsonArray array;
    for (const auto& figures : provider.figures()) {
        QJsonObject entry{{u"session_id"_s, figures->sessionId},  {u"side"_s, tableText(rawValue(figures->side))},
                          {u"bytes"_s, figures->bytes},           {u"appends"_s, figures->appends},
                          {u"utterances"_s, figures->utterances}, {u"lines"_s, figures->lines},
                          {u"faults"_s, figures->faults},         {u"is_open"_s, figures->isOpen}};
        if (!figures->wavPath.isEmpty())
            entry.insert(u"wav"_s, figures->wavPath);
        array.append(entry);
    }
    return array;
}

QHttpServerResponse failure(Status status, const QString& why) {
    return QHttpServerResponse{QJsonObject{{u"error"_s, why}}, status};
}

QHttpServerResponse listCalls(const CallBook& calls, const QHttpServerRequest& request) {
    constexpr qsizetype most = 200;
    qsizetype limit = most;
    if (const QUrlQuery query{request.url()}; query.hasQueryItem(u"limit"_s)) {
        bool isNumber = false;
        limit = query.queryItemValue(u"limit"_s).toLongLong(&isNumber);
        if (!isNumber || limit < 1)
            return failure(Status::BadRequest, u"limit is a number from 1"_s);
    }
    QJsonArray array;
    // The newest first; a call that is still running has no place in a history.
    for (auto call = calls.calls().rbegin(); call != calls.calls().rend() && array.size() < std::min(limit, most);
         ++call)
        if (call->endedAt)
            array.append(listedCall(*call));
    return QHttpServerResponse{array};
}

}  // namespace

void addCoachRoutes(QHttpServer& http, const CallBook& calls, const ProviderServer& provider,
                    const QString& feedVersion) {
    http.route(u"/health"_s, [] { return QHttpServerResponse{QJsonObject{{u"status"_s, u"ok"_s}}}; });
    http.route(u"/calls"_s, QHttpServerRequest::Method::Get,
               [&calls](const QHttpServerRequest& request) { return listCalls(calls, request); });
    http.route(u"/calls/<arg>"_s, QHttpServerRequest::Method::Get, [&calls](const QString& callId) {
        const auto found = std::ranges::find(calls.calls(), callId, &CallRecord::callId);
        return found == calls.calls().end() ? failure(Status::NotFound, u"no such call"_s)
                                            : QHttpServerResponse{wholeCall(*found)};
    });
    http.route(u"/sandbox/audio"_s, QHttpServerRequest::Method::Get,
               [&provider] { return QHttpServerResponse{audioFigures(provider)}; });
    http.route(u"/appcast.xml"_s, QHttpServerRequest::Method::Get, [feedVersion](const QHttpServerRequest& request) {
        // The page is where the feed is, under the name that the client knows.
        const QUrl page = request.url().resolved(QUrl{u"/download"_s});
        return QHttpServerResponse{"application/rss+xml", updateFeed(feedVersion, page.toString(QUrl::FullyEncoded))};
    });
    http.route(u"/download"_s, QHttpServerRequest::Method::Get,
               [feedVersion] { return QHttpServerResponse{"text/html; charset=utf-8", downloadPage(feedVersion)}; });
}

}  // namespace corvellan::sandbox
