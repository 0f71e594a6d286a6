#pragma once

namespace corvellan {

/// What the system does to the microphone's sound before programs get it. A platform may come to know more
/// values than these.
enum class ActiveMicrophoneMode { standard = 0, wideSpectrum = 1, voiceIsolation = 2 };

/// The system's microphone modes. May wait for the system up to 2 seconds; any thread but an audio one.
class MicrophoneModes {
public:
    virtual ~MicrophoneModes() = default;

    [[nodiscard]] virtual ActiveMicrophoneMode activeMode() = 0;
    /// Opens the system's own choice of modes, or what comes closest. Main thread.
    virtual void showPicker() = 0;
};

}  // namespace corvellan
