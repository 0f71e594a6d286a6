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
    if (written.size() <= largestMicModeBytes && decodeMicModeResult(written) != result)
        std::abort();
    return 0;
}
