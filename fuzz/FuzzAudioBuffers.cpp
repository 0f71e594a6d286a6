#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "CorvellanAudio/Level.h"
#include "CorvellanAudio/MicResampler.h"
#include "CorvellanAudio/Pcm16.h"
#include "CorvellanAudio/SampleRing.h"

using namespace corvellan;

// What a broken device may deliver: two bytes of rate, one of channels, one of the buffers' length, then floats of any
// bits.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t header = 4;
    if (size < header)
        return 0;
    const double rate = data[0] * 256.0 + data[1];
    const int channels = static_cast<std::int8_t>(data[2]);
    const std::size_t length = data[3] + std::size_t{1};
    std::vector<float> samples((size - header) / sizeof(float));
    if (!samples.empty())
        std::memcpy(samples.data(), data + header, samples.size() * sizeof(float));

    const auto resampler = MicResampler::create(rate, channels);
    SampleRing ring;
    std::vector<float> mono;
    std::vector<float> read(length);
    std::vector<char> bytes;
    for (std::span<const float> rest = samples; !rest.empty(); rest = rest.subspan(std::min(length, rest.size()))) {
        const auto buffer = rest.first(std::min(length, rest.size()));
        if (firstChannelRMS(buffer, channels) < 0 || computeRMS(buffer) < 0)
            std::abort();
        ring.write(buffer, channels, mono);
        // What was just written is there to read, NaN left out.
        if (ring.read(read) != std::min(mono.size(), read.size()))
            std::abort();
        for (const float sample : mono)
            if (std::isnan(sample))
                std::abort();
        bytes.resize(2 * resampledCount(mono.size(), rate, 24'000));
        resampleToPCM16(mono, rate, 24'000, bytes);
        if (resampler) {
            const auto output = resampler->process(buffer);
            const std::size_t frames = buffer.size() / static_cast<std::size_t>(channels);
            // Beyond the capacity only what waited longest.
            if (output.size() > outputCapacity(rate, frames) + 65'536)
                std::abort();
        }
    }
    return 0;
}
