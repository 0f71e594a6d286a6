#include "SensorRoutes.h"

#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>

#include "Admission.h"
#include "Base/Clock.h"
#include "Base/Text.h"
#include "CustomerBook.h"
#include "EventLog.h"
#include "RestAnswers.h"
#include "SensorBook.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

void addSensorRoutes(QHttpServer& http, SensorBook& sensor, const CustomerBook& customers, TellListeners tell,
                     const Admission& admission, const Clock& clock, const EventLog& log) {
    using Method = QHttpServerRequest::Method;
    http.route(u"/ext/sensor"_s, Method::Get, [&sensor, &admission](const QHttpServerRequest& request) {
        auto refusal = admission.refusal(request);
        return refusal ? std::move(*refusal) : jsonAnswer(sensor.status());
    });
    http.route(
        u"/ext/sensor"_s, Method::Post,
        [&sensor, &customers, &admission, &clock, &log, tell = std::move(tell)](const QHttpServerRequest& request) {
            if (auto refusal = admission.refusal(request))
                return std::move(*refusal);
            const auto body = jsonBody(request);
            if (!body)
                return badBody(body.error());
            const auto report = SensorReport::decode(*body);
            if (!report)
                return failure(QHttpServerResponse::StatusCode::BadRequest, report.error());
            const auto message = sensor.take(*report, customers, clock.wallNow());
            const int listeners = message ? tell(*message) : 0;
            auto answer = sensor.status();
            log.event(u"extens."_s,
                      u"%1%2, %3 listening"_s.arg(
                          report->json().value(u"event"_s).toString(),
                          report->companyName ? u" at "_s + text::prefix(*report->companyName, 100) : QString{},
                          QString::number(listeners)));
            answer.insert(u"listeners"_s, listeners);
            return jsonAnswer(answer);
        });
}

}  // namespace corvellan::sandbox
