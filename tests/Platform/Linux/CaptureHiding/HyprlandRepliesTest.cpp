#include "Platform/Linux/CaptureHiding/HyprlandReplies.h"

#include <gtest/gtest.h>

namespace corvellan::hyprland {

using namespace Qt::StringLiterals;

namespace {

const QString title = u"Corvellan Bram"_s;

TEST(HyprlandRepliesTest, findsTheWindowByProcessAndTitle) {
    const QByteArray reply = R"([
        {"address": "0x1f", "mapped": true, "title": "Corvellan Bram", "pid": 7},
        {"address": "0x2f", "mapped": true, "title": "Corvellan Bram", "pid": 8},
        {"address": "0x3f", "mapped": false, "title": "Corvellan Bram", "pid": 7},
        {"address": "0x4f", "mapped": true, "title": "Corvellan Bram 2", "pid": 7},
        {"address": "0x5F", "title": "Corvellan Bram", "pid": 7}
    ])";
    EXPECT_EQ(windowAddresses(reply, 7, title), (std::vector<QByteArray>{"0x1f", "0x5F"}));
    EXPECT_EQ(windowAddresses("[]", 7, title), std::vector<QByteArray>{});
}

TEST(HyprlandRepliesTest, anAddressThatCouldCarryACommandIsNone) {
    for (const QByteArray& address : {"0x1f 1; dispatch exit", "1f", "0x", "0xg1", "", "0x11112222333344445"}) {
        const QByteArray reply = R"([{"address": ")" + address + R"(", "title": "Corvellan Bram", "pid": 7}])";
        EXPECT_EQ(windowAddresses(reply, 7, title), std::vector<QByteArray>{}) << address.toStdString();
    }
}

TEST(HyprlandRepliesTest, whatIsNoListOfWindowsIsNone) {
    for (const QByteArray& reply : {"", "{}", "null", "[", "[] x", "unknown request", "\xff"})
        EXPECT_FALSE(windowAddresses(reply, 7, title)) << reply.toStdString();
    EXPECT_EQ(windowAddresses(R"([1, null, "x", [], {"pid": "7"}, {"pid": 7.5, "title": 3}])", 7, title),
              std::vector<QByteArray>{});
}

TEST(HyprlandRepliesTest, manyWindowsAreCutOff) {
    QByteArray reply = "[";
    for (int i = 0; i < 100; ++i)
        reply += R"({"address": "0x1f", "title": "Corvellan Bram", "pid": 7},)";
    reply.back() = ']';
    EXPECT_EQ(windowAddresses(reply, 7, title)->size(), windowLimit);
}

TEST(HyprlandRepliesTest, okIsOkAndNothingElse) {
    EXPECT_TRUE(isOk("ok"));
    EXPECT_TRUE(isOk("ok\n"));
    for (const QByteArray& reply : {"", "okay", "ok ok", "OK", "DEPRECATED: ok"})
        EXPECT_FALSE(isOk(reply)) << reply.toStdString();
}

TEST(HyprlandRepliesTest, readsAPropertyOfTruthValues) {
    EXPECT_EQ(propertyValue(R"({"no_screen_share": true})", "no_screen_share"), true);
    EXPECT_EQ(propertyValue(R"({"no_screen_share": false})", "no_screen_share"), false);
    for (const QByteArray& reply : {"prop not found", "true", "1", "{}", R"({"no_screen_share": 1})",
                                    R"({"no_screen_share": "true"})", R"({"other": true})", R"([true])"})
        EXPECT_FALSE(propertyValue(reply, "no_screen_share")) << reply.toStdString();
}

TEST(HyprlandRepliesTest, anExcerptIsPrintableOnOneLineAndShort) {
    EXPECT_EQ(excerpt(" prop\nnot \x1b[31m found "), u"prop not [31m found"_s);
    EXPECT_LE(excerpt(QByteArray(100'000, 'x')).size(), 81);
    EXPECT_EQ(excerpt({}), QString{});
}

}  // namespace

}  // namespace corvellan::hyprland
