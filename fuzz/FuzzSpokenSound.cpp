#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Platform/Linux/Speech/SpokenSound.h"

using namespace corvellan;

// Any bytes of an engine give samples between -1 and 1 at a rate that can be played, or none; in whatever
// pieces they come, they are the same ones.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    SpokenSound whole;
    whole.add(bytes);
    SpokenSound pieces;
    for (qsizetype at = 0; at < bytes.size(); ++at)
        pieces.add(bytes.sliced(at, 1));
    if (whole.isBroken() != pieces.isBroken() || whole.sampleRateHertz() != pieces.sampleRateHertz() ||
        whole.size() != pieces.size())
        std::abort();
    if (whole.size() > 0 && (!whole.sampleRateHertz() || *whole.sampleRateHertz() == 0))
        std::abort();
    while (whole.size() > 0) {
        const auto sample = whole.take(1);
        const auto same = pieces.take(1);
        if (sample[0] != same[0] || std::abs(sample[0]) > 1)
            std::abort();
    }
    return 0;
}
