#include "Platform/Linux/Microphone/PulseMicrophoneModes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CorvellanAudio/MicMode.h"
#include "Support/FakeDesktop.h"
#include "Support/PrivatePulse.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

class PulseMicrophoneModesTest : public testing::Test {
protected:
    MicMode current() { return currentMicMode(modes); }

    CallLog log;
    FakeSystemSettings settings{log};
    PulseMicrophoneModes modes{settings};
};

TEST_F(PulseMicrophoneModesTest, anOrdinaryMicrophoneIsStandard) {
    PrivatePulse pulse;
    EXPECT_EQ(current(), MicMode::standard);
}

TEST_F(PulseMicrophoneModesTest, anEchoCancellerAsTheDefaultIsolatesTheVoice) {
    PrivatePulse pulse;
    const auto module = pulse.load(
        u"module-echo-cancel source_name=clean source_master=mic sink_name=heard "
        "sink_master=spk aec_method=speex"_s);
    // That it is there is not enough: programs must record it.
    pulse.control({u"set-default-source"_s, u"mic"_s});
    EXPECT_EQ(current(), MicMode::standard);
    pulse.control({u"set-default-source"_s, u"clean"_s});
    EXPECT_EQ(current(), MicMode::voiceIsolation);
    pulse.control({u"unload-module"_s, module});
    EXPECT_EQ(current(), MicMode::standard);
}

TEST_F(PulseMicrophoneModesTest, withoutAServerOrAMicrophoneItIsStandard) {
    PrivatePulse pulse{PrivatePulse::speakers()};
    EXPECT_EQ(current(), MicMode::standard);
    pulse.kill();
    EXPECT_EQ(current(), MicMode::standard);
}

TEST_F(PulseMicrophoneModesTest, thePickerIsTheDesktopsSoundSettings) {
    showSystemPicker(modes);
    EXPECT_THAT(settings.opened, testing::ElementsAre(PrivacyPane::microphone));
}

}  // namespace
}  // namespace corvellan::test
