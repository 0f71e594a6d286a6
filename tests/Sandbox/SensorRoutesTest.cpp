#include <QJsonDocument>

#include "Sandbox/SensorBook.h"
#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

class SensorRoutesTest : public SignedInFixture {
protected:
    void SetUp() override { start(); }
    PlainAnswer report(const QByteArray& body) { return rest({.method = "POST", .path = "/ext/sensor", .body = body}); }
    QJsonObject status() { return get(u"/ext/sensor"_s).object(); }
};

}  // namespace

TEST_F(SensorRoutesTest, withoutAnExtensionThereIsNoContext) {
    EXPECT_EQ(status(), (QJsonObject{{u"sensor_connected"_s, false}}));
}

TEST_F(SensorRoutesTest, aCallGoesFromItsStartToItsEnd) {
    WireClient listener{coachUrl()};
    ASSERT_TRUE(listener.connects());
    ASSERT_TRUE(spinUntil([&] { return logs(u"#1 connected"_s); }));
    const QJsonObject context{{u"entity_type"_s, u"contact"_s},         {u"entity_id"_s, u"c-7"_s},
                              {u"display_name"_s, u"Tom Berg"_s},       {u"company_name"_s, u"Halden Freight"_s},
                              {u"hubspot_company_id"_s, u"90210447"_s}, {u"call_active"_s, true}};
    const auto answer = json(report(R"({"event":"call_start","entity_type":"contact","entity_id":"c-7",
        "display_name":"Tom Berg","company_name":"Halden Freight"})"));
    EXPECT_EQ(answer[u"listeners"_s], 1);
    EXPECT_EQ(answer[u"context"_s].toObject(), context);
    EXPECT_EQ(status(), (QJsonObject{{u"sensor_connected"_s, true}, {u"context"_s, context}}));
    auto message = listener.next();
    EXPECT_EQ(message.take(u"type"_s), u"extension_context"_s);
    EXPECT_EQ(message, context);

    clock.advance(75s);
    EXPECT_EQ(report(R"({"event":"call_end"})").status, 200);
    EXPECT_EQ(listener.next(), (QJsonObject{{u"type"_s, u"extension_call_ended"_s}, {u"duration_secs"_s, 75}}));
    EXPECT_EQ(status()[u"context"_s][u"call_active"_s], false);
    EXPECT_EQ(status()[u"context"_s][u"company_name"_s], u"Halden Freight"_s);
}

TEST_F(SensorRoutesTest, aContextIsNoCall) {
    report(R"({"event":"context","company_name":"Northwind"})");
    EXPECT_EQ(status()[u"context"_s], (QJsonObject{{u"entity_type"_s, u"company"_s},
                                                   {u"entity_id"_s, u"55310021"_s},
                                                   {u"company_name"_s, u"Northwind"_s},
                                                   {u"hubspot_company_id"_s, u"55310021"_s},
                                                   {u"call_active"_s, false}}));
    // A call without a word concerns what was looked at.
    report(R"({"event":"call_start"})");
    EXPECT_EQ(status()[u"context"_s][u"company_name"_s], u"Northwind"_s);
    EXPECT_EQ(status()[u"context"_s][u"call_active"_s], true);
    // Looking elsewhere ends no call.
    report(R"({"event":"context","display_name":"Somebody"})");
    EXPECT_EQ(status()[u"context"_s], (QJsonObject{{u"entity_type"_s, u"contact"_s},
                                                   {u"entity_id"_s, u"Somebody"_s},
                                                   {u"display_name"_s, u"Somebody"_s},
                                                   {u"call_active"_s, true}}));
}

TEST_F(SensorRoutesTest, aByteOrderMarkIsNoPartOfAName) {
    const auto told = QJsonDocument::fromJson(R"({"event":"context","company_name":"\uFEFFNorthwind"})");
    const auto decoded = sandbox::SensorReport::decode(told.object());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->companyName, u"Northwind"_s);
}

TEST_F(SensorRoutesTest, anEndWithoutAStartHasNoDuration) {
    WireClient listener{coachUrl()};
    ASSERT_TRUE(spinUntil([&] { return logs(u"#1 connected"_s); }));
    report(R"({"event":"call_end"})");
    EXPECT_EQ(listener.next(), (QJsonObject{{u"type"_s, u"extension_call_ended"_s}}));
}

TEST_F(SensorRoutesTest, anExtensionThatGoesLeavesNothing) {
    report(R"({"event":"call_start","company_name":"Northwind"})");
    EXPECT_EQ(json(report(R"({"event":"disconnect"})"))[u"listeners"_s], 0);
    EXPECT_EQ(status(), (QJsonObject{{u"sensor_connected"_s, false}}));
}

TEST_F(SensorRoutesTest, aSocketWithASessionIsLeftAlone) {
    WireClient session{coachUrl()};
    session.send(R"({"type":"start_session","sim_mode":false,"audience":"direct_sale"})");
    ASSERT_EQ(session.next()[u"type"_s], u"session_started"_s);
    WireClient listener{coachUrl()};
    ASSERT_TRUE(spinUntil([&] { return logs(u"#2 connected"_s); }));
    EXPECT_EQ(json(report(R"({"event":"call_start"})"))[u"listeners"_s], 1);
    EXPECT_EQ(listener.next()[u"type"_s], u"extension_context"_s);
    session.send(R"({"type":"ping"})");
    EXPECT_EQ(session.next()[u"type"_s], u"pong"_s);
}

TEST_F(SensorRoutesTest, refusesWhatIsNoReport) {
    for (const auto& body : {QByteArray{""}, QByteArray{"[]"}, QByteArray{"{}"}, QByteArray{R"({"event":"dance"})"},
                             QByteArray{R"({"event":7})"}, QByteArray{R"({"event":"context","company_name":7})"},
                             QByteArray{R"({"event":"context","company_name":""})"},
                             R"({"event":"context","entity_id":")" + QByteArray(501, 'x') + "\"}"})
        EXPECT_EQ(report(body).status, 400) << body.constData();
    EXPECT_EQ(rest({.method = "POST", .path = "/ext/sensor", .body = "{}", .contentType = "text/plain"}).status, 415);
    EXPECT_EQ(report(R"({"event":"context","x":")" + QByteArray(70'000, 'x') + "\"}").status, 413);
    EXPECT_EQ(status(), (QJsonObject{{u"sensor_connected"_s, false}}));
}

}  // namespace corvellan::test
