#include <cstddef>
#include <cstdint>

#include "RoundTrip.h"

using namespace corvellan;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    const auto message = ServerMsg::decode(bytes);
    if (message)
        fuzz::expectRoundTrip(
            *message, [](const ServerMsg& value) { return value.encode().value(); },
            [](const QByteArray& written) { return ServerMsg::decode(written); });
    else
        fuzz::expectSentence(message.error());
    return 0;
}
