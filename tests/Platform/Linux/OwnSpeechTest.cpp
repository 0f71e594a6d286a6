#include "Platform/OwnSpeech.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

constexpr MonotonicTime start{10s};

TEST(OwnSpeechTest, isSilentAtFirst) {
    EXPECT_FALSE(OwnSpeech{}.isAudible(MonotonicTime{}));
    EXPECT_FALSE(OwnSpeech{}.isAudible(start));
}

TEST(OwnSpeechTest, isAudibleFromTheBeginningToTheTailAfterTheEnd) {
    OwnSpeech speech;
    speech.begin();
    EXPECT_TRUE(speech.isAudible(start));
    speech.end(start + 1s);
    EXPECT_TRUE(speech.isAudible(start + 1s));
    EXPECT_TRUE(speech.isAudible(start + 1s + OwnSpeech::tail - 1ms));
    EXPECT_FALSE(speech.isAudible(start + 1s + OwnSpeech::tail));
}

TEST(OwnSpeechTest, lastsUntilTheLastOfSeveralPlayersEnds) {
    OwnSpeech speech;
    speech.begin();
    speech.begin();
    speech.end(start);
    EXPECT_TRUE(speech.isAudible(start + 5s));
    speech.end(start + 5s);
    EXPECT_FALSE(speech.isAudible(start + 6s));
}

}  // namespace
}  // namespace corvellan::test
