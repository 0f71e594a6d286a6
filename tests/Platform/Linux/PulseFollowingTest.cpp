#include <algorithm>

#include "PulseFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

using PulseFollowingTest = PulseFixture;

TEST_F(PulseFollowingTest, takesTheNewDefaultMicrophoneInItsOwnFormat) {
    PrivatePulse pulse{PrivatePulse::usual() + PrivatePulse::microphone("headset", 16'000, 2)};
    Recording recording;
    const auto input = record(AudioInputKind::microphone, recording);
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));

    pulse.control({u"set-default-source"_s, u"headset"_s});

    ASSERT_TRUE(spinUntil([&] { return recording.reopenings() == 1; }));
    EXPECT_GT(playAndFind(pulse, u"headsetfeed"_s, recording, 16'000).correlation, 0.95);
    EXPECT_EQ(recording.formats(), (std::vector{AudioFormat{.sampleRateHertz = 44'100, .channels = 1},
                                                AudioFormat{.sampleRateHertz = 16'000, .channels = 2}}));
    EXPECT_TRUE(recording.interruptions().empty()) << "the old one delivers until the new one does";
    // And back.
    pulse.control({u"set-default-source"_s, u"mic"_s});
    ASSERT_TRUE(spinUntil([&] { return recording.reopenings() == 2; }));
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, recording, 44'100).correlation, 0.95);
}

TEST_F(PulseFollowingTest, takesTheNewDefaultOutputAtTheFirstOnesRate) {
    PrivatePulse pulse{PrivatePulse::usual() +
                       "load-module module-null-sink sink_name=headphones rate=44100 channels=1 norewinds=1\n"};
    Recording recording;
    const auto input = record(AudioInputKind::systemOutput, recording);
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));

    pulse.control({u"set-default-sink"_s, u"headphones"_s});

    ASSERT_TRUE(spinUntil([&] { return recording.reopenings() == 1; }));
    EXPECT_GT(playAndFind(pulse, u"headphones"_s, recording, 48'000).correlation, 0.95);
    EXPECT_EQ(recording.formats(), (std::vector{AudioFormat{.sampleRateHertz = 48'000, .channels = 2},
                                                AudioFormat{.sampleRateHertz = 48'000, .channels = 1}}));
    for (const std::size_t frames : recording.lengths())
        ASSERT_EQ(frames, 960U);
}

TEST_F(PulseFollowingTest, goesToTheNextDefaultWhenTheMicrophoneIsRemoved) {
    PrivatePulse pulse{PrivatePulse::usual()};
    const QString feed = pulse.load(u"module-null-sink sink_name=headsetfeed rate=48000 channels=1 norewinds=1"_s);
    const QString headset = pulse.load(u"module-remap-source source_name=headset master=headsetfeed.monitor"_s);
    pulse.control({u"set-default-source"_s, u"headset"_s});
    Recording recording;
    const auto input = record(AudioInputKind::microphone, recording);
    EXPECT_EQ(input->format().sampleRateHertz, 48'000U);
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));

    // PulseAudio prefers what was chosen last: the microphone, and not the monitor of an output.
    pulse.control({u"unload-module"_s, headset});
    pulse.control({u"set-default-source"_s, u"mic"_s});

    ASSERT_TRUE(spinUntil([&] { return recording.reopenings() >= 1; }));
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, recording, 44'100).correlation, 0.95);
    EXPECT_EQ(recording.formats().back().sampleRateHertz, 44'100U);
}

TEST_F(PulseFollowingTest, goesToTheNextDefaultWhenTheOutputIsRemovedAndNeverToTheMicrophone) {
    PrivatePulse pulse;
    const QString headphones = pulse.load(u"module-null-sink sink_name=headphones rate=48000 channels=2 norewinds=1"_s);
    pulse.control({u"set-default-sink"_s, u"headphones"_s});
    Recording recording;
    const auto input = record(AudioInputKind::systemOutput, recording);
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));

    pulse.control({u"unload-module"_s, headphones});
    pulse.control({u"set-default-sink"_s, u"spk"_s});

    ASSERT_TRUE(spinUntil([&] { return recording.reopenings() >= 1; }));
    EXPECT_EQ(recording.interruptions().size(), 1U);
    EXPECT_GT(playAndFind(pulse, u"spk"_s, recording, 48'000).correlation, 0.95);
    // What is said into the microphone is not what the customer says.
    const auto said = chirp(0.5, 48'000);
    recording.clear();
    const auto player = pulse.play(u"micfeed"_s, said, 48'000);
    ASSERT_TRUE(player->finish());
    const auto enough = recording.mono().size() + 20'000;
    ASSERT_TRUE(spinUntil([&] { return recording.mono().size() > enough; }));
    EXPECT_EQ(peak(recording.mono()), 0.0F);
}

TEST_F(PulseFollowingTest, isSilentWithoutAnyMicrophoneAndTakesTheNextThatIsPluggedIn) {
    PrivatePulse pulse{PrivatePulse::speakers()};
    const auto plugIn = [&] {
        const QString feed = pulse.load(u"module-null-sink sink_name=micfeed rate=44100 channels=1 norewinds=1"_s);
        const QString mic = pulse.load(u"module-remap-source source_name=mic master=micfeed.monitor"_s);
        pulse.control({u"set-default-source"_s, u"mic"_s});
        return std::pair{feed, mic};
    };
    const auto [feed, mic] = plugIn();
    Recording recording;
    const auto input = record(AudioInputKind::microphone, recording);
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));

    pulse.control({u"unload-module"_s, mic});
    pulse.control({u"unload-module"_s, feed});
    ASSERT_TRUE(spinUntil([&] { return recording.interruptions().size() == 1; }));
    // Only a monitor is left. The output's own input shows that time passes and nothing is heard.
    recording.clear();
    Recording marker;
    {
        const auto other = record(AudioInputKind::systemOutput, marker);
        ASSERT_TRUE(spinUntil([&] { return marker.lengths().size() > 30; }));
    }
    EXPECT_TRUE(recording.mono().empty());

    plugIn();
    ASSERT_TRUE(spinUntil([&] { return recording.reopenings() == 1; }));
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, recording, 44'100).correlation, 0.95);
}

TEST_F(PulseFollowingTest, keepsTheMicrophoneWhenAMonitorBecomesTheDefault) {
    PrivatePulse pulse;
    Recording recording;
    const auto input = record(AudioInputKind::microphone, recording);
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));
    pulse.control({u"set-default-source"_s, u"spk.monitor"_s});
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, recording, 44'100).correlation, 0.95);
    EXPECT_EQ(recording.reopenings(), 0);
}

TEST_F(PulseFollowingTest, comesBackWithTheSoundServer) {
    PrivatePulse pulse;
    Recording microphone;
    Recording output;
    const auto mic = record(AudioInputKind::microphone, microphone);
    const auto system = record(AudioInputKind::systemOutput, output);
    ASSERT_TRUE(spinUntil([&] { return !microphone.lengths().empty() && !output.lengths().empty(); }));

    pulse.kill();
    ASSERT_TRUE(
        spinUntil([&] { return microphone.interruptions().size() == 1 && output.interruptions().size() == 1; }));
    EXPECT_EQ(output.interruptions().front(), u"Connection terminated"_s);
    pulse.start();

    ASSERT_TRUE(spinUntil([&] { return microphone.reopenings() == 1 && output.reopenings() == 1; }));
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, microphone, 44'100).correlation, 0.95);
    EXPECT_GT(playAndFind(pulse, u"spk"_s, output, 48'000).correlation, 0.95);
    EXPECT_EQ(output.interruptions().size(), 1U) << "one loss is told once, however many attempts it takes";
}

TEST_F(PulseFollowingTest, takesWhatDevicesAServerComesBackWith) {
    PrivatePulse pulse;
    Recording microphone;
    const auto mic = record(AudioInputKind::microphone, microphone);
    ASSERT_TRUE(spinUntil([&] { return !microphone.lengths().empty(); }));
    pulse.kill();
    pulse.configure(PrivatePulse::speakers());
    pulse.start();
    // No microphone yet; one is plugged in.
    pulse.load(u"module-null-sink sink_name=otherfeed rate=32000 channels=1 norewinds=1"_s);
    pulse.load(u"module-remap-source source_name=other master=otherfeed.monitor"_s);
    pulse.control({u"set-default-source"_s, u"other"_s});
    ASSERT_TRUE(spinUntil([&] { return microphone.reopenings() == 1; }));
    EXPECT_GT(playAndFind(pulse, u"otherfeed"_s, microphone, 32'000).correlation, 0.95);
}

TEST_F(PulseFollowingTest, endsWhileItLooksForALostServer) {
    PrivatePulse pulse;
    Recording recording;
    auto input = record(AudioInputKind::microphone, recording);
    pulse.kill();
    ASSERT_TRUE(spinUntil([&] { return recording.interruptions().size() == 1; }));
    input.reset();
    EXPECT_EQ(recording.reopenings(), 0);
}

}  // namespace
}  // namespace corvellan::test
