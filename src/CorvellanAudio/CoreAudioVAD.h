#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "Platform/VoiceActivity.h"

namespace corvellan {

/// Listens to the voice activity detection of the default input device itself, where the device has one.
///
/// Shared, since the system's queue may be inside a call while the owner lets go; destroying it disables it.
/// `enable` and `disable` belong to one thread at a time.
class CoreAudioVAD : public std::enable_shared_from_this<CoreAudioVAD> {
    /// Lets only `make` construct.
    struct Made {};

public:
    /// Finds the default input device. `devices` must outlive it.
    [[nodiscard]] static std::shared_ptr<CoreAudioVAD> make(VoiceActivityDevices& devices);

    CoreAudioVAD(Made, VoiceActivityDevices& devices);
    ~CoreAudioVAD();
    CoreAudioVAD(const CoreAudioVAD&) = delete;
    CoreAudioVAD& operator=(const CoreAudioVAD&) = delete;

    /// The default input device at construction; 0 if that is unknown.
    const std::uint32_t deviceID;

    /// Any thread, at the caller's own risk: meant to be followed by the call-back.
    [[nodiscard]] bool isSpeaking() const { return m_isSpeaking.load(std::memory_order_acquire); }
    /// True while the listener is installed.
    [[nodiscard]] bool isAvailable() const { return m_isAvailable; }

    /// Called on each change, on the system's queue "corvellan.vad"; once also inside `enable`, when somebody is
    /// speaking then. Set it before `enable`.
    std::function<void(bool isSpeaking)> onVoiceActivityChanged;

    /// True if the listener was installed. Why not goes to standard error.
    bool enable();
    /// Harmless when not enabled.
    void disable();

private:
    void readVADState();

    VoiceActivityDevices& m_devices;
    std::shared_ptr<VoiceActivityDevices::Listener> m_listenerBlock;
    std::atomic<bool> m_isSpeaking = false;
    bool m_isAvailable = false;
};

}  // namespace corvellan
