#pragma once

#include <optional>
#include <QCoroTask>
#include <QString>
#include <variant>

#include "AudioChunk.h"
#include "Base/AsyncStream.h"

namespace corvellan {

/// What a transcription client delivers.
struct SttEvent {
    struct Delta {  ///< A partial piece of the current utterance.
        QString text;
        bool operator==(const Delta&) const = default;
    };
    struct Final {  ///< A finished utterance.
        QString text;
        bool operator==(const Final&) const = default;
    };
    struct Failure {  ///< A message that the session shows or logs.
        QString message;
        bool operator==(const Failure&) const = default;
    };
    std::variant<Delta, Final, Failure> value;

    bool operator==(const SttEvent&) const = default;
};

/// Turns one side's captured speech into text over one streaming connection. Reusable: connect
/// again after disconnect.
///
/// Callable from any thread that has an executor; work runs on the service's own executor and
/// resumes the caller on the caller's. Order of calls: `connect`, `events`, any number of
/// `sendAudio`, `disconnect`.
class SttServiceProtocol {
public:
    virtual ~SttServiceProtocol() = default;

    /// Opens the socket; returns when the session update was sent or has failed. Never fails itself:
    /// a dead connection shows as a failure event.
    ///
    /// \param realtimeUrl absent means the provider's default address.
    virtual QCoro::Task<void> connect(QString ephemeralToken, std::optional<QString> realtimeUrl) = 0;

    /// Takes one chunk. Dropped when not connected.
    virtual QCoro::Task<void> sendAudio(AudioChunk chunk) = 0;

    /// A new stream of events; an older one receives nothing further and is not ended.
    [[nodiscard]] virtual AsyncStream<SttEvent> events() = 0;

    /// Sends what is pending, closes with 1000, ends the event stream. Harmless when idle. What is
    /// pending has a second to leave.
    virtual QCoro::Task<void> disconnect() = 0;
};

}  // namespace corvellan
