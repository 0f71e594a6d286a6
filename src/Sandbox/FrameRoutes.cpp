#include "FrameRoutes.h"

#include <algorithm>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>

#include "Admission.h"
#include "Base/Clock.h"
#include "CallBook.h"
#include "EventLog.h"
#include "FrameBook.h"
#include "RestAnswers.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Status = QHttpServerResponse::StatusCode;

/// Digits alone, of an unsigned number of 64 bits.
std::optional<std::uint64_t> frameHash(const QByteArray& text) {
    const bool isDecimal =
        !text.isEmpty() && std::ranges::all_of(text, [](char digit) { return digit >= '0' && digit <= '9'; });
    bool fits = false;
    const auto hash = text.toULongLong(&fits);
    return isDecimal && fits ? std::optional<std::uint64_t>{hash} : std::nullopt;
}

QHttpServerResponse takeFrame(FrameBook& frames, CallBook& calls, const Clock& clock, const EventLog& log,
                              const QString& sessionId, const QHttpServerRequest& request) {
    const auto* const call = calls.findSession(sessionId);
    if (!call)
        return failure(Status::NotFound, u"no such session"_s);
    const auto refuse = [&](Status status, const QString& why) {
        frames.refuse(sessionId);
        log.event(u"frames"_s, u"refused one (%1): %2"_s.arg(static_cast<int>(status)).arg(why));
        return failure(status, why);
    };
    if (request.value("content-type").trimmed().toLower() != "image/jpeg")
        return refuse(Status::UnsupportedMediaType, u"Content-Type is not image/jpeg"_s);
    const auto hash = frameHash(request.value("x-frame-hash").trimmed());
    if (!hash)
        return refuse(Status::BadRequest, u"X-Frame-Hash is no decimal number of 64 bits"_s);
    const QByteArray jpeg = request.body();
    if (jpeg.size() > FrameBook::longestFrame)
        return refuse(Status::PayloadTooLarge, u"the frame is longer than 8 MiB"_s);
    if (!jpeg.startsWith("\xff\xd8\xff"))
        return refuse(Status::BadRequest, u"the body is no JPEG"_s);
    log.event(u"frames"_s, u"%1 bytes, hash %2%3"_s.arg(jpeg.size())
                               .arg(*hash, 16, 16, QLatin1Char{'0'})
                               .arg(call->sharesScreen ? QString{} : u", though this session shares no screen"_s));
    frames.keep({.sessionId = sessionId, .hash = *hash, .jpeg = jpeg, .arrivedAt = clock.wallNow()});
    return QHttpServerResponse{Status::NoContent};
}

}  // namespace

void addFrameRoutes(QHttpServer& http, FrameBook& frames, CallBook& calls, const Admission& admission,
                    const Clock& clock, const EventLog& log) {
    using Method = QHttpServerRequest::Method;
    http.route(
        u"/session/<arg>/frame"_s, Method::Post,
        [&frames, &calls, &admission, &clock, &log](const QString& sessionId, const QHttpServerRequest& request) {
            auto refusal = admission.refusal(request);
            return refusal ? std::move(*refusal) : takeFrame(frames, calls, clock, log, sessionId, request);
        });
    http.route(u"/sandbox/frames"_s, Method::Get, [&frames] { return QHttpServerResponse{frames.figures()}; });
    http.route(u"/sandbox/frames/<arg>"_s, Method::Get, [&frames](const QString& sessionId) {
        const auto* const frame = frames.last(sessionId);
        return frame ? QHttpServerResponse{"image/jpeg", frame->jpeg}
                     : failure(Status::NotFound, u"no frame of such a session is kept"_s);
    });
}

}  // namespace corvellan::sandbox
