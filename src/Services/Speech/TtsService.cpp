#include "TtsService.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr auto volume = 0.8;

}  // namespace

template <typename... Values>
std::function<void(Values...)> TtsService::onMain(void (TtsService::*handler)(const Values&...)) {
    return [&main = m_main, weak = std::weak_ptr{m_self}, handler](Values... values) {
        main.post([weak, handler, ... values = std::move(values)] {
            if (const auto self = weak.lock())
                ((*self)->*handler)(values...);
        });
    };
}

TtsService::TtsService(Executor& main, SpeechSynthesizer& synthesizer) : m_main(main), m_synthesizer(synthesizer) {
    m_synthesizer.setOnUtteranceEnded(onMain(&TtsService::utteranceEnded));
}

TtsService::~TtsService() {
    m_self.reset();
    if (m_isPlaying)
        m_synthesizer.stopSpeaking();
}

void TtsService::prepare() {
    if (m_choice != Choice::notAsked)
        return;
    m_choice = Choice::asked;
    m_synthesizer.readVoices(onMain(&TtsService::voicesRead));
}

void TtsService::feedToken(const QString& token) {
    m_cutter.append(token);
    while (const auto sentence = m_cutter.takeSentence())
        speakSentence(*sentence);
}

void TtsService::flush() {
    if (const auto rest = m_cutter.takeRest())
        speakSentence(*rest);
}

void TtsService::stop() {
    m_synthesizer.stopSpeaking();
    m_waiting.clear();
    m_cutter.clear();
    m_pendingCount = 0;
    setPlaying(false);
}

void TtsService::speakSentence(const QString& text) {
    ++m_pendingCount;
    setPlaying(true);
    prepare();
    if (m_choice == Choice::made)
        handOver(text);
    else
        m_waiting.push_back(text);
}

void TtsService::handOver(const QString& text) {
    m_synthesizer.speak(
        {.text = text, .voice = m_preferredVoice, .rate = 1.0, .pitchMultiplier = 1.0, .volume = volume});
}

void TtsService::setPlaying(bool value) {
    if (m_isPlaying == value)
        return;
    m_isPlaying = value;
    if (m_onPlayingChanged)
        m_onPlayingChanged(value);
}

void TtsService::utteranceEnded() {
    const int left = m_pendingCount - 1;
    m_pendingCount = std::max(0, left);
    if (left < 1)
        setPlaying(false);
}

void TtsService::voicesRead(const SpeechSynthesizer::Voices& voices) {
    if (std::exchange(m_choice, Choice::made) == Choice::made)
        return;
    m_preferredVoice = choose(voices);
    for (const QString& text : std::exchange(m_waiting, {}))
        handOver(text);
}

std::optional<SpeechVoice> TtsService::choose(const SpeechSynthesizer::Voices& voices) const {
    auto voice = voices.preferred();
    if (!voice || voice->quality == VoiceQuality::standard) {
        m_logger.info(u"TTS voice: system default (no premium/enhanced voices installed)"_s);
        return voice;
    }
    const QString quality = voice->quality == VoiceQuality::premium ? u"premium"_s : u"enhanced"_s;
    if (voice->language == u"en-US")
        m_logger.info(u"TTS voice: %1 (%2)"_s.arg(voice->name, quality));
    else
        m_logger.info(u"TTS voice: %1 (%2, %3)"_s.arg(voice->name, quality, voice->language));
    return voice;
}

}  // namespace corvellan
