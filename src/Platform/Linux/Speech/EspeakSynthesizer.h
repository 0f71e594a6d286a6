#pragma once

#include <pulse/pulseaudio.h>

#include <deque>
#include <memory>
#include <vector>

#include "Base/Clock.h"
#include "ChildPipe.h"
#include "EspeakVoices.h"
#include "Platform/Linux/PulseLoop.h"
#include "Platform/OwnSpeech.h"
#include "Platform/SpeechSynthesizer.h"
#include "PulsePlayStream.h"
#include "SpokenSound.h"

namespace corvellan {

/// Speaks with the program `espeak-ng`, one run an utterance, and plays what it gives on the default
/// output by itself. Everything happens on the loop's thread or under its lock.
class EspeakSynthesizer final : public SpeechSynthesizer, private PulsePlayStream::Listener {
public:
    /// \param ownSpeech is told while something is heard.
    /// \param onFailure told whenever an utterance can't be spoken; on the loop's thread.
    /// \param program what is run; tests name others.
    EspeakSynthesizer(Clock& clock, OwnSpeech& ownSpeech, OnSpeechFailure onFailure, std::string program = "espeak-ng");
    ~EspeakSynthesizer() override;
    EspeakSynthesizer(const EspeakSynthesizer&) = delete;
    EspeakSynthesizer& operator=(const EspeakSynthesizer&) = delete;

    void setOnUtteranceEnded(std::function<void()> callback) override;
    void readVoices(std::function<void(Voices)> onRead) override;
    void speak(SpeechUtterance utterance) override;
    void stopSpeaking() override;

private:
    /// The utterance at hand.
    struct Speaking {
        SpeechUtterance utterance;
        /// Gone when it has given everything.
        std::unique_ptr<ChildPipe> engine;
        SpokenSound sound;
        std::unique_ptr<PulsePlayStream> stream;
        bool isHeard = false;
        bool isDraining = false;
    };

    void startLoop();
    void connect();
    void contextStateChanged();
    void dropContext();

    void listingReadable();
    void endListing();
    /// Those that are known, to all who asked. A reading that is still under way is given up: what it has brought is
    /// no better than a list that was read in its whole.
    void tellVoices();

    void startNext();
    void engineReadable();
    void supply();
    void finish();
    void fail(SpeechFailure failure);
    void dropSpeaking();
    void watchdogDue();
    [[nodiscard]] std::vector<std::string> commandFor(const SpeechUtterance& utterance) const;

    void streamHungry(PulsePlayStream& stream) override;
    void streamDrained(PulsePlayStream& stream) override;
    void streamFailed(PulsePlayStream& stream) override;

    Clock& m_clock;
    OwnSpeech& m_ownSpeech;
    const OnSpeechFailure m_onFailure;
    const std::string m_program;

    PulseLoop m_loop;
    bool m_isRunning = false;
    std::function<void()> m_onUtteranceEnded;
    pa_context* m_context = nullptr;

    /// The listing of the voices, while it is read.
    std::unique_ptr<ChildPipe> m_lister;
    QByteArray m_listing;
    std::vector<std::function<void(Voices)>> m_onRead;
    std::vector<EspeakVoice> m_voices;
    PulseTimer m_listingLimit;

    std::deque<SpeechUtterance> m_queue;
    std::unique_ptr<Speaking> m_speaking;
    PulseTimer m_watchdog;
};

}  // namespace corvellan
