#include <cstddef>
#include <cstdint>
#include <QJsonDocument>

#include "Models/SensorStatus.h"
#include "RoundTrip.h"
#include "Sandbox/CustomerBook.h"
#include "Sandbox/SensorBook.h"
#include "Sandbox/StateFiles.h"

using namespace corvellan;
using namespace corvellan::sandbox;

/// A report of the browser extension: whatever the coach takes, clients and the next run can read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto customers = CustomerBook::shipped();
    const QByteArray bytes{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    const auto report = SensorReport::decode(QJsonDocument::fromJson(bytes).object());
    if (!report) {
        if (report.error().isEmpty())
            fuzz::fail("an error without a sentence", bytes);
        return 0;
    }
    const auto again = SensorReport::decode(report->json());
    if (!again || again->json() != report->json())
        fuzz::fail("a report that reads as another one", bytes);

    SensorBook sensor;
    const auto message = sensor.take(*report, customers, {});
    if (message) {
        const auto sent = message->encode();
        if (!sent || ServerMsg::decode(*sent) != *message)
            fuzz::fail("a message that no client can read", bytes);
    }
    const auto status = SensorStatus::decode(QJsonDocument{sensor.status()}.toJson());
    if (!status || status->sensorConnected != sensor.state().isConnected || status->context != sensor.state().context)
        fuzz::fail("an answer that no client can read", bytes);
    const auto kept = decodeSensor(encodeSensor(sensor.state()));
    if (!kept || *kept != sensor.state())
        fuzz::fail("a state that does not come back", bytes);
    return 0;
}
