#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <QString>
#include <vector>

namespace corvellan {

/// How good a voice is, as far as its engine lets one tell. In rising order.
enum class VoiceQuality { standard = 1, enhanced = 2, premium = 3 };

/// One voice that can be asked for.
struct SpeechVoice {
    /// "en-US", "en-GB-scotland", "en": the region in capitals.
    QString language;
    VoiceQuality quality = VoiceQuality::standard;
    /// The engine's own name for it. Empty for the voice that the engine itself takes for the language.
    QString name;

    bool operator==(const SpeechVoice&) const = default;
};

/// One piece of text that is spoken as a whole.
struct SpeechUtterance {
    QString text;
    /// Absent: the system's default.
    std::optional<SpeechVoice> voice;
    /// As a share of the system's default rate and pitch.
    double rate = 1;
    double pitchMultiplier = 1;
    /// From 0 to 1.
    double volume = 1;
};

/// Why nothing is spoken.
enum class SpeechFailure {
    noEngine,  ///< No speech engine is installed, or none that works.
    noSound,   ///< There is no way to the loudspeaker.
};

/// Told whenever an utterance can't be spoken. Callable on any thread; it must only hand over.
using OnSpeechFailure = std::function<void(SpeechFailure)>;

/// Speaks through the computer's output, one utterance after another. Main thread, and no call waits;
/// its call-backs come on any thread, and none after its end.
class SpeechSynthesizer {
public:
    /// What there is to choose from, in the platform's order.
    struct Voices {
        std::vector<SpeechVoice> all;
        /// What speaks American English where nothing better was chosen; absent where nothing does.
        std::optional<SpeechVoice> americanEnglish;
        /// The engine's name for people; empty where nothing speaks.
        QString engine;

        /// The one that speaks. The language outranks the quality, and among equals the platform's order decides: a
        /// premium American voice, an enhanced one, a premium and an enhanced one of any other English, and then
        /// `americanEnglish`.
        [[nodiscard]] std::optional<SpeechVoice> preferred() const;
    };

    virtual ~SpeechSynthesizer() = default;

    /// Called once for each utterance that was handed over: spoken to its end, cancelled, or not
    /// speakable at all. To be set once, before the first `speak`.
    virtual void setOnUtteranceEnded(std::function<void()> callback) = 0;

    /// Answers once, within 20 seconds, with nothing where nothing speaks. The first call may take some
    /// seconds, and gets the engine ready.
    virtual void readVoices(std::function<void(Voices)> onRead) = 0;

    /// Queues an utterance behind those that were handed over before.
    virtual void speak(SpeechUtterance utterance) = 0;

    /// Silences speech at once and cancels everything that was handed over.
    virtual void stopSpeaking() = 0;
};

inline std::optional<SpeechVoice> SpeechSynthesizer::Voices::preferred() const {
    const auto first = [this](VoiceQuality quality, auto speaks) -> std::optional<SpeechVoice> {
        const auto found = std::ranges::find_if(
            all, [&](const SpeechVoice& voice) { return voice.quality == quality && speaks(voice.language); });
        return found == all.end() ? std::nullopt : std::optional{*found};
    };
    const auto american = [](const QString& language) { return language == u"en-US"; };
    const auto english = [](const QString& language) { return language.startsWith(u"en"); };
    for (const auto quality : {VoiceQuality::premium, VoiceQuality::enhanced})
        if (auto voice = first(quality, american))
            return voice;
    for (const auto quality : {VoiceQuality::premium, VoiceQuality::enhanced})
        if (auto voice = first(quality, english))
            return voice;
    return americanEnglish;
}

}  // namespace corvellan
