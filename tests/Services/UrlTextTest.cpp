#include "Services/UrlText.h"

#include <gtest/gtest.h>

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;

TEST(UrlTextTest, masksATokenAndKeepsTheRest) {
    EXPECT_EQ(urlForLog(QUrl{u"wss://coach.example/ws?token=eyJh.bGci%3D"_s}), u"wss://coach.example/ws?token=***"_s);
    EXPECT_EQ(urlForLog(QUrl{u"wss://a.example:8443/ws?x=1&token=abc&y=2#f"_s}),
              u"wss://a.example:8443/ws?x=1&token=***&y=2#f"_s);
}

TEST(UrlTextTest, masksEveryTokenHoweverItsNameIsWritten) {
    EXPECT_EQ(urlForLog(QUrl{u"ws://a/?token=1&%74oken=2"_s}).count(u"***"_s), 2);
}

TEST(UrlTextTest, leavesOtherAddressesAlone) {
    for (const auto& text : {u"ws://127.0.0.1:3001/ws"_s, u"wss://a.example/v1/realtime?intent=transcription"_s,
                             u"ws://a/?tokens=1&atoken=2&token"_s, u"ws://a/ws#?token=1"_s})
        EXPECT_EQ(urlForLog(QUrl{text}), text);
}

}  // namespace
}  // namespace corvellan::test
