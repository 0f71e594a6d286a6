#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Base/Clock.h"
#include "Platform/Linux/PulseAudioInputs.h"
#include "Platform/SpeechSynthesizer.h"
#include "Support/PrivatePulse.h"
#include "Support/Signals.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

/// What an input heard, block by block: when, and how loud.
class Loudness {
public:
    static constexpr float audible = 0.01F;

    AudioInputSink sink() {
        return {.onBuffer =
                    [this](std::span<const float> samples, AudioFormat) {
                        const std::scoped_lock lock{m_mutex};
                        m_blocks.push_back({std::chrono::steady_clock::now(), peak(samples)});
                    },
                .onInterrupted = [](const Error&) {},
                .onReopened = [] {}};
    }

    [[nodiscard]] std::size_t count() const {
        const std::scoped_lock lock{m_mutex};
        return m_blocks.size();
    }
    [[nodiscard]] float loudest() const {
        const std::scoped_lock lock{m_mutex};
        float highest = 0;
        for (const Block& block : m_blocks)
            highest = std::max(highest, block.peak);
        return highest;
    }
    [[nodiscard]] bool wasAudible() const { return loudest() > audible; }
    /// When something was heard first, and last.
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> firstAudible() const {
        const std::scoped_lock lock{m_mutex};
        for (const Block& block : m_blocks)
            if (block.peak > audible)
                return block.time;
        return std::nullopt;
    }
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> lastAudible() const {
        const std::scoped_lock lock{m_mutex};
        std::optional<std::chrono::steady_clock::time_point> last;
        for (const Block& block : m_blocks)
            if (block.peak > audible)
                last = block.time;
        return last;
    }
    void clear() {
        const std::scoped_lock lock{m_mutex};
        m_blocks.clear();
    }

private:
    struct Block {
        std::chrono::steady_clock::time_point time;
        float peak = 0;
    };
    mutable std::mutex m_mutex;
    std::vector<Block> m_blocks;
};

/// A sound server of its own, and ears at its output.
class SpeechFixture : public testing::Test {
protected:
    /// Listens to `kind`; data flow when it returns.
    std::unique_ptr<AudioInput> listen(PulseAudioInputs& inputs, AudioInputKind kind, Loudness& loudness) const {
        auto opened = complete(inputs.open(kind, {}));
        if (!opened)
            throw std::runtime_error(opened.error().errorDescription().toStdString());
        opened->input->start(loudness.sink());
        if (!spinUntil([&] { return loudness.count() > 5; }))
            throw std::runtime_error("nothing is heard");
        return std::move(opened->input);
    }
    std::unique_ptr<AudioInput> hearOutput() { return listen(ears, AudioInputKind::systemOutput, heard); }

    /// So many blocks more were heard: sound that was on its way has arrived.
    static bool waitForBlocks(const Loudness& loudness, std::size_t blocks = 40) {
        const auto enough = loudness.count() + blocks;
        return spinUntil([&] { return loudness.count() >= enough; });
    }

    /// Sets the call-back and reads the voices, as the service does first.
    SpeechSynthesizer::Voices prepare(SpeechSynthesizer& synthesizer) {
        synthesizer.setOnUtteranceEnded([this] { ++ended; });
        std::mutex mutex;
        std::optional<SpeechSynthesizer::Voices> voices;
        synthesizer.readVoices([&](SpeechSynthesizer::Voices read) {
            const std::scoped_lock lock{mutex};
            voices = std::move(read);
        });
        const bool isRead = spinUntil(
            [&] {
                const std::scoped_lock lock{mutex};
                return voices.has_value();
            },
            std::chrono::seconds{30});
        if (!isRead)
            throw std::runtime_error("the voices were not read");
        return *voices;
    }

    [[nodiscard]] OnSpeechFailure keepFailure() {
        return [this](SpeechFailure failure) {
            const std::scoped_lock lock{m_mutex};
            m_failures.push_back(failure);
        };
    }
    [[nodiscard]] std::vector<SpeechFailure> failures() const {
        const std::scoped_lock lock{m_mutex};
        return m_failures;
    }

    bool waitForEnds(int count) {
        return spinUntil([&] { return ended >= count; }, std::chrono::seconds{30});
    }

    // What holds for every engine.

    /// Hands over two utterances that take their time; returns while the first is heard.
    void speakTwoLongOnes(SpeechSynthesizer& synthesizer, const SpeechUtterance& utterance) {
        synthesizer.speak(utterance);
        synthesizer.speak(utterance);
        ASSERT_TRUE(spinUntil([&] { return heard.wasAudible(); }));
    }

    /// The two are cancelled, each once, and nothing more of them is heard.
    void expectSilenceSoonAfter(std::chrono::steady_clock::time_point stop) {
        ASSERT_TRUE(waitForEnds(2));
        ASSERT_TRUE(waitForBlocks(heard, 100));
        const auto after = *heard.lastAudible() - stop;
        EXPECT_LT(after, std::chrono::milliseconds{500});
        EXPECT_EQ(ended, 2) << "each once";
        tell("silent", after);
    }

    /// It can speak again.
    void expectToBeHeard(SpeechSynthesizer& synthesizer, const SpeechUtterance& utterance) {
        const int before = ended;
        heard.clear();
        synthesizer.speak(utterance);
        EXPECT_TRUE(waitForEnds(before + 1));
        EXPECT_TRUE(heard.wasAudible());
    }

    /// A figure for whoever reads the test's output.
    static void tell(const char* what, std::chrono::steady_clock::duration after) {
        RecordProperty(std::string{what} + "_after_milliseconds", std::to_string(milliseconds(after)));
        std::printf("%s after %.0f ms\n", what, milliseconds(after));
    }

    static double milliseconds(std::chrono::steady_clock::duration duration) {
        return std::chrono::duration<double, std::milli>(duration).count();
    }

    SystemClock clock;
    OwnSpeech ownSpeech;
    /// These ears hear the program's own speech too.
    OwnSpeech nobody;
    PulseAudioInputs ears{clock, nobody};
    Loudness heard;
    std::atomic<int> ended = 0;

private:
    mutable std::mutex m_mutex;
    std::vector<SpeechFailure> m_failures;
};

}  // namespace corvellan::test
