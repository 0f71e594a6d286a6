#include <cstddef>
#include <cstdint>

#include "RoundTrip.h"
#include "Sandbox/StateFiles.h"

using namespace corvellan;
using namespace corvellan::sandbox;

namespace {

/// What is accepted is written the same again, however often.
template <typename Decode, typename Encode>
void tryOne(const QByteArray& bytes, Decode decode, Encode encode) {
    const auto state = decode(bytes);
    if (!state) {
        if (state.error().isEmpty())
            fuzz::fail("an error without a sentence", bytes);
        return;
    }
    const QByteArray written = encode(*state);
    const auto again = decode(written);
    if (!again)
        fuzz::fail("what was encoded does not decode", written);
    if (encode(*again) != written)
        fuzz::fail("the same state is encoded in two ways", written);
}

}  // namespace

/// The files of the sandbox's state: whatever a disk makes of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    tryOne(bytes, decodeAccounts, encodeAccounts);
    tryOne(bytes, decodeCall, encodeCall);
    tryOne(bytes, decodeSensor, encodeSensor);
    return 0;
}
