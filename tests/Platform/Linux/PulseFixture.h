#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <vector>

#include "Base/Clock.h"
#include "Platform/Linux/PulseAudioInputs.h"
#include "Support/PrivatePulse.h"
#include "Support/Signals.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

/// Keeps what an input delivers, as mono.
class Recording {
public:
    AudioInputSink sink() {
        return {
            .onBuffer =
                [this](std::span<const float> samples, AudioFormat format) {
                    const std::scoped_lock lock{m_mutex};
                    const auto channels = static_cast<std::size_t>(format.channels);
                    for (std::size_t i = 0; i + channels <= samples.size(); i += channels) {
                        float sum = 0;
                        for (std::size_t c = 0; c < channels; ++c)
                            sum += samples[i + c];
                        m_mono.push_back(sum / static_cast<float>(channels));
                    }
                    m_lengths.push_back(samples.size() / channels);
                    if (m_formats.empty() || m_formats.back() != format)
                        m_formats.push_back(format);
                },
            .onInterrupted =
                [this](const Error& reason) {
                    const std::scoped_lock lock{m_mutex};
                    m_interruptions.push_back(reason.errorDescription());
                },
            .onReopened =
                [this] {
                    const std::scoped_lock lock{m_mutex};
                    ++m_reopenings;
                    // What another device gives is looked at by itself.
                    m_mono.clear();
                },
        };
    }

    [[nodiscard]] std::vector<float> mono() const { return locked(m_mono); }
    [[nodiscard]] std::vector<std::size_t> lengths() const { return locked(m_lengths); }
    /// Each change of format, the first one included.
    [[nodiscard]] std::vector<AudioFormat> formats() const { return locked(m_formats); }
    [[nodiscard]] std::vector<QString> interruptions() const { return locked(m_interruptions); }
    [[nodiscard]] int reopenings() const { return locked(m_reopenings); }
    void clear() {
        const std::scoped_lock lock{m_mutex};
        m_mono.clear();
    }

private:
    template <typename T>
    T locked(const T& value) const {
        const std::scoped_lock lock{m_mutex};
        return value;
    }

    mutable std::mutex m_mutex;
    std::vector<float> m_mono;
    std::vector<std::size_t> m_lengths;
    std::vector<AudioFormat> m_formats;
    std::vector<QString> m_interruptions;
    int m_reopenings = 0;
};

class PulseFixture : public testing::Test {
protected:
    std::expected<std::unique_ptr<AudioInput>, Error> open(AudioInputKind kind) {
        auto opened = complete(inputs.open(kind, {}));
        if (!opened)
            return std::unexpected(opened.error());
        return std::move(opened->input);
    }

    /// Opens and starts; throws when that fails.
    std::unique_ptr<AudioInput> record(AudioInputKind kind, Recording& recording) {
        auto input = open(kind);
        if (!input)
            throw std::runtime_error(input.error().errorDescription().toStdString());
        (*input)->start(recording.sink());
        return std::move(*input);
    }

    /// Plays a chirp into `device` and waits until all of it and a little more was recorded.
    static Finding playAndFind(PrivatePulse& pulse, const QString& device, Recording& recording, double rate) {
        // Data flow before anything is played: the start of the sound is not what is looked at.
        if (!spinUntil([&] { return recording.mono().size() > static_cast<std::size_t>(rate / 10); }))
            return {};
        recording.clear();
        const auto played = chirp(0.8, rate);
        const auto player = pulse.play(device, played, static_cast<int>(rate));
        if (!player->finish())
            return {};
        // The server holds back half a second at most.
        const auto enough = recording.mono().size() + static_cast<std::size_t>(rate / 2);
        if (!spinUntil([&] { return recording.mono().size() > enough; }))
            return {};
        return find(played, recording.mono());
    }

    SystemClock clock;
    OwnSpeech ownSpeech;
    PulseAudioInputs inputs{clock, ownSpeech};
};

}  // namespace corvellan::test
