#include "Platform/Linux/PulseAudioInputs.h"

#include "PulseFixture.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

using PulseAudioInputsTest = PulseFixture;

TEST_F(PulseAudioInputsTest, hearsWhatIsSpokenIntoTheMicrophone) {
    PrivatePulse pulse;
    Recording recording;
    const auto input = record(AudioInputKind::microphone, recording);
    EXPECT_EQ(input->format(), (AudioFormat{.sampleRateHertz = 44'100, .channels = 1}));
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, recording, 44'100).correlation, 0.95);
    EXPECT_EQ(recording.formats(), std::vector{input->format()});
    EXPECT_EQ(recording.reopenings(), 0);
}

TEST_F(PulseAudioInputsTest, hearsWhatTheOutputPlaysInBlocksOf20Milliseconds) {
    PrivatePulse pulse;
    Recording recording;
    const auto input = record(AudioInputKind::systemOutput, recording);
    EXPECT_EQ(input->format(), (AudioFormat{.sampleRateHertz = 48'000, .channels = 2}));
    EXPECT_GT(playAndFind(pulse, u"spk"_s, recording, 48'000).correlation, 0.95);
    for (const std::size_t frames : recording.lengths())
        ASSERT_EQ(frames, 960U);
}

TEST_F(PulseAudioInputsTest, takesEveryDevicesOwnFormat) {
    struct Row {
        int rate;
        int channels;
    };
    for (const auto [rate, channels] : {Row{16'000, 1}, Row{44'100, 1}, Row{48'000, 2}, Row{96'000, 2}}) {
        SCOPED_TRACE(rate);
        PrivatePulse pulse{PrivatePulse::speakers() + PrivatePulse::microphone("mic", rate, channels) +
                           "set-default-source mic\n"};
        Recording recording;
        const auto input = record(AudioInputKind::microphone, recording);
        EXPECT_EQ(input->format(),
                  (AudioFormat{.sampleRateHertz = static_cast<std::uint32_t>(rate), .channels = channels}));
        EXPECT_GT(playAndFind(pulse, u"micfeed"_s, recording, rate).correlation, 0.95);
    }
}

TEST_F(PulseAudioInputsTest, deliversNothingBeforeTheStartAndNothingAfterTheEnd) {
    PrivatePulse pulse;
    Recording recording;
    auto input = open(AudioInputKind::systemOutput);
    ASSERT_TRUE(input);
    // A second input that delivers shows that time has passed.
    Recording marker;
    const auto other = record(AudioInputKind::systemOutput, marker);
    ASSERT_TRUE(spinUntil([&] { return marker.lengths().size() > 5; }));
    (*input)->start(recording.sink());
    ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));
    input->reset();
    const auto count = recording.lengths().size();
    const auto seen = marker.lengths().size();
    ASSERT_TRUE(spinUntil([&] { return marker.lengths().size() > seen + 5; }));
    EXPECT_EQ(recording.lengths().size(), count);
}

TEST_F(PulseAudioInputsTest, tellsASalespersonThatThereIsNoMicrophone) {
    // What is there to record is a monitor, and a monitor is no microphone.
    PrivatePulse pulse{PrivatePulse::speakers()};
    const auto input = open(AudioInputKind::microphone);
    ASSERT_FALSE(input);
    ASSERT_TRUE(input.error().as<AudioInputError>());
    EXPECT_EQ(input.error().as<AudioInputError>()->kind, AudioInputError::Kind::noDevice);
    EXPECT_EQ(input.error().errorDescription(),
              u"No microphone was found. Plug one in or choose one in the sound settings, then start again."_s);
}

TEST_F(PulseAudioInputsTest, takesNoMonitorThatWasMadeTheDefaultMicrophone) {
    PrivatePulse pulse{PrivatePulse::usual() + "set-default-source spk.monitor\n"};
    const auto input = open(AudioInputKind::microphone);
    ASSERT_FALSE(input);
    EXPECT_EQ(input.error().as<AudioInputError>()->kind, AudioInputError::Kind::noDevice);
}

TEST_F(PulseAudioInputsTest, findsNoMicrophoneAndNoOutputWhereThereIsNothing) {
    PrivatePulse pulse{""};
    for (const auto kind : {AudioInputKind::microphone, AudioInputKind::systemOutput}) {
        const auto input = open(kind);
        ASSERT_FALSE(input);
        EXPECT_EQ(input.error().as<AudioInputError>()->kind, AudioInputError::Kind::noDevice);
    }
}

TEST_F(PulseAudioInputsTest, hearsSilenceFromAnOutputThatIsThereForWantOfAny) {
    PrivatePulse pulse{"load-module module-always-sink\n"};
    Recording recording;
    const auto input = record(AudioInputKind::systemOutput, recording);
    ASSERT_TRUE(spinUntil([&] { return recording.mono().size() > 10'000; }));
    EXPECT_EQ(peak(recording.mono()), 0.0F);
}

TEST_F(PulseAudioInputsTest, tellsThatNoSoundServerAnswers) {
    PrivatePulse pulse;
    pulse.kill();
    for (const auto kind : {AudioInputKind::microphone, AudioInputKind::systemOutput}) {
        const auto input = open(kind);
        ASSERT_FALSE(input);
        EXPECT_EQ(input.error().as<AudioInputError>()->kind, AudioInputError::Kind::noServer);
        EXPECT_EQ(input.error().errorDescription(),
                  u"The computer's sound service does not answer. Restart the computer, then start again."_s);
    }
}

TEST_F(PulseAudioInputsTest, givesAServerThatHangsUpAfterTwoSeconds) {
    PrivatePulse pulse;
    pulse.freeze();
    const auto begin = std::chrono::steady_clock::now();
    const auto input = open(AudioInputKind::microphone);
    const auto taken = std::chrono::steady_clock::now() - begin;
    ASSERT_FALSE(input);
    EXPECT_EQ(input.error().as<AudioInputError>()->kind, AudioInputError::Kind::noServer);
    EXPECT_GE(taken, 1900ms);
    EXPECT_LT(taken, 4s);
}

TEST_F(PulseAudioInputsTest, givesUpAtOnceWhenAskedTo) {
    PrivatePulse pulse;
    pulse.freeze();
    std::stop_source stop;
    auto opening = inputs.open(AudioInputKind::microphone, stop.get_token());
    settle();
    stop.request_stop();
    const auto begin = std::chrono::steady_clock::now();
    const auto result = complete(std::move(opening));
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().as<CancelledError>());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);

    const auto never = complete(inputs.open(AudioInputKind::microphone, stop.get_token()));
    ASSERT_FALSE(never);
    EXPECT_TRUE(never.error().as<CancelledError>());
}

TEST_F(PulseAudioInputsTest, leavesOutItsOwnSpeech) {
    PrivatePulse pulse;
    Recording recording;
    const auto input = record(AudioInputKind::systemOutput, recording);
    Recording microphone;
    const auto mic = record(AudioInputKind::microphone, microphone);

    ownSpeech.begin();
    playAndFind(pulse, u"spk"_s, recording, 48'000);
    const auto blocks = recording.mono();
    EXPECT_GT(blocks.size(), 48'000U) << "the side goes on";
    EXPECT_EQ(peak(blocks), 0.0F) << "and is silent";
    // The microphone is another matter.
    EXPECT_GT(playAndFind(pulse, u"micfeed"_s, microphone, 44'100).correlation, 0.95);

    ownSpeech.end(clock.now());
    ASSERT_TRUE(spinUntil([&] { return !ownSpeech.isAudible(clock.now()); }));
    EXPECT_GT(playAndFind(pulse, u"spk"_s, recording, 48'000).correlation, 0.95);
}

TEST_F(PulseAudioInputsTest, opensAndEndsManyTimes) {
    PrivatePulse pulse;
    for (int i = 0; i < 25; ++i) {
        Recording recording;
        const auto kind = i % 2 == 0 ? AudioInputKind::microphone : AudioInputKind::systemOutput;
        const auto input = record(kind, recording);
        if (i % 5 == 0) {
            ASSERT_TRUE(spinUntil([&] { return !recording.lengths().empty(); }));
        }
    }
    EXPECT_TRUE(
        spinUntil([&] { return pulse.control({u"list"_s, u"short"_s, u"source-outputs"_s}).count('\n') == 0; }));
}

}  // namespace
}  // namespace corvellan::test
