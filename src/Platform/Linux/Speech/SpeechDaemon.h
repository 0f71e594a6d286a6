#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <QByteArray>
#include <vector>

#include "Platform/SpeechSynthesizer.h"

namespace corvellan {

/// One connection to the user's Speech Dispatcher. Its calls wait for the daemon: not on the main thread.
class SpeechDaemon {
public:
    enum class Event { begun, ended, cancelled };
    /// Told of each message, on a thread of the connection's own; it must only hand over.
    using OnEvent = std::function<void(std::size_t message, Event event)>;
    enum class Start { ifMissing, never };

    /// Where a daemon is reached, or started. Null without one, and with one that does not answer.
    [[nodiscard]] static std::unique_ptr<SpeechDaemon> open(Start start, OnEvent onEvent);
    ~SpeechDaemon();
    SpeechDaemon(const SpeechDaemon&) = delete;
    SpeechDaemon& operator=(const SpeechDaemon&) = delete;

    /// Those of the user's own output module that speak English, as `parseDaemonVoices` reads them; nothing when it
    /// has none, and when the daemon is lost.
    [[nodiscard]] std::vector<SpeechVoice> englishVoices();

    /// The message's number; empty when the daemon is lost.
    [[nodiscard]] std::optional<std::size_t> say(const SpeechUtterance& utterance);
    void cancel();

    /// The daemon has hung up. Waits for nothing.
    [[nodiscard]] bool isLost() const;
    /// Lets go of the daemon, so that a call that waits for it returns. Any thread.
    void hangUp();

private:
    /// The library's own.
    struct Connection;

    SpeechDaemon(std::unique_ptr<Connection> connection, OnEvent onEvent);

    /// The whole answer, empty when the daemon is lost.
    [[nodiscard]] QByteArray ask(const char* question);

    std::unique_ptr<Connection> m_connection;
    std::size_t m_client = 0;
    std::optional<SpeechVoice> m_voice;
};

}  // namespace corvellan
