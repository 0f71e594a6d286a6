#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <QByteArray>
#include <span>
#include <variant>
#include <vector>

namespace corvellan::sandbox {

/// What a client asks of the turn detection. The defaults hold until it asks.
struct TurnDetection {
    double threshold = 0.5;  ///< 0 to 1: the higher, the louder speech has to be.
    std::chrono::milliseconds silence{500};

    bool operator==(const TurnDetection&) const = default;
};

/// One stretch of speech. Positions are samples from the start of the stream, exact to 10 ms.
struct Utterance {
    std::int64_t firstSample = 0;  ///< The first sample of speech.
    std::int64_t endSample = 0;    ///< The one behind the last sample of speech.
    QByteArray pcm;                ///< The speech with up to 200 ms before and behind it.
    int sampleRateHertz = 24'000;

    [[nodiscard]] double seconds() const { return static_cast<double>(endSample - firstSample) / sampleRateHertz; }
};

struct SpeechStarted {
    std::int64_t firstSample = 0;
};

using SpeechEvent = std::variant<SpeechStarted, Utterance>;

/// Finds utterances in a stream of mono PCM16 by its level. Time is the audio's own: silence is
/// counted in samples, never on a clock, so that the same bytes always give the same utterances.
///
/// A window of 10 ms is loud when it is above the level that the threshold stands for (-50 dBFS for
/// 0, -30 for 1) and clearly above the quietest moment of the last six seconds, so that a humming
/// room is not one endless utterance. Four loud windows among eight begin an utterance and keep
/// it going; a click does neither.
class UtteranceFinder {
public:
    explicit UtteranceFinder(TurnDetection detection = {}, int sampleRateHertz = 24'000);

    /// Takes effect at once, also within an utterance.
    void setTurnDetection(const TurnDetection& detection);

    /// Takes the next samples and tells what they completed, in order.
    [[nodiscard]] std::vector<SpeechEvent> feed(std::span<const std::int16_t> samples);

    /// Ends an utterance that is under way, as at the end of a file.
    [[nodiscard]] std::vector<SpeechEvent> finish();

    [[nodiscard]] bool isSpeaking() const { return m_isSpeaking; }
    /// Since the start of the utterance under way. 0 between utterances.
    [[nodiscard]] double secondsSpoken() const;
    [[nodiscard]] std::int64_t samplesFed() const { return m_windowEnd + m_windowFill; }

private:
    static constexpr int recentWindows = 8;
    static constexpr int floorBlocks = 12;

    void takeWindow(std::vector<SpeechEvent>& events);
    void follow(double rms);
    void end(std::vector<SpeechEvent>& events);

    int m_sampleRateHertz;
    int m_windowSamples;
    std::int64_t m_silenceSamples = 0;
    double m_baseLevel = 0;

    // The window being filled.
    double m_windowEnergy = 0;
    int m_windowFill = 0;
    std::int64_t m_windowEnd = 0;

    // The quietest window of each of the last half seconds.
    std::array<double, floorBlocks> m_floors{};
    int m_floorIndex = 0;
    int m_floorFill = 0;
    double m_floorMinimum = 1;
    double m_floor = 0;

    unsigned m_recentLoud = 0;  // One bit a window, the newest lowest.
    bool m_isSpeaking = false;
    std::int64_t m_firstSample = 0;
    std::int64_t m_lastLoudEnd = 0;

    QByteArray m_pcm;  // What was heard last; within an utterance from its start on.
};

}  // namespace corvellan::sandbox
