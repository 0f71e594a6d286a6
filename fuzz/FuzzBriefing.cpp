#include <cstddef>
#include <cstdint>

#include "Models/Briefing.h"
#include "RoundTrip.h"

using namespace corvellan;

namespace {

template <typename Record>
void check(QByteArrayView bytes) {
    const auto decoded = Record::decode(bytes);
    if (!decoded) {
        fuzz::expectSentence(decoded.error());
        return;
    }
    // A number that was no number is written as a null, which reads as absent; from there on nothing changes.
    const auto written = decoded->encode();
    const auto settled = Record::decode(written);
    if (!settled)
        fuzz::fail("what was encoded does not decode", written);
    fuzz::expectRoundTrip(*settled, [](const Record& value) { return value.encode(); }, Record::decode);
}

template <typename T>
void expectTotal(const Decoded<T>& decoded) {
    if (!decoded)
        fuzz::expectSentence(decoded.error());
}

}  // namespace

/// Every record of the back-end, and what is shown of a meeting's times.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    check<ResolvedCompany>(bytes);
    check<CalendarMeeting>(bytes);
    check<SalesBrief>(bytes);
    check<HandoffResponse>(bytes);
    check<TimelineResponse>(bytes);
    check<ScenarioItem>(bytes);
    check<ScenariosResponse>(bytes);
    expectTotal(decodeMatches(bytes));
    expectTotal(decodeEvents(bytes));
    if (const auto meeting = CalendarMeeting::decode(bytes)) {
        const auto range = meeting->timeRange({"en_US", QStringLiteral("Europe/Berlin")});
        if (!meeting->startDate() && !range.startsWith(meeting->start))
            fuzz::fail("a start that is no date is not shown as it stands", meeting->start.toUtf8());
    }
    return 0;
}
