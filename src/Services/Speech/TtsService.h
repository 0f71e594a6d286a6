#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <QString>

#include "Base/Executor.h"
#include "Base/Log.h"
#include "Platform/SpeechSynthesizer.h"
#include "SentenceCutter.h"
#include "Services/Protocols/TtsServiceProtocol.h"

namespace corvellan {

/// Speaks a reply sentence by sentence while it still arrives. Main thread; what the synthesiser tells
/// hops there first.
///
/// The voice is chosen once, at the first sentence. The synthesiser needs a moment to list its voices:
/// sentences wait for that in their order, and count as handed over.
class TtsService final : public TtsServiceProtocol {
public:
    /// \param main the main thread's, on which this lives.
    /// \param synthesizer outlives this, and tells nobody else.
    TtsService(Executor& main, SpeechSynthesizer& synthesizer);
    ~TtsService() override;
    TtsService(const TtsService&) = delete;
    TtsService& operator=(const TtsService&) = delete;

    void prepare() override;
    void feedToken(const QString& token) override;
    void flush() override;
    void stop() override;
    void setOnPlayingChanged(std::function<void(bool)> callback) override { m_onPlayingChanged = std::move(callback); }

    [[nodiscard]] bool isPlaying() const { return m_isPlaying; }
    /// Tokens that were received and not yet spoken.
    [[nodiscard]] const QString& buffer() const { return m_cutter.text(); }
    /// Utterances that were handed over and have not ended. Never negative.
    [[nodiscard]] int pendingCount() const { return m_pendingCount; }
    /// Absent before it was chosen, and where nothing speaks.
    [[nodiscard]] const std::optional<SpeechVoice>& preferredVoice() const { return m_preferredVoice; }

private:
    enum class Choice { notAsked, asked, made };

    void speakSentence(const QString& text);
    void handOver(const QString& text);
    void setPlaying(bool value);
    void utteranceEnded();
    void voicesRead(const SpeechSynthesizer::Voices& voices);
    [[nodiscard]] std::optional<SpeechVoice> choose(const SpeechSynthesizer::Voices& voices) const;

    /// A call-back for any thread, which calls `handler` on the main thread if this still lives then.
    template <typename... Values>
    [[nodiscard]] std::function<void(Values...)> onMain(void (TtsService::*handler)(const Values&...));

    Executor& m_main;
    SpeechSynthesizer& m_synthesizer;
    Logger m_logger{"TTS"};
    bool m_isPlaying = false;
    SentenceCutter m_cutter;
    int m_pendingCount = 0;
    std::function<void(bool)> m_onPlayingChanged;
    Choice m_choice = Choice::notAsked;
    std::optional<SpeechVoice> m_preferredVoice;
    /// Sentences that wait for the voice.
    std::deque<QString> m_waiting;
    /// Its end is this object's.
    std::shared_ptr<TtsService*> m_self = std::make_shared<TtsService*>(this);
};

}  // namespace corvellan
