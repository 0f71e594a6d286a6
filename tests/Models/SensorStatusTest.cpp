#include "Models/SensorStatus.h"

#include <gtest/gtest.h>

#include "JsonText.h"

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;

TEST(SensorStatusTest, readsTheWholeAnswer) {
    const auto status = SensorStatus::decode(R"({"sensor_connected":true,"more":[1],"context":{"call_active":true,
        "entity_type":"contact","entity_id":"7","display_name":"Dana","company_name":"Acme","hubspot_company_id":"9"}})");
    ASSERT_TRUE(status);
    EXPECT_EQ(*status, (SensorStatus{.sensorConnected = true,
                                     .context = ExtensionContextPayload{.entityType = u"contact"_s,
                                                                        .entityId = u"7"_s,
                                                                        .displayName = u"Dana"_s,
                                                                        .companyName = u"Acme"_s,
                                                                        .hubspotCompanyId = u"9"_s,
                                                                        .callActive = true}}));
}

TEST(SensorStatusTest, whatIsMissingReadsAsNotThere) {
    EXPECT_EQ(SensorStatus::decode("{}").value(), SensorStatus{});
    const auto status = SensorStatus::decode(R"({"context":{"entity_type":"deal","entity_id":"1"}})");
    EXPECT_EQ(status.value().context, (ExtensionContextPayload{.entityType = u"deal"_s, .entityId = u"1"_s}));
}

TEST(SensorStatusTest, aValueOfTheWrongTypeReadsAsMissing) {
    EXPECT_EQ(SensorStatus::decode(R"({"sensor_connected":1,"context":[]})").value(), SensorStatus{});
    EXPECT_EQ(SensorStatus::decode(R"({"sensor_connected":"true","context":null})").value(), SensorStatus{});
    const auto status = SensorStatus::decode(R"({"context":{"entity_type":"deal","entity_id":"1","call_active":"yes",
        "display_name":7,"company_name":null,"hubspot_company_id":{}}})");
    EXPECT_EQ(status.value().context, (ExtensionContextPayload{.entityType = u"deal"_s, .entityId = u"1"_s}));
}

TEST(SensorStatusTest, withoutTypeAndIdThereIsNoContext) {
    for (const char* context : {"{}", R"({"entity_type":"deal"})", R"({"entity_id":"1"})",
                                R"({"entity_type":"deal","entity_id":1})", R"({"entity_type":null,"entity_id":"1"})"})
        EXPECT_EQ(SensorStatus::decode(QByteArray{R"({"sensor_connected":true,"context":)"} + context + '}').value(),
                  SensorStatus{.sensorConnected = true})
            << context;
}

TEST(SensorStatusTest, onlyAnObjectIsAnAnswer) {
    for (const char* json : {"", "null", "[]", "true", "\"text\"", "{", "{} {}"})
        EXPECT_FALSE(failureOf(SensorStatus::decode(json)).errorDescription().isEmpty()) << json;
}

}  // namespace
}  // namespace corvellan::test
