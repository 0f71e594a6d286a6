#include "CoachRoutes.h"

#include <algorithm>
#include <limits>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrlQuery>

#include "Admission.h"
#include "BuyerBook.h"
#include "CallBook.h"
#include "EventLog.h"
#include "ProviderServer.h"
#include "RestAnswers.h"
#include "UpdatePages.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Method = QHttpServerRequest::Method;
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

/// A rating of a finished or running call, as the message of the same purpose has it.
std::optional<CallRecord::Feedback> feedbackIn(const QJsonObject& body) {
    constexpr qsizetype longestNote = 4000;
    constexpr auto lowest = qint64{std::numeric_limits<std::int16_t>::min()};
    constexpr auto highest = qint64{std::numeric_limits<std::int16_t>::max()};
    const auto rating = body.value(u"rating"_s).toInteger(lowest - 1);
    const auto note = body.value(u"note"_s);
    const bool isNote = note.isUndefined() || (note.isString() && note.toString().size() <= longestNote);
    if (rating < lowest || rating > highest || !isNote)
        return std::nullopt;
    return CallRecord::Feedback{.rating = static_cast<int>(rating),
                                .note = note.isString() ? std::optional{note.toString()} : std::nullopt,
                                .featureRequest = {}};
}

std::optional<CallOutcome> outcomeIn(const QJsonObject& body) {
    return callOutcome(body.value(u"outcome"_s).toString().toStdString());
}

/// Lets `change` alter the call that the path names.
template <typename Change>
QHttpServerResponse changeCall(const CoachRest& rest, const QString& callId, const QHttpServerRequest& request,
                               Change change) {
    if (auto refusal = rest.admission.refusal(request))
        return std::move(*refusal);
    auto* const call = rest.calls.find(callId);
    if (!call)
        return failure(Status::NotFound, u"no such call"_s);
    const auto body = jsonBody(request);
    if (!body)
        return badBody(body.error());
    return change(*call, *body);
}

QHttpServerResponse takeFeedback(const CoachRest& rest, CallRecord& call, const QJsonObject& body) {
    const auto feedback = feedbackIn(body);
    if (!feedback)
        return failure(Status::BadRequest, u"rating is a whole number of 16 bits, note a text of up to 4000"_s);
    rest.calls.addFeedback(call, *feedback);
    rest.log.event(u"rest"_s, u"feedback %1 on the call %2"_s.arg(feedback->rating).arg(call.callId));
    return jsonAnswer({{u"status"_s, u"ok"_s}});
}

QHttpServerResponse takeOutcome(const CoachRest& rest, CallRecord& call, const QJsonObject& body) {
    const auto outcome = outcomeIn(body);
    if (!outcome)
        return failure(Status::BadRequest, u"there is no such outcome"_s);
    rest.calls.setOutcome(call, *outcome);
    rest.log.event(u"rest"_s, u"outcome %1 of the call %2"_s.arg(tableText(rawValue(*outcome)), call.callId));
    return jsonAnswer({{u"status"_s, u"ok"_s}});
}

void addCallRoutes(QHttpServer& http, const CoachRest& rest) {
    http.route(u"/calls"_s, Method::Get, [rest](const QHttpServerRequest& request) {
        auto refusal = rest.admission.refusal(request);
        return refusal ? std::move(*refusal) : listCalls(rest.calls, request);
    });
    http.route(u"/calls/<arg>"_s, Method::Get, [rest](const QString& callId, const QHttpServerRequest& request) {
        if (auto refusal = rest.admission.refusal(request))
            return std::move(*refusal);
        const auto* const call = rest.calls.find(callId);
        return call ? jsonAnswer(wholeCall(*call)) : failure(Status::NotFound, u"no such call"_s);
    });
    http.route(u"/calls/<arg>/feedback"_s, Method::Post,
               [rest](const QString& callId, const QHttpServerRequest& request) {
                   return changeCall(rest, callId, request, [&](CallRecord& call, const QJsonObject& body) {
                       return takeFeedback(rest, call, body);
                   });
               });
    http.route(
        u"/calls/<arg>/outcome"_s, Method::Post, [rest](const QString& callId, const QHttpServerRequest& request) {
            return changeCall(rest, callId, request,
                              [&](CallRecord& call, const QJsonObject& body) { return takeOutcome(rest, call, body); });
        });
}

void addUpdateRoutes(QHttpServer& http, const QString& feedVersion) {
    http.route(u"/appcast.xml"_s, Method::Get, [feedVersion](const QHttpServerRequest& request) {
        // The page is where the feed is, under the name that the client knows.
        const QUrl page = request.url().resolved(QUrl{u"/download"_s});
        return QHttpServerResponse{"application/rss+xml", updateFeed(feedVersion, page.toString(QUrl::FullyEncoded))};
    });
    http.route(u"/download"_s, Method::Get,
               [feedVersion] { return QHttpServerResponse{"text/html; charset=utf-8", downloadPage(feedVersion)}; });
}

}  // namespace

void addCoachRoutes(QHttpServer& http, const CoachRest& rest) {
    http.route(u"/health"_s, [] { return QHttpServerResponse{QJsonObject{{u"status"_s, u"ok"_s}}}; });
    addCallRoutes(http, rest);
    http.route(u"/scenarios"_s, Method::Get, [rest](const QHttpServerRequest& request) {
        auto refusal = rest.admission.refusal(request);
        return refusal ? std::move(*refusal) : jsonAnswer(rest.buyers.scenarioList());
    });
    http.route(u"/sandbox/audio"_s, Method::Get, [rest] { return QHttpServerResponse{audioFigures(rest.provider)}; });
    addUpdateRoutes(http, rest.feedVersion);
}

}  // namespace corvellan::sandbox
