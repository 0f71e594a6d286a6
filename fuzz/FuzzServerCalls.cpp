#include <cstddef>
#include <cstdint>

#include "Base/Uuid.h"
#include "Models/ServerCallRecord.h"
#include "RoundTrip.h"

using namespace corvellan;

/// The history's list of calls, down to the records that are made of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    const auto calls = decodeServerCalls(bytes);
    if (!calls) {
        fuzz::expectSentence(calls.error());
        return 0;
    }
    for (const auto& call : *calls) {
        const auto record = call.toSessionRecord();
        if (record.callId != call.callId() || parseUuid(*record.callId) != call.id ||
            record.callId->toLower() != *record.callId)
            fuzz::fail("a call id that does not name its call", record.callId->toUtf8());
        if (record.meddic() != call.meddic.toMeddicScore() || record.disc() != call.disc.toBuyerDisc())
            fuzz::fail("a record that reads as another call", bytes.toByteArray());
    }
    return 0;
}
