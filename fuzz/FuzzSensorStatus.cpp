#include <cstddef>
#include <cstdint>

#include "Models/SensorStatus.h"
#include "RoundTrip.h"

using namespace corvellan;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    const auto status = SensorStatus::decode(bytes);
    if (!status) {
        fuzz::expectSentence(status.error());
        return 0;
    }
    if (!status->context)
        return 0;
    // What the poll lets through, the listener's socket would have let through as well.
    const ServerMsg message{*status->context};
    const auto again = ServerMsg::decode(message.encode().value());
    if (!again || *again != message)
        fuzz::fail("a context that no message can carry", bytes.toByteArray());
    return 0;
}
