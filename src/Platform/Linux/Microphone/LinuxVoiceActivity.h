#pragma once

#include "Platform/VoiceActivity.h"

namespace corvellan {

/// There is a default input device, and no sound server or driver of Linux reports its voice activity: the
/// property is missing from every device.
class LinuxVoiceActivity final : public VoiceActivityDevices {
public:
    [[nodiscard]] std::expected<std::uint32_t, DeviceStatus> defaultInputDevice() override;
    [[nodiscard]] bool hasDetection(std::uint32_t device) override;
    DeviceStatus setDetection(std::uint32_t device, std::uint32_t value) override;
    [[nodiscard]] std::expected<std::uint32_t, DeviceStatus> detectionState(std::uint32_t device) override;
    DeviceStatus addStateListener(std::uint32_t device, const std::string& queueLabel,
                                  std::shared_ptr<Listener> listener) override;
    DeviceStatus removeStateListener(std::uint32_t device, const std::string& queueLabel,
                                     const std::shared_ptr<Listener>& listener) override;
};

}  // namespace corvellan
