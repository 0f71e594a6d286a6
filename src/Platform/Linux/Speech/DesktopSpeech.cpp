#include "DesktopSpeech.h"

#include <utility>

namespace corvellan {

DesktopSpeech::DesktopSpeech(Clock& clock, OwnSpeech& ownSpeech, OnSpeechFailure onFailure, SpeechDaemon::Start start,
                             std::string program)
    : m_espeak(clock, ownSpeech, std::move(onFailure), std::move(program)),
      m_dispatcher(clock, ownSpeech, [this](SpeechFailure) { m_usesDispatcher = false; }, start) {}

void DesktopSpeech::setOnUtteranceEnded(std::function<void()> callback) {
    m_espeak.setOnUtteranceEnded(callback);
    m_dispatcher.setOnUtteranceEnded(std::move(callback));
}

void DesktopSpeech::readVoices(std::function<void(Voices)> onRead) {
    if (!m_usesDispatcher) {
        m_espeak.readVoices(std::move(onRead));
        return;
    }
    m_dispatcher.readVoices([this, onRead = std::move(onRead)](Voices voices) {
        if (voices.americanEnglish) {
            onRead(std::move(voices));
            return;
        }
        m_usesDispatcher = false;
        m_espeak.readVoices(onRead);
    });
}

void DesktopSpeech::speak(SpeechUtterance utterance) {
    if (m_usesDispatcher)
        m_dispatcher.speak(std::move(utterance));
    else
        m_espeak.speak(std::move(utterance));
}

void DesktopSpeech::stopSpeaking() {
    m_dispatcher.stopSpeaking();
    m_espeak.stopSpeaking();
}

}  // namespace corvellan
