#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <QCoroTask>
#include <QString>
#include <span>
#include <stop_token>
#include <utility>

#include "Base/Error.h"

namespace corvellan {

/// What an input delivers: interleaved 32-bit floats, full scale from -1 to 1.
struct AudioFormat {
    std::uint32_t sampleRateHertz = 0;
    int channels = 0;

    bool operator==(const AudioFormat&) const = default;
};

/// Why sound can't be had. `message` is a sentence for the user.
struct AudioInputError {
    enum class Kind {
        noServer,  ///< Nothing answers that could give sound.
        noDevice,  ///< There is no microphone, or no output to listen to.
        failed,    ///< The device is there and can't be recorded, or stopped.
    };

    Kind kind = Kind::failed;
    QString message;

    [[nodiscard]] QString errorDescription() const { return message; }
};

/// How many frames of the microphone are asked for at once: a wish that the platform may not grant.
inline constexpr std::uint32_t microphoneTapFrames = 9600;

/// Who receives an input's sound. All members are called on the input's own audio thread, one at a
/// time: they must not wait, and must not destroy the input.
struct AudioInputSink {
    /// One buffer of whole frames, valid during the call. Its length is the device's affair. The
    /// microphone's format may differ from the buffer before, when another device was taken.
    std::function<void(std::span<const float> samples, AudioFormat format)> onBuffer;
    /// Device or sound server are lost. Nothing more comes until the input has found another by itself.
    std::function<void(const Error& reason)> onInterrupted;
    /// Another device was taken, or a lost one found again: a changed default, a returned server.
    std::function<void()> onReopened;
};

/// A device that is open for recording. It follows the user's default device and a sound server that
/// comes back for as long as it lives. Destroying it ends it: no call to the sink is under way or
/// comes after that. Not from the sink.
class AudioInput {
public:
    virtual ~AudioInput() = default;

    /// The device's own format as it was opened.
    [[nodiscard]] virtual AudioFormat format() const = 0;

    /// Begins delivery. Once.
    virtual void start(AudioInputSink sink) = 0;
};

enum class AudioInputKind {
    /// The user's default microphone, in the device's own format from buffer to buffer.
    microphone,
    /// What the default output plays, without the program's own speech (`OwnSpeech`), in exact
    /// blocks of 20 ms. The sample rate stays that of the first device; the channels may change.
    systemOutput,
};

/// The computer's sound, as far as it can be recorded.
class AudioInputs {
public:
    /// Never null. A struct, since a task can't yield an `expected` of what null converts to.
    struct Open {
        std::unique_ptr<AudioInput> input;
    };
    using Opened = std::expected<Open, Error>;

    virtual ~AudioInputs() = default;

    /// Opens a default device; nothing is delivered before `AudioInput::start`. Resumes the caller on
    /// the caller's executor, after 2 seconds at the latest. Fails with `AudioInputError`, or with
    /// `Error::cancelled()` when `stop` was requested.
    virtual QCoro::Task<Opened> open(AudioInputKind kind, std::stop_token stop) = 0;
};

}  // namespace corvellan
