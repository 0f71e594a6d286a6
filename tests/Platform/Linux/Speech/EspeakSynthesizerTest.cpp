#include "Platform/Linux/Speech/EspeakSynthesizer.h"

#include "SpeechFixture.h"
#include "WavBytes.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

const QString longText =
    u"This is a rather long sentence that takes its time, so that it can be cut off in the middle"_s;

SpeechUtterance utterance(const QString& text) {
    return {.text = text, .volume = 0.8};
}

class EspeakSynthesizerTest : public SpeechFixture {
protected:
    std::unique_ptr<EspeakSynthesizer> make(std::string program = "espeak-ng") {
        return std::make_unique<EspeakSynthesizer>(clock, ownSpeech, keepFailure(), std::move(program));
    }

    /// A program in the engine's place.
    std::string script(const QByteArray& lines) {
        QFile file{m_folder.filePath(u"engine"_s)};
        if (!file.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the engine");
        file.write("#!/bin/sh\n" + lines);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file.fileName().toStdString();
    }

    /// An engine that keeps what it was given in "text" and "options", and speaks a tone.
    std::string toneEngine() {
        QFile tone{path(u"tone"_s)};
        if (!tone.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the tone");
        tone.write(wavHead() + wavSamples(chirp(0.2, 22'050)));
        const QByteArray folder = m_folder.path().toUtf8();
        return script("cat >> " + folder + "/text\necho \"$*\" >> " + folder + "/options\ncat " + folder + "/tone\n");
    }

    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    [[nodiscard]] QByteArray contents(const QString& name) const {
        QFile file{path(name)};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(EspeakSynthesizerTest, readsTheEnglishVoicesThatAreInstalled) {
    PrivatePulse pulse;
    const auto synthesizer = make();
    const auto voices = prepare(*synthesizer);
    ASSERT_TRUE(voices.americanEnglish);
    EXPECT_EQ(voices.americanEnglish->language, u"en-US"_s);
    EXPECT_FALSE(voices.americanEnglish->name.isEmpty());
    EXPECT_EQ(voices.engine, u"espeak-ng"_s);
    EXPECT_TRUE(failures().empty());
}

TEST_F(EspeakSynthesizerTest, aLaterReadingThatHangsLeavesTheVoicesThatAreKnown) {
    PrivatePulse pulse;
    const QByteArray mark = path(u"read"_s).toUtf8();
    const auto synthesizer =
        make(script("[ -e " + mark + " ] && exec sleep 600\ntouch " + mark + "\nexec espeak-ng \"$@\"\n"));
    const auto voices = prepare(*synthesizer);
    ASSERT_FALSE(voices.all.empty());
    const auto later = prepare(*synthesizer);
    EXPECT_EQ(later.all, voices.all);
    EXPECT_EQ(later.engine, voices.engine);
}

TEST_F(EspeakSynthesizerTest, speaksAndTellsTheEndWhenItIsOver) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    const auto voices = prepare(*synthesizer);

    auto hello = utterance(u"Hello there."_s);
    hello.voice = voices.americanEnglish;
    const auto begin = std::chrono::steady_clock::now();
    synthesizer->speak(hello);
    ASSERT_TRUE(waitForEnds(1));
    const auto end = std::chrono::steady_clock::now();
    ASSERT_TRUE(waitForBlocks(heard));

    ASSERT_TRUE(heard.firstAudible());
    EXPECT_GT(heard.loudest(), 0.1F);
    // Two words take half a second to say.
    EXPECT_GT(*heard.lastAudible() - *heard.firstAudible(), 300ms);
    EXPECT_LT(*heard.lastAudible(), end + 200ms) << "not before the sound is over";
    EXPECT_EQ(ended, 1);
    tell("first sound", *heard.firstAudible() - begin);
}

TEST_F(EspeakSynthesizerTest, isSilentSoonAfterStopAndEndsEveryUtterance) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    prepare(*synthesizer);
    ASSERT_NO_FATAL_FAILURE(speakTwoLongOnes(*synthesizer, utterance(longText)));
    ASSERT_TRUE(waitForBlocks(heard, 10));

    const auto stop = std::chrono::steady_clock::now();
    synthesizer->stopSpeaking();
    EXPECT_EQ(ended, 2) << "at once";
    ASSERT_NO_FATAL_FAILURE(expectSilenceSoonAfter(stop));

    expectToBeHeard(*synthesizer, utterance(u"Again."_s));
}

TEST_F(EspeakSynthesizerTest, enoughWaitsAtTheSoundServerForABusyComputerAndLittleIsMixed) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    prepare(*synthesizer);
    synthesizer->speak(utterance(longText));
    ASSERT_TRUE(spinUntil([&] { return heard.wasAudible(); }));
    const QString inputs = QString::fromUtf8(pulse.control({u"list"_s, u"sink-inputs"_s}));
    const auto milliseconds = [&](const QString& name) {
        return inputs.section(name, 1, 1).section(u"usec"_s, 0, 0).trimmed().toDouble() / 1000;
    };
    EXPECT_GT(milliseconds(u"Buffer Latency:"_s), 200) << qPrintable(inputs);
    EXPECT_LT(milliseconds(u"Sink Latency:"_s), 50) << qPrintable(inputs);
}

TEST_F(EspeakSynthesizerTest, stopWhenSilentEndsNothing) {
    PrivatePulse pulse;
    const auto synthesizer = make();
    prepare(*synthesizer);
    synthesizer->stopSpeaking();
    EXPECT_EQ(ended, 0);
}

TEST_F(EspeakSynthesizerTest, speaksOneAfterTheOtherInTheirOrder) {
    PrivatePulse pulse;
    const auto synthesizer = make(toneEngine());
    prepare(*synthesizer);
    for (const QString& text : {u"One."_s, u"Two."_s, u"Three."_s})
        synthesizer->speak(utterance(text));
    ASSERT_TRUE(waitForEnds(3));
    EXPECT_EQ(contents(u"text"_s), "One.\nTwo.\nThree.\n");
}

TEST_F(EspeakSynthesizerTest, whatALineSaysIsReadAndNotObeyed) {
    PrivatePulse pulse;
    const auto synthesizer = make(toneEngine());
    prepare(*synthesizer);
    synthesizer->speak(utterance(u"-w /tmp/x [[[h@l'oU]] caf\u00E9\x01\u009B\nnext"_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(contents(u"text"_s), "-w /tmp/x [ [[h@l'oU]] caf\xC3\xA9   next\n");
    EXPECT_EQ(contents(u"options"_s).split('\n').at(1), "-b 1 --stdin --stdout");
}

TEST_F(EspeakSynthesizerTest, theVolumeIsAShareOfTheEnginesOwn) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    const auto synthesizer = make(toneEngine());
    prepare(*synthesizer);
    synthesizer->speak({.text = u"Loud"_s, .volume = 1});
    ASSERT_TRUE(waitForEnds(1) && waitForBlocks(heard));
    const float loud = heard.loudest();
    heard.clear();
    synthesizer->speak({.text = u"Soft"_s, .volume = 0.8});
    ASSERT_TRUE(waitForEnds(2) && waitForBlocks(heard));
    EXPECT_NEAR(loud, 0.5F, 0.05F);
    EXPECT_NEAR(heard.loudest(), 0.8F * loud, 0.05F);
}

TEST_F(EspeakSynthesizerTest, theSystemSideLeavesOutWhatItSays) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    PulseAudioInputs systemSide{clock, ownSpeech};
    Loudness captured;
    const auto capturing = listen(systemSide, AudioInputKind::systemOutput, captured);
    const auto synthesizer = make();
    prepare(*synthesizer);
    EXPECT_FALSE(ownSpeech.isAudible(clock.now()));
    synthesizer->speak(utterance(longText));
    ASSERT_TRUE(spinUntil([&] { return heard.wasAudible(); }));
    EXPECT_TRUE(ownSpeech.isAudible(clock.now()));
    synthesizer->speak(utterance(u"And another."_s));
    ASSERT_TRUE(waitForEnds(2));
    ASSERT_TRUE(waitForBlocks(captured));
    EXPECT_FALSE(ownSpeech.isAudible(clock.now()));
    EXPECT_EQ(captured.loudest(), 0.0F);
    // It hears what others play all the same.
    const auto playing = pulse.play(u"spk"_s, chirp(0.3, 48'000), 48'000);
    ASSERT_TRUE(playing->finish());
    EXPECT_TRUE(spinUntil([&] { return captured.wasAudible(); }));
}

TEST_F(EspeakSynthesizerTest, withoutAnEngineAnUtteranceEndsAtOnce) {
    PrivatePulse pulse;
    const auto synthesizer = make("no-such-engine");
    const auto voices = prepare(*synthesizer);
    EXPECT_TRUE(voices.all.empty());
    EXPECT_FALSE(voices.americanEnglish);
    EXPECT_EQ(voices.engine, QString{});
    synthesizer->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noEngine});
    EXPECT_FALSE(ownSpeech.isAudible(clock.now()));
}

TEST_F(EspeakSynthesizerTest, anEngineThatGivesNoSoundIsNone) {
    PrivatePulse pulse;
    const auto synthesizer = make(script("echo 'Error: no voice'\n"));
    prepare(*synthesizer);
    synthesizer->speak(utterance(u"One."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noEngine});
    EXPECT_EQ(ended, 1);
}

TEST_F(EspeakSynthesizerTest, anEngineThatHangsIsGivenUp) {
    PrivatePulse pulse;
    const auto synthesizer = make(script("exec sleep 600\n"));
    prepare(*synthesizer);
    synthesizer->speak(utterance(u"One."_s));
    synthesizer->speak(utterance(u"Two."_s));
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noEngine});
}

TEST_F(EspeakSynthesizerTest, withoutASoundServerAnUtteranceEndsAtOnceAndSpeechComesBackWithIt) {
    PrivatePulse pulse;
    pulse.kill();
    const auto synthesizer = make();
    prepare(*synthesizer);
    synthesizer->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noSound});
    pulse.start();
    const auto listening = hearOutput();
    synthesizer->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(failures().size(), 1U);
    EXPECT_TRUE(heard.wasAudible());
}

