#pragma once

#include <atomic>

#include "DispatcherSynthesizer.h"
#include "EspeakSynthesizer.h"
#include "Platform/SpeechSynthesizer.h"

namespace corvellan {

/// The user's Speech Dispatcher where one is reached or can be started and has an English voice; else
/// espeak-ng. Where neither speaks, the failures tell. A daemon that fails later is left for espeak-ng.
class DesktopSpeech final : public SpeechSynthesizer {
public:
    /// \param onFailure told whenever an utterance can't be spoken by either; any thread.
    DesktopSpeech(Clock& clock, OwnSpeech& ownSpeech, OnSpeechFailure onFailure,
                  SpeechDaemon::Start start = SpeechDaemon::Start::ifMissing, std::string program = "espeak-ng");

    void setOnUtteranceEnded(std::function<void()> callback) override;
    void readVoices(std::function<void(Voices)> onRead) override;
    void speak(SpeechUtterance utterance) override;
    void stopSpeaking() override;

    [[nodiscard]] bool usesDispatcher() const { return m_usesDispatcher; }

private:
    std::atomic<bool> m_usesDispatcher = true;
    EspeakSynthesizer m_espeak;
    DispatcherSynthesizer m_dispatcher;
};

}  // namespace corvellan
