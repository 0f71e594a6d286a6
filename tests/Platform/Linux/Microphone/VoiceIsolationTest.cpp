#include "Platform/Linux/Microphone/VoiceIsolation.h"

#include <gtest/gtest.h>

#include "Platform/Linux/PulseDefaultSource.h"

using namespace Qt::StringLiterals;

namespace corvellan {
namespace {

PulseDefaultSource source(const QString& name, const QString& driver, std::map<QString, QString> properties) {
    return {.index = 1, .name = name, .driver = driver, .isMonitor = false, .properties = std::move(properties)};
}

TEST(VoiceIsolationTest, theServersOwnEchoCancellerIsolates) {
    EXPECT_TRUE(isolatesVoice(source(u"my source"_s, u"module-echo-cancel.c"_s, {})));
}

TEST(VoiceIsolationTest, filtersThatTellOfNoiseOrEchoIsolate) {
    const auto pipeWire = u"PipeWire"_s;
    EXPECT_TRUE(isolatesVoice(source(u"echo-cancel-source"_s, pipeWire, {{u"node.virtual"_s, u"true"_s}})));
    EXPECT_TRUE(isolatesVoice(source(u"capture.1"_s, pipeWire, {{u"node.link-group"_s, u"echo-cancel-812-12"_s}})));
    EXPECT_TRUE(
        isolatesVoice(source(u"effect_output.rnnoise"_s, pipeWire, {{u"node.link-group"_s, u"filter-chain-7-1"_s}})));
    EXPECT_TRUE(isolatesVoice(source(
        u"fx"_s, pipeWire,
        {{u"node.link-group"_s, u"filter-chain-7-1"_s}, {u"device.description"_s, u"Noise Canceling source"_s}})));
    EXPECT_TRUE(isolatesVoice(source(u"denoised"_s, u"module-remap-source.c"_s, {{u"device.class"_s, u"filter"_s}})));
}

TEST(VoiceIsolationTest, aFilterForSomethingElseDoesNot) {
    EXPECT_FALSE(isolatesVoice(source(u"mic"_s, u"module-remap-source.c"_s, {{u"device.class"_s, u"filter"_s}})));
    EXPECT_FALSE(isolatesVoice(source(u"equalizer"_s, u"PipeWire"_s, {{u"node.link-group"_s, u"filter-chain-7-1"_s}})));
}

TEST(VoiceIsolationTest, aMicrophoneWithANoisyNameIsNoFilter) {
    EXPECT_FALSE(isolatesVoice(
        source(u"alsa_input.usb-headset"_s, u"module-alsa-card.c"_s,
               {{u"device.class"_s, u"sound"_s}, {u"device.description"_s, u"Noise Cancelling Headset"_s}})));
    EXPECT_FALSE(isolatesVoice(source(u"noise-cancel-usb"_s, u"PipeWire"_s, {{u"node.virtual"_s, u"false"_s}})));
}

TEST(VoiceIsolationTest, aMonitorIsNoVoice) {
    auto monitor = source(u"echo-cancel.monitor"_s, u"module-echo-cancel.c"_s, {});
    monitor.isMonitor = true;
    EXPECT_FALSE(isolatesVoice(monitor));
}

TEST(VoiceIsolationTest, aSourceThatTellsNothingIsOrdinary) {
    EXPECT_FALSE(isolatesVoice(source({}, {}, {})));
}

}  // namespace
}  // namespace corvellan
