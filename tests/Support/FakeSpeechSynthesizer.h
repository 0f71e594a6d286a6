#pragma once

#include <optional>
#include <QStringList>
#include <utility>
#include <vector>

#include "Platform/SpeechSynthesizer.h"

namespace corvellan::test {

/// A synthesiser whose utterances end when the test says so. Tells on whatever thread it is asked to.
class FakeSpeechSynthesizer final : public SpeechSynthesizer {
public:
    void setOnUtteranceEnded(std::function<void()> callback) override { m_onUtteranceEnded = std::move(callback); }

    void readVoices(std::function<void(Voices)> onRead) override {
        ++readings;
        m_onRead = std::move(onRead);
        if (answersAtOnce)
            answer();
    }

    void speak(SpeechUtterance utterance) override {
        texts.append(utterance.text);
        utterances.push_back(std::move(utterance));
        if (onSpeak)
            onSpeak();
    }

    void stopSpeaking() override { ++stops; }

    void answer() {
        if (const auto onRead = std::exchange(m_onRead, nullptr))
            onRead(voices);
    }

    /// An utterance was spoken to its end, or cancelled: both are told alike.
    void endUtterance() const { m_onUtteranceEnded(); }

    Voices voices;
    bool answersAtOnce = true;
    std::function<void()> onSpeak;

    int readings = 0;
    int stops = 0;
    QStringList texts;
    std::vector<SpeechUtterance> utterances;

private:
    std::function<void()> m_onUtteranceEnded;
    std::function<void(Voices)> m_onRead;
};

}  // namespace corvellan::test