TEST_F(EspeakSynthesizerTest, aSoundServerLostInMidSentenceEndsEverything) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    prepare(*synthesizer);
    ASSERT_NO_FATAL_FAILURE(speakTwoLongOnes(*synthesizer, utterance(longText)));
    pulse.kill();
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noSound});
    EXPECT_TRUE(spinUntil([&] { return !ownSpeech.isAudible(clock.now()); }));
}

TEST_F(EspeakSynthesizerTest, aSoundServerThatHangsEndsEverything) {
    PrivatePulse pulse;
    const auto synthesizer = make();
    prepare(*synthesizer);
    pulse.freeze();
    synthesizer->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noSound});
}

TEST_F(EspeakSynthesizerTest, endsInMidSentenceWithoutATrace) {
    PrivatePulse pulse;
    const auto listening = hearOutput();
    auto synthesizer = make();
    prepare(*synthesizer);
    synthesizer->speak(utterance(longText));
    ASSERT_TRUE(spinUntil([&] { return heard.wasAudible(); }));
    synthesizer.reset();
    EXPECT_EQ(ended, 0);
    ASSERT_TRUE(waitForBlocks(heard, 50));
    EXPECT_FALSE(ownSpeech.isAudible(clock.now()));
}

}  // namespace
}  // namespace corvellan::test
