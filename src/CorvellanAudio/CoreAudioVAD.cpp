#include "CoreAudioVAD.h"

#include <cstdio>
#include <string>
#include <tuple>

namespace corvellan {

namespace {

constexpr auto queueLabel = "corvellan.vad";

}  // namespace

std::shared_ptr<CoreAudioVAD> CoreAudioVAD::make(VoiceActivityDevices& devices) {
    return std::make_shared<CoreAudioVAD>(Made{}, devices);
}

CoreAudioVAD::CoreAudioVAD(Made, VoiceActivityDevices& devices)
    : deviceID(devices.defaultInputDevice().value_or(0)),
      m_devices(devices) {}

CoreAudioVAD::~CoreAudioVAD() {
    disable();
}

bool CoreAudioVAD::enable() {
    if (deviceID == 0)
        return false;
    if (!m_devices.hasDetection(deviceID)) {
        std::fputs("CoreAudio VAD not available on this device\n", stderr);
        return false;
    }
    if (const DeviceStatus status = m_devices.setDetection(deviceID, 1); status != 0) {
        std::fputs(("Failed to enable CoreAudio VAD: " + std::to_string(status) + "\n").c_str(), stderr);
        return false;
    }
    m_listenerBlock = std::make_shared<VoiceActivityDevices::Listener>([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->readVADState();
    });
    m_isAvailable = m_devices.addStateListener(deviceID, queueLabel, m_listenerBlock) == 0;
    if (m_isAvailable)
        readVADState();
    // Without a listener, detection stays switched on all the same.
    return m_isAvailable;
}

void CoreAudioVAD::disable() {
    if (deviceID == 0 || !m_isAvailable)
        return;
    if (m_listenerBlock)
        std::ignore = m_devices.removeStateListener(deviceID, queueLabel, m_listenerBlock);
    std::ignore = m_devices.setDetection(deviceID, 0);
    m_isAvailable = false;
    m_listenerBlock.reset();
}

void CoreAudioVAD::readVADState() {
    const auto state = m_devices.detectionState(deviceID);
    if (!state)
        return;
    const bool speaking = *state != 0;
    // In one step: the caller's first read and the queue's may meet.
    if (m_isSpeaking.exchange(speaking, std::memory_order_acq_rel) != speaking && onVoiceActivityChanged)
        onVoiceActivityChanged(speaking);
}

}  // namespace corvellan
