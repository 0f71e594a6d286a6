#include "DispatcherSynthesizer.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <utility>

using namespace std::chrono_literals;

namespace corvellan {

namespace {

/// Thirteen thousand voices take the daemon half a second, and longer on a busy computer.
constexpr auto readingLimit = 12s;
/// How often it is looked whether the daemon is there still, while something is to be heard.
constexpr auto watchInterval = 250ms;
/// A message that has not ended after this is not heard: slow voices take less for a character, and the
/// daemon may be reading something else first.
constexpr auto patience = 15s;
constexpr auto patienceForCharacter = 250ms;
/// A daemon answers in milliseconds, whatever it speaks; one whose sound server hangs may never do.
constexpr auto answerLimit = 5s;

/// While it lives a daemon that does not answer in time is hung up on, so that the call that waits for it returns.
class AnswerLimit {
public:
    AnswerLimit(Clock& clock, SpeechDaemon& daemon, std::chrono::seconds limit = answerLimit)
        : m_clock(clock),
          m_call(std::make_shared<Call>(&daemon)),
          m_timer(clock.callAt(clock.now() + limit, [call = m_call] { call->hangUp(); })) {}
    ~AnswerLimit() {
        m_clock.cancel(m_timer);
        m_call->end();
    }
    AnswerLimit(const AnswerLimit&) = delete;
    AnswerLimit& operator=(const AnswerLimit&) = delete;

private:
    /// The timer may be running still when the call is over.
    class Call {
    public:
        explicit Call(SpeechDaemon* daemon) : m_daemon(daemon) {}

        void hangUp() {
            const std::scoped_lock lock{m_mutex};
            if (m_daemon)
                m_daemon->hangUp();
        }
        void end() {
            const std::scoped_lock lock{m_mutex};
            m_daemon = nullptr;
        }

    private:
        std::mutex m_mutex;
        SpeechDaemon* m_daemon;
    };

    Clock& m_clock;
    std::shared_ptr<Call> m_call;
    Clock::TimerId m_timer;
};

}  // namespace

DispatcherSynthesizer::DispatcherSynthesizer(Clock& clock, OwnSpeech& ownSpeech, OnSpeechFailure onFailure,
                                             SpeechDaemon::Start start)
    : m_clock(clock),
      m_ownSpeech(ownSpeech),
      m_onFailure(std::move(onFailure)),
      m_start(start) {
    m_thread.executor().post([this] {
        // A daemon that dies is told by what the calls return.
        sigset_t pipe;
        ::sigemptyset(&pipe);
        ::sigaddset(&pipe, SIGPIPE);
        ::pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
        m_watch = std::make_unique<QTimer>();
        m_watch->setInterval(watchInterval);
        QObject::connect(m_watch.get(), &QTimer::timeout, m_watch.get(), [this] { look(); });
    });
}

DispatcherSynthesizer::~DispatcherSynthesizer() {
    {
        const std::scoped_lock lock{m_daemonMutex};
        if (m_daemon)
            m_daemon->hangUp();
    }
    runAndWait(m_thread.executor(), [this] {
        m_watch.reset();
        m_onUtteranceEnded = nullptr;
        endAll();
        close();
    });
}

// What is asked for.

void DispatcherSynthesizer::readVoices(std::function<void(Voices)> onRead) {
    m_thread.executor().post([this, onRead = std::move(onRead)] {
        if (!m_voices)
            m_voices = readVoicesNow();
        onRead(*m_voices);
    });
}

void DispatcherSynthesizer::speak(SpeechUtterance utterance) {
    m_thread.executor().post([this, utterance = std::move(utterance)] { say(utterance); });
}

void DispatcherSynthesizer::stopSpeaking() {
    m_thread.executor().post([this] {
        if (m_messages.empty())
            return;
        cancel();
        endAll();
    });
}

// On the thread of its own.

bool DispatcherSynthesizer::open() {
    auto daemon = SpeechDaemon::open(
        m_start, [this, &home = m_thread.executor()](std::size_t message, SpeechDaemon::Event event) {
            home.post([this, message, event] { daemonTold(message, event); });
        });
    const std::scoped_lock lock{m_daemonMutex};
    m_daemon = std::move(daemon);
    return m_daemon != nullptr;
}

void DispatcherSynthesizer::close() {
    const std::scoped_lock lock{m_daemonMutex};
    m_daemon.reset();
}

SpeechSynthesizer::Voices DispatcherSynthesizer::readVoicesNow() {
    Voices voices;
    if (!m_daemon && !open())
        return voices;
    {
        const AnswerLimit limit{m_clock, *m_daemon, readingLimit};
        voices.all = m_daemon->englishVoices();
    }
    if (!voices.all.empty()) {
        voices.americanEnglish = SpeechVoice{.language = QStringLiteral("en-US")};
        voices.engine = QStringLiteral("Speech Dispatcher");
    }
    return voices;
}

void DispatcherSynthesizer::say(const SpeechUtterance& utterance) {
    if (m_daemon && m_daemon->isLost())
        close();
    std::optional<std::size_t> number;
    for (int attempt = 0; attempt < 2 && !number; ++attempt) {
        if (!m_daemon && !open())
            break;
        {
            const AnswerLimit limit{m_clock, *m_daemon};
            number = m_daemon->say(utterance);
        }
        if (!number)
            close();
    }
    if (!number) {
        m_onFailure(SpeechFailure::noEngine);
        endAll();
        if (m_onUtteranceEnded)
            m_onUtteranceEnded();
        return;
    }
    if (m_messages.empty()) {
        m_ownSpeech.begin();
        m_watch->start();
    }
    m_messages.push_back({.number = *number, .length = utterance.text.size()});
    if (m_messages.size() == 1)
        expect(m_messages.front());
}

void DispatcherSynthesizer::cancel() {
    if (!m_daemon)
        return;
    const AnswerLimit limit{m_clock, *m_daemon};
    m_daemon->cancel();
}

void DispatcherSynthesizer::expect(const Message& message) {
    m_deadline = m_clock.now() + patience + patienceForCharacter * message.length;
}

void DispatcherSynthesizer::daemonTold(std::size_t message, SpeechDaemon::Event event) {
    // What was stopped has been told already.
    const auto found = std::ranges::find(m_messages, message, &Message::number);
    if (found == m_messages.end())
        return;
    if (event == SpeechDaemon::Event::begun) {
        expect(*found);
        return;
    }
    m_messages.erase(found);
    if (m_messages.empty()) {
        m_watch->stop();
        m_ownSpeech.end(m_clock.now());
    } else {
        expect(m_messages.front());
    }
    if (m_onUtteranceEnded)
        m_onUtteranceEnded();
}

/// A daemon that dies tells nothing, and one without a sound server never ends.
void DispatcherSynthesizer::look() {
    const bool isLost = !m_daemon || m_daemon->isLost();
    if (!isLost && m_clock.now() < m_deadline)
        return;
    if (!isLost) {
        cancel();
        m_onFailure(SpeechFailure::noSound);
    }
    close();
    endAll();
}

void DispatcherSynthesizer::endAll() {
    if (m_watch)
        m_watch->stop();
    auto ended = std::exchange(m_messages, {}).size();
    if (ended > 0)
        m_ownSpeech.end(m_clock.now());
    for (; ended > 0 && m_onUtteranceEnded; --ended)
        m_onUtteranceEnded();
}

}  // namespace corvellan
