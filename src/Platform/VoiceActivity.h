#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>

namespace corvellan {

/// The system's number of a failure; 0 is none.
using DeviceStatus = std::int32_t;

/// Voice activity detection by the sound hardware itself, as properties of an input device. Any thread but an
/// audio one.
class VoiceActivityDevices {
public:
    /// Called on every change of the state.
    using Listener = std::function<void()>;

    virtual ~VoiceActivityDevices() = default;

    /// Never 0.
    [[nodiscard]] virtual std::expected<std::uint32_t, DeviceStatus> defaultInputDevice() = 0;
    [[nodiscard]] virtual bool hasDetection(std::uint32_t device) = 0;
    /// \param value 1 switches detection on, 0 off.
    virtual DeviceStatus setDetection(std::uint32_t device, std::uint32_t value) = 0;
    /// Not 0 while somebody speaks.
    [[nodiscard]] virtual std::expected<std::uint32_t, DeviceStatus> detectionState(std::uint32_t device) = 0;

    /// Has `listener` called on a serial queue with this label, never on the caller's thread.
    virtual DeviceStatus addStateListener(std::uint32_t device, const std::string& queueLabel,
                                          std::shared_ptr<Listener> listener) = 0;
    /// One call may still be under way when this returns. Also from the listener itself.
    virtual DeviceStatus removeStateListener(std::uint32_t device, const std::string& queueLabel,
                                             const std::shared_ptr<Listener>& listener) = 0;
};

}  // namespace corvellan
