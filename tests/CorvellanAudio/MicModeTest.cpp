#include "CorvellanAudio/MicMode.h"

#include <gtest/gtest.h>

#include "Platform/MicrophoneModes.h"

using namespace Qt::StringLiterals;

namespace corvellan {
namespace {

class FakeModes final : public MicrophoneModes {
public:
    [[nodiscard]] ActiveMicrophoneMode activeMode() override { return mode; }
    void showPicker() override { ++pickers; }

    ActiveMicrophoneMode mode = ActiveMicrophoneMode::standard;
    int pickers = 0;
};

MicMode currentFor(int platformValue) {
    FakeModes modes;
    modes.mode = static_cast<ActiveMicrophoneMode>(platformValue);
    return currentMicMode(modes);
}

QString failureOf(QByteArrayView json) {
    const auto decoded = decodeMicModeResult(json);
    return decoded ? QString{} : decoded.error().errorDescription();
}

TEST(MicModeTest, everyModeHasItsRawValue) {
    EXPECT_EQ(rawValue(MicMode::voiceIsolation), u"voiceIsolation"_s);
    EXPECT_EQ(rawValue(MicMode::standard), u"standard"_s);
    EXPECT_EQ(rawValue(MicMode::wideSpectrum), u"wideSpectrum"_s);
    EXPECT_EQ(rawValue(MicMode::unsupported), u"unsupported"_s);
    for (const auto& row : micModeRows)
        EXPECT_EQ(micMode(rawValue(row.value)), row.value);
    for (const auto& word : {u""_s, u"Standard"_s, u"voice_isolation"_s, u"standard "_s})
        EXPECT_EQ(micMode(word), std::nullopt);
}

TEST(MicModeTest, mapsThePlatformsValuesAndAnyOtherToStandard) {
    EXPECT_EQ(currentFor(0), MicMode::standard);
    EXPECT_EQ(currentFor(1), MicMode::wideSpectrum);
    EXPECT_EQ(currentFor(2), MicMode::voiceIsolation);
    for (const int other : {3, -1, 4711})
        EXPECT_EQ(currentFor(other), MicMode::standard);
}

TEST(MicModeTest, onlyVoiceIsolationIsolates) {
    EXPECT_TRUE(isVoiceIsolated(MicMode::voiceIsolation));
    for (const auto mode : {MicMode::standard, MicMode::wideSpectrum, MicMode::unsupported})
        EXPECT_FALSE(isVoiceIsolated(mode));
}

TEST(MicModeTest, thePickerIsTheSystems) {
    FakeModes modes;
    showSystemPicker(modes);
    EXPECT_EQ(modes.pickers, 1);
}

TEST(MicModeResultTest, fromVoiceIsolationEncodesAsIsolated) {
    EXPECT_EQ(encode(MicModeResult{MicMode::voiceIsolation}), R"({"mode":"voiceIsolation","voice_isolated":true})");
}

TEST(MicModeResultTest, fromStandardEncodesAsNotIsolated) {
    EXPECT_EQ(encode(MicModeResult{MicMode::standard}), R"({"mode":"standard","voice_isolated":false})");
}

TEST(MicModeResultTest, isReadBack) {
    for (const auto& row : micModeRows) {
        const MicModeResult result{row.value};
        EXPECT_EQ(decodeMicModeResult(encode(result)), result);
    }
    // The mode is any text, and the two fields are independent.
    const MicModeResult other{u"studio \"Ü\" \U0001F600"_s, true};
    EXPECT_EQ(decodeMicModeResult(encode(other)), other);
}

TEST(MicModeResultTest, otherKeysAreIgnoredHoweverDeep) {
    const QByteArray deep = QByteArray(200, '[') + QByteArray(200, ']');
    EXPECT_EQ(decodeMicModeResult(R"({"x":)" + deep + R"(, "voice_isolated":false, "mode":"standard"})"),
              MicModeResult{MicMode::standard});
}

TEST(MicModeResultTest, bothFieldsAreNeededInTheirTypes) {
    EXPECT_EQ(failureOf(R"({"voice_isolated":true})"), u"mode: a string was expected"_s);
    EXPECT_EQ(failureOf(R"({"mode":null,"voice_isolated":true})"), u"mode: a string was expected"_s);
    EXPECT_EQ(failureOf(R"({"mode":2,"voice_isolated":true})"), u"mode: a string was expected"_s);
    EXPECT_EQ(failureOf(R"({"mode":"standard"})"), u"voice_isolated: true or false was expected"_s);
    EXPECT_EQ(failureOf(R"({"mode":"standard","voice_isolated":1})"), u"voice_isolated: true or false was expected"_s);
    EXPECT_EQ(failureOf(R"({"mode":"standard","voiceIsolated":true})"),
              u"voice_isolated: true or false was expected"_s);
    EXPECT_EQ(failureOf("[]"), u"An object was expected"_s);
}

TEST(MicModeResultTest, whatIsNoJsonIsAFailure) {
    for (const QByteArray& json : {QByteArray{}, QByteArray{"{"}, QByteArray{"\xFF"},
                                   QByteArray{R"({"mode":"standard","voice_isolated":true} x)"},
                                   QByteArray(60'000, '['), QByteArray(largestMicModeBytes + 1, ' ')})
        EXPECT_FALSE(failureOf(json).isEmpty()) << json.left(20).toStdString();
}

}  // namespace
}  // namespace corvellan
