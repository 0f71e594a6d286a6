#include "Sandbox/WavFile.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "GeneratedAudio.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

// Stereo, 8000 Hz, two frames: (100, 300), (-2, -4).
const QByteArray stereo = QByteArray::fromHex(
    "52494646 2c000000 57415645 666d7420 10000000 0100 0200 401f0000 007d0000 0400 1000"
    "64617461 08000000 6400 2c01 feff fcff");

}  // namespace

TEST(WavFileTest, canBeReadAfterEveryAppend) {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a/b.wav"_s);
    auto writer = sandbox::WavWriter::create(path, 24'000);
    ASSERT_TRUE(writer);
    EXPECT_TRUE(sandbox::readWav(path)->samples.empty());
    GeneratedAudio audio;
    for (int i = 0; i < 3; ++i) {
        const auto piece = GeneratedAudio{}.tone(0.1);
        audio.tone(0.1);
        EXPECT_TRUE(writer->append(piece.pcm()));
        const auto read = sandbox::readWav(path);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->sampleRateHertz, 24'000);
        EXPECT_EQ(read->samples, audio.samples());
    }
}

TEST(WavFileTest, writesAHeaderThatOthersRead) {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.wav"_s);
    ASSERT_TRUE(sandbox::WavWriter::create(path, 24'000)->append(QByteArray::fromHex("0100 0200")));
    QFile file{path};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toHex(),
              QByteArray::fromHex("52494646 28000000 57415645 666d7420 10000000 0100 0100 c05d0000"
                                  "80bb0000 0200 1000 64617461 04000000 0100 0200")
                  .toHex());
}

TEST(WavFileTest, failsWhereNothingCanBeWritten) {
    EXPECT_FALSE(sandbox::WavWriter::create(u"/proc/none/a.wav"_s, 24'000));
}

TEST(WavFileTest, mixesChannelsDown) {
    const auto audio = sandbox::decodeWav(stereo);
    ASSERT_TRUE(audio);
    EXPECT_EQ(audio->sampleRateHertz, 8000);
    EXPECT_EQ(audio->samples, (std::vector<std::int16_t>{200, -3}));
}

TEST(WavFileTest, readsToTheEndWhenTheLengthIsNotKnown) {
    QByteArray streamed = stereo;
    streamed.replace(40, 4, QByteArray::fromHex("ffffff7f"));
    EXPECT_EQ(sandbox::decodeWav(streamed)->samples.size(), 2U);
}

TEST(WavFileTest, refusesWhatIsNoWavFile) {
    for (qsizetype length = 0; length < 44; ++length)
        EXPECT_FALSE(sandbox::decodeWav(stereo.first(length))) << length;
    QByteArray compressed = stereo;
    compressed[20] = 3;
    EXPECT_FALSE(sandbox::decodeWav(compressed));
    QByteArray noChannels = stereo;
    noChannels[22] = 0;
    EXPECT_FALSE(sandbox::decodeWav(noChannels));
    EXPECT_FALSE(sandbox::readWav(u"/nothing/here.wav"_s));
}

}  // namespace corvellan::test
