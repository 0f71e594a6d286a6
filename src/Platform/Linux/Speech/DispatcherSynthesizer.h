#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <QTimer>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Platform/OwnSpeech.h"
#include "Platform/SpeechSynthesizer.h"
#include "SpeechDaemon.h"

namespace corvellan {

/// Speaks through the user's Speech Dispatcher, with the voices and the rate that the user has set there.
/// The daemon plays by itself. Everything that waits for it does so on a thread of this object's own.
class DispatcherSynthesizer final : public SpeechSynthesizer {
public:
    /// \param ownSpeech is told while something is heard.
    /// \param onFailure told when an utterance can't be spoken; any thread.
    DispatcherSynthesizer(Clock& clock, OwnSpeech& ownSpeech, OnSpeechFailure onFailure,
                          SpeechDaemon::Start start = SpeechDaemon::Start::ifMissing);
    ~DispatcherSynthesizer() override;
    DispatcherSynthesizer(const DispatcherSynthesizer&) = delete;
    DispatcherSynthesizer& operator=(const DispatcherSynthesizer&) = delete;

    void setOnUtteranceEnded(std::function<void()> callback) override { m_onUtteranceEnded = std::move(callback); }
    void readVoices(std::function<void(Voices)> onRead) override;
    void speak(SpeechUtterance utterance) override;
    void stopSpeaking() override;

private:
    /// What the daemon has and has not ended.
    struct Message {
        std::size_t number = 0;
        qsizetype length = 0;
    };

    // All of these on the thread of its own.
    bool open();
    void close();
    [[nodiscard]] Voices readVoicesNow();
    void say(const SpeechUtterance& utterance);
    void cancel();
    void daemonTold(std::size_t message, SpeechDaemon::Event event);
    void look();
    void endAll();
    void expect(const Message& message);

    Clock& m_clock;
    OwnSpeech& m_ownSpeech;
    const OnSpeechFailure m_onFailure;
    const SpeechDaemon::Start m_start;
    std::function<void()> m_onUtteranceEnded;

    /// Held while the connection changes, and by who hangs up at the end.
    std::mutex m_daemonMutex;
    std::unique_ptr<SpeechDaemon> m_daemon;
    std::optional<Voices> m_voices;
    std::deque<Message> m_messages;
    /// When the first message must have ended.
    MonotonicTime m_deadline{};
    std::unique_ptr<QTimer> m_watch;

    WorkerThread m_thread{"corvellan-voice"};
};

}  // namespace corvellan
