#include "LinuxVoiceActivity.h"

#include <cerrno>

#include "Platform/Linux/PulseDefaultSource.h"

namespace corvellan {

std::expected<std::uint32_t, DeviceStatus> LinuxVoiceActivity::defaultInputDevice() {
    const auto source = readDefaultSource();
    if (!source || source->isMonitor)
        return std::unexpected(DeviceStatus{ENODEV});
    // The server counts from 0, which stands for no device here.
    return source->index + 1;
}

bool LinuxVoiceActivity::hasDetection(std::uint32_t /*device*/) {
    return false;
}

DeviceStatus LinuxVoiceActivity::setDetection(std::uint32_t /*device*/, std::uint32_t /*value*/) {
    return ENOTSUP;
}

std::expected<std::uint32_t, DeviceStatus> LinuxVoiceActivity::detectionState(std::uint32_t /*device*/) {
    return std::unexpected(DeviceStatus{ENOTSUP});
}

DeviceStatus LinuxVoiceActivity::addStateListener(std::uint32_t /*device*/, const std::string& /*queueLabel*/,
                                                  std::shared_ptr<Listener> /*listener*/) {
    return ENOTSUP;
}

DeviceStatus LinuxVoiceActivity::removeStateListener(std::uint32_t /*device*/, const std::string& /*queueLabel*/,
                                                     const std::shared_ptr<Listener>& /*listener*/) {
    return ENOTSUP;
}

}  // namespace corvellan
