#include "MicResampler.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>

#include "Pcm16.h"

namespace corvellan {

namespace {

constexpr double outputRateHertz = 24'000.0;
constexpr double highestRateHertz = 768'000.0;
constexpr int mostChannels = 64;
// Twenty times full scale: louder is noise from a broken device, and would overflow in the filter.
constexpr float loudest = 20.0F;

struct Release {
    void operator()(soxr_t handle) const { soxr_delete(handle); }
};

}  // namespace

struct MicResampler::Converter {
    std::unique_ptr<std::remove_pointer_t<soxr_t>, Release> handle;
};

std::unique_ptr<MicResampler> MicResampler::create(double fromRate, int channels) {
    if (!(fromRate >= 1.0) || !(fromRate <= highestRateHertz) || channels < 1 || channels > mostChannels)
        return nullptr;
    auto format = soxr_io_spec(SOXR_FLOAT32_I, SOXR_INT16_I);
    // Dither would make silence noisy.
    format.flags |= SOXR_NO_DITHER;
    const auto quality = soxr_quality_spec(SOXR_HQ, 0);
    const auto runtime = soxr_runtime_spec(1);
    soxr_error_t error = nullptr;
    auto converter = std::make_unique<Converter>();
    converter->handle.reset(soxr_create(fromRate, outputRateHertz, 1, &error, &format, &quality, &runtime));
    if (error || !converter->handle)
        return nullptr;
    return std::unique_ptr<MicResampler>{new MicResampler{std::move(converter), fromRate, channels}};
}

MicResampler::MicResampler(std::unique_ptr<Converter> converter, double fromRate, int channels)
    : m_converter(std::move(converter)),
      m_fromRate(fromRate),
      m_channels(static_cast<std::size_t>(channels)) {}

MicResampler::~MicResampler() = default;

std::span<const std::int16_t> MicResampler::process(std::span<const float> interleaved) {
    const std::size_t frames = interleaved.size() / m_channels;
    if (frames == 0)
        return {};

    m_mono.resize(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        float sum = 0.0F;
        for (const float sample : interleaved.subspan(frame * m_channels, m_channels))
            sum += std::isfinite(sample) ? sample : 0.0F;
        m_mono[frame] = std::clamp(sum / static_cast<float>(m_channels), -loudest, loudest);
    }

    m_output.erase(m_output.begin(), m_output.begin() + static_cast<std::ptrdiff_t>(m_handedOut));
    m_handedOut = 0;
    const std::size_t waiting = m_output.size();
    if (!convert(frames)) {
        m_output.resize(waiting);
        return {};
    }

    // The capacity is truncated, so a fraction of a sample stays behind with every buffer. Without the
    // way out at 10 ms that would grow into seconds over a long call.
    const std::size_t most = outputCapacity(m_fromRate, frames) + (waiting >= mostWaitingSamples ? waiting : 0);
    m_handedOut = std::min(m_output.size(), most);
    return std::span{m_output}.first(m_handedOut);
}

bool MicResampler::convert(std::size_t frames) {
    constexpr std::size_t spareSamples = 64;
    std::size_t taken = 0;
    while (true) {
        const std::size_t before = m_output.size();
        const std::size_t room = outputCapacity(m_fromRate, frames - taken) + spareSamples;
        m_output.resize(before + room);
        std::size_t consumed = 0;
        std::size_t produced = 0;
        const auto error = soxr_process(m_converter->handle.get(), m_mono.data() + taken, frames - taken, &consumed,
                                        m_output.data() + before, room, &produced);
        m_output.resize(before + produced);
        if (error)
            return false;
        taken += consumed;
        if ((taken == frames && produced < room) || (consumed == 0 && produced == 0))
            return true;
    }
}

}  // namespace corvellan
