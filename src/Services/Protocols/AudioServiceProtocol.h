#pragma once

#include <expected>
#include <QCoroTask>

#include "AudioChunk.h"
#include "Base/AsyncStream.h"
#include "Base/Error.h"

namespace corvellan {

/// The user's microphone. Work runs on the service's own executor; callers are resumed on theirs.
class AudioServiceProtocol {
public:
    virtual ~AudioServiceProtocol() = default;

    /// The level of the last buffer as RMS from 0 to 1; 0 when idle.
    virtual QCoro::Task<float> audioLevel() = 0;
    /// Whether the reader is to hold audio back. Capture itself goes on.
    virtual QCoro::Task<bool> isMuted() = 0;
    /// Stores the flag; true also sets the level to 0 until the next buffer.
    virtual QCoro::Task<void> setMuted(bool muted) = 0;
    /// Sets the level to 0 until the next buffer.
    virtual QCoro::Task<void> clearAudioLevel() = 0;
    /// Starts capturing the default source. The stream ends with `stopMic` alone. Fails with
    /// `AudioError` or the sound server's error.
    virtual QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> startMic() = 0;
    /// Ends capture and the stream. Harmless when idle.
    virtual QCoro::Task<void> stopMic() = 0;
};

/// What the computer plays: the other side of the call. Work runs on the service's own executor.
class SystemAudioServiceProtocol {
public:
    virtual ~SystemAudioServiceProtocol() = default;

    /// Starts capturing the default output. The stream does not end with `stop`: a reader that is
    /// cancelled ends it, and that stops the capture.
    virtual QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> start() = 0;
    /// Harmless when idle.
    virtual QCoro::Task<void> stop() = 0;
    /// The level of the last buffer as RMS from 0 to 1; 0 when idle.
    virtual QCoro::Task<float> audioLevel() = 0;
};

}  // namespace corvellan
