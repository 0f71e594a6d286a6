#include "Platform/Linux/Microphone/LinuxVoiceActivity.h"

#include <gtest/gtest.h>

#include "CorvellanAudio/CoreAudioVAD.h"
#include "Support/PrivatePulse.h"

namespace corvellan::test {
namespace {

std::string enable(CoreAudioVAD& vad) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(vad.enable());
    return testing::internal::GetCapturedStderr();
}

TEST(LinuxVoiceActivityTest, aMicrophoneIsADeviceWithoutDetection) {
    PrivatePulse pulse;
    LinuxVoiceActivity devices;
    const auto vad = CoreAudioVAD::make(devices);
    EXPECT_NE(vad->deviceID, 0U);
    EXPECT_EQ(enable(*vad), "CoreAudio VAD not available on this device\n");
    EXPECT_FALSE(vad->isAvailable());
    EXPECT_FALSE(vad->isSpeaking());
}

TEST(LinuxVoiceActivityTest, withoutAMicrophoneOrAServerThereIsNoDevice) {
    PrivatePulse pulse{PrivatePulse::speakers()};
    LinuxVoiceActivity devices;
    const auto monitorOnly = CoreAudioVAD::make(devices);
    EXPECT_EQ(monitorOnly->deviceID, 0U);
    EXPECT_EQ(enable(*monitorOnly), "");
    pulse.kill();
    EXPECT_EQ(CoreAudioVAD::make(devices)->deviceID, 0U);
}

}  // namespace
}  // namespace corvellan::test
