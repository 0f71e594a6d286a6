#include <benchmark/benchmark.h>
#include <samplerate.h>
#include <soxr.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numbers>
#include <type_traits>
#include <vector>

#include "CorvellanAudio/Level.h"
#include "CorvellanAudio/MicResampler.h"
#include "CorvellanAudio/Pcm16.h"
#include "CorvellanAudio/SampleRing.h"

namespace corvellan {

namespace {

constexpr double outputRateHertz = 24'000;
// As the sound server delivers: a microphone's tap, and a block of the system side.
constexpr std::size_t tapFrames = 9600;
constexpr std::size_t blocksPerSecond = 50;

/// One second of a voice's range, mono.
std::vector<float> second(std::size_t rate) {
    std::vector<float> samples(rate);
    for (std::size_t i = 0; i < rate; ++i) {
        const double time = static_cast<double>(i) / static_cast<double>(rate);
        samples[i] = static_cast<float>(0.3 * std::sin(2 * std::numbers::pi * 220 * time) +
                                        0.1 * std::sin(2 * std::numbers::pi * 1870 * time));
    }
    return samples;
}

/// Calls `onPiece` with one second in pieces; the last one may be shorter.
template <typename OnPiece>
void inPieces(std::span<const float> samples, std::size_t length, OnPiece onPiece) {
    for (; !samples.empty(); samples = samples.subspan(std::min(length, samples.size())))
        onPiece(samples.first(std::min(length, samples.size())));
}

void copyBytes(benchmark::State& state, std::size_t rate) {
    const auto samples = second(rate);
    std::vector<float> copy(samples.size());
    for (auto iteration : state) {
        std::memcpy(copy.data(), samples.data(), samples.size() * sizeof(float));
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
}

void withLibsamplerate(benchmark::State& state, std::size_t rate, std::size_t piece, int converter) {
    const auto samples = second(rate);
    int error = 0;
    const std::unique_ptr<SRC_STATE, decltype(&src_delete)> resampler{src_new(converter, 1, &error), &src_delete};
    std::vector<float> output(rate);
    std::vector<short> pcm(rate);
    for (auto iteration : state)
        inPieces(samples, piece, [&](std::span<const float> part) {
            SRC_DATA data{};
            data.data_in = part.data();
            data.input_frames = static_cast<long>(part.size());
            data.data_out = output.data();
            data.output_frames = static_cast<long>(output.size());
            data.src_ratio = outputRateHertz / static_cast<double>(rate);
            src_process(resampler.get(), &data);
            src_float_to_short_array(output.data(), pcm.data(), static_cast<int>(data.output_frames_gen));
            benchmark::DoNotOptimize(pcm.data());
        });
}

void withSoxrQuick(benchmark::State& state, std::size_t rate, std::size_t piece) {
    const auto samples = second(rate);
    auto format = soxr_io_spec(SOXR_FLOAT32_I, SOXR_INT16_I);
    format.flags |= SOXR_NO_DITHER;
    const auto quality = soxr_quality_spec(SOXR_QQ, 0);
    const std::unique_ptr<std::remove_pointer_t<soxr_t>, decltype(&soxr_delete)> resampler{
        soxr_create(static_cast<double>(rate), outputRateHertz, 1, nullptr, &format, &quality, nullptr), &soxr_delete};
    std::vector<std::int16_t> pcm(rate);
    for (auto iteration : state)
        inPieces(samples, piece, [&](std::span<const float> part) {
            std::size_t produced = 0;
            soxr_process(resampler.get(), part.data(), part.size(), nullptr, pcm.data(), pcm.size(), &produced);
            benchmark::DoNotOptimize(pcm.data());
        });
}

void systemSide(benchmark::State& state, std::size_t rate) {
    const auto samples = second(rate);
    std::vector<char> bytes;
    for (auto iteration : state)
        inPieces(samples, rate / blocksPerSecond, [&](std::span<const float> block) {
            bytes.resize(2 * resampledCount(block.size(), static_cast<double>(rate), outputRateHertz));
            resampleToPCM16(block, static_cast<double>(rate), outputRateHertz, bytes);
            benchmark::DoNotOptimize(bytes.data());
        });
}

void microphoneSide(benchmark::State& state, std::size_t rate) {
    const auto samples = second(rate);
    const auto resampler = MicResampler::create(static_cast<double>(rate), 1);
    for (auto iteration : state)
        inPieces(samples, tapFrames,
                 [&](std::span<const float> tap) { benchmark::DoNotOptimize(resampler->process(tap).data()); });
}

void level(benchmark::State& state) {
    const auto samples = second(48'000);
    for (auto iteration : state)
        inPieces(samples, 48'000 / blocksPerSecond,
                 [](std::span<const float> block) { benchmark::DoNotOptimize(computeRMS(block)); });
}

void ring(benchmark::State& state) {
    const auto samples = second(48'000);
    SampleRing ring;
    std::vector<float> mono;
    std::vector<float> read(48'000 / blocksPerSecond);
    for (auto iteration : state)
        inPieces(samples, read.size(), [&](std::span<const float> block) {
            ring.write(block, 1, mono);
            benchmark::DoNotOptimize(ring.read(read));
        });
}

constexpr std::size_t block48000 = 48'000 / blocksPerSecond;
constexpr std::size_t block44100 = 44'100 / blocksPerSecond;

BENCHMARK_CAPTURE(systemSide, 48000, 48'000)->Name("ResampleToPcm16/ours/48000");
BENCHMARK_CAPTURE(withLibsamplerate, linear, 48'000, block48000, SRC_LINEAR)
    ->Name("ResampleToPcm16/peer:libsamplerate linear/48000");
BENCHMARK_CAPTURE(withLibsamplerate, fastest, 48'000, block48000, SRC_SINC_FASTEST)
    ->Name("ResampleToPcm16/peer:libsamplerate sinc fastest/48000");
BENCHMARK_CAPTURE(withSoxrQuick, quick, 48'000, block48000)->Name("ResampleToPcm16/peer:soxr quick/48000");
BENCHMARK_CAPTURE(copyBytes, copy, 48'000)->Name("ResampleToPcm16/peer:memcpy of the input/48000");

BENCHMARK_CAPTURE(systemSide, 44100, 44'100)->Name("ResampleToPcm16/ours/44100");
BENCHMARK_CAPTURE(withLibsamplerate, linear44100, 44'100, block44100, SRC_LINEAR)
    ->Name("ResampleToPcm16/peer:libsamplerate linear/44100");
BENCHMARK_CAPTURE(withSoxrQuick, quick44100, 44'100, block44100)->Name("ResampleToPcm16/peer:soxr quick/44100");

BENCHMARK_CAPTURE(microphoneSide, 48000, 48'000)->Name("MicResampler/ours/48000");
BENCHMARK_CAPTURE(withLibsamplerate, micFastest, 48'000, tapFrames, SRC_SINC_FASTEST)
    ->Name("MicResampler/peer:libsamplerate sinc fastest/48000");
BENCHMARK_CAPTURE(withLibsamplerate, micLinear, 48'000, tapFrames, SRC_LINEAR)
    ->Name("MicResampler/peer:libsamplerate linear/48000");
BENCHMARK_CAPTURE(withSoxrQuick, micQuick, 48'000, tapFrames)->Name("MicResampler/peer:soxr quick/48000");
BENCHMARK_CAPTURE(copyBytes, micCopy, 48'000)->Name("MicResampler/peer:memcpy of the input/48000");

BENCHMARK_CAPTURE(microphoneSide, 44100, 44'100)->Name("MicResampler/ours/44100");
BENCHMARK_CAPTURE(withLibsamplerate, micFastest44100, 44'100, tapFrames, SRC_SINC_FASTEST)
    ->Name("MicResampler/peer:libsamplerate sinc fastest/44100");
BENCHMARK_CAPTURE(withSoxrQuick, micQuick44100, 44'100, tapFrames)->Name("MicResampler/peer:soxr quick/44100");

BENCHMARK(level)->Name("AudioLevel/ours/48000");
BENCHMARK_CAPTURE(copyBytes, levelCopy, 48'000)->Name("AudioLevel/peer:memcpy of the input/48000");
BENCHMARK(ring)->Name("SampleRing/ours/48000");
BENCHMARK_CAPTURE(copyBytes, ringCopy, 48'000)->Name("SampleRing/peer:memcpy of the input/48000");

}  // namespace

}  // namespace corvellan
