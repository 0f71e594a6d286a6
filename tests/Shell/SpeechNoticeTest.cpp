#include "Shell/SpeechNotice.h"

#include <gtest/gtest.h>

#include "Support/FakeDesktop.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

TEST(SpeechNoticeTest, tellsWhatToDoAboutAMissingEngine) {
    CallLog log;
    FakeNotificationCenter notifications{log};
    SpeechNotice notice{notifications};
    notice.tell(SpeechFailure::noEngine);
    ASSERT_EQ(notifications.requests.size(), 1U);
    EXPECT_EQ(notifications.requests.front().title, u"Replies are not spoken"_s);
    EXPECT_EQ(
        notifications.requests.front().body,
        u"No speech engine works on this computer. Install the package espeak-ng; until then replies are shown only."_s);
    EXPECT_FALSE(notifications.requests.front().playsDefaultSound);
}

TEST(SpeechNoticeTest, tellsThatNothingIsHeard) {
    CallLog log;
    FakeNotificationCenter notifications{log};
    SpeechNotice notice{notifications};
    notice.tell(SpeechFailure::noSound);
    ASSERT_EQ(notifications.requests.size(), 1U);
    EXPECT_EQ(
        notifications.requests.front().body,
        u"The computer's sound service does not play them. Check the sound settings; until then replies are shown only."_s);
}

TEST(SpeechNoticeTest, tellsOnce) {
    CallLog log;
    FakeNotificationCenter notifications{log};
    SpeechNotice notice{notifications};
    notice.tell(SpeechFailure::noEngine);
    notice.tell(SpeechFailure::noEngine);
    notice.tell(SpeechFailure::noSound);
    EXPECT_EQ(notifications.requests.size(), 1U);
}

}  // namespace
}  // namespace corvellan::test
