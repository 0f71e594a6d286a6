#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "CorvellanAudio/MicMode.h"

using namespace corvellan;

// Any bytes are a result or an error, and a result is the same after it was written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto result = decodeMicModeResult({data, static_cast<qsizetype>(size)});
    if (!result) {
        if (!result.error().as<MicModeDecodingError>())
            std::abort();
        return 0;
    }
    const QByteArray written = encode(*result);
    const auto again = decodeMicModeResult(written);
    const bool isSame = again && *again == *result;
    if (!isSame && written.size() <= largestMicModeBytes)
        std::abort();
    return 0;
}
