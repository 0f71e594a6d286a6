#include "Models/Briefing.h"

#include <gtest/gtest.h>

#include <chrono>

#include "JsonText.h"

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const DateStyle german{"de_DE", u"UTC"_s};

QByteArray company(const QByteArray& id) {
    return R"({"source":"crm","id":)" + id + R"(,"name":"Acme","confidence":0.9})";
}

QString idIn(const QByteArray& id) {
    const auto decoded = ResolvedCompany::decode(company(id));
    return decoded ? decoded->id.stringValue : u"failed: "_s + decoded.error().errorDescription();
}

std::optional<double> totalIn(const QByteArray& value) {
    const auto brief = SalesBrief::decode(R"({"revenue":{"total_usd":)" + value + "}}");
    if (!brief) {
        ADD_FAILURE() << value.constData() << ": " << brief.error().errorDescription().toStdString();
        return -1;
    }
    const auto& total = brief->revenue.value().total_usd;
    return total ? total->value : std::nullopt;
}

/// Decodes, encodes and compares as JSON; the value for further looks.
template <typename Record>
Record roundTrip(const QByteArray& json) {
    const auto record = Record::decode(json);
    if (!record) {
        ADD_FAILURE() << record.error().errorDescription().toStdString();
        return {};
    }
    EXPECT_EQ(asJson(record->encode()), asJson(json)) << record->encode().constData();
    return *record;
}

}  // namespace

// MARK: - Lenient values

TEST(StringOrIntTest, numbersAndStringsReadAlike) {
    EXPECT_EQ(idIn("42"), u"42"_s);
    EXPECT_EQ(idIn("\"42\""), u"42"_s);
    EXPECT_EQ(idIn("-7"), u"-7"_s);
    EXPECT_EQ(idIn("9223372036854775807"), u"9223372036854775807"_s);
    EXPECT_EQ(idIn("\" 0042 \""), u" 0042 "_s);
}

TEST(StringOrIntTest, aWholeNumberIsOneHoweverItIsWritten) {
    EXPECT_EQ(idIn("42.0"), u"42"_s);
    EXPECT_EQ(idIn("4.2e1"), u"42"_s);
}

TEST(StringOrIntTest, anythingElseReadsAsTheEmptyString) {
    for (const char* json : {"true", "false", "null", "42.5", "{}", "[42]", "9223372036854775808", "1e300"})
        EXPECT_EQ(idIn(json), QString{}) << json;
}

TEST(StringOrIntTest, aCompanyWithoutTheKeyFails) {
    EXPECT_EQ(failureOf(ResolvedCompany::decode(R"({"source":"crm","name":"Acme","confidence":1})")).path, u"id"_s);
}

TEST(StringOrIntTest, isWrittenAsAString) {
    EXPECT_EQ(asJson(ResolvedCompany::decode(company("42")).value().encode())[u"id"_s], u"42"_s);
}

TEST(StringOrNumberTest, numbersAndStringsReadAlike) {
    EXPECT_EQ(totalIn("12.5"), 12.5);
    EXPECT_EQ(totalIn("12"), 12);
    EXPECT_EQ(totalIn("\"12.5\""), 12.5);
    EXPECT_EQ(totalIn("\"-1e3\""), -1000);
    EXPECT_EQ(totalIn("18446744073709551615"), 18446744073709551615.0);
    // The nearest value, not the one beside it.
    EXPECT_EQ(totalIn("0.1"), 0.1);
    EXPECT_EQ(totalIn("123456789.123456789"), 123456789.123456789);
}

TEST(StringOrNumberTest, anythingElseReadsAsAbsent) {
    for (const char* json : {"\"\"", "\"unknown\"", "\" 1\"", "\"1,5\"", "\"inf\"", "\"nan\"", "true", "null", "{}",
                             "[1]", "1e999", "\"1e999\""})
        EXPECT_EQ(totalIn(json), std::nullopt) << json;
}

TEST(StringOrNumberTest, isWrittenAsANumberOrANull) {
    SalesBrief brief{.revenue =
                         SalesBriefRevenue{.total_usd = StringOrNumber{12.5}, .last_12mo_usd = StringOrNumber{}}};
    EXPECT_EQ(asJson(brief.encode()), asJson(R"({"revenue":{"total_usd":12.5,"last_12mo_usd":null}})"));
}

// MARK: - Companies

TEST(ResolvedCompanyTest, readsAllOfIt) {
    const auto decoded = roundTrip<ResolvedCompany>(
        R"({"source":"hubspot","id":"42","name":"Acme","confidence":0.75,"domain":"acme.test","country":"DE",
            "crmId":7,"hubspotId":"h-9","orderCount":3,"totalRevenue":1250.5})");
    EXPECT_EQ(decoded, (ResolvedCompany{.source = u"hubspot"_s,
                                        .id = {u"42"_s},
                                        .name = u"Acme"_s,
                                        .confidence = 0.75,
                                        .domain = u"acme.test"_s,
                                        .country = u"DE"_s,
                                        .crmId = 7,
                                        .hubspotId = u"h-9"_s,
                                        .orderCount = 3,
                                        .totalRevenue = 1250.5}));
}

TEST(ResolvedCompanyTest, aWrongTypeInAPlainMemberFails) {
    const QByteArray start = R"({"source":"crm","id":1,"name":"Acme","confidence":)";
    EXPECT_TRUE(ResolvedCompany::decode(start + "1}"));
    EXPECT_FALSE(ResolvedCompany::decode(start + "\"1\"}"));
    EXPECT_FALSE(ResolvedCompany::decode(start + "null}"));
    EXPECT_FALSE(ResolvedCompany::decode(start + "1e999}"));
    EXPECT_FALSE(ResolvedCompany::decode(start + R"(1,"crmId":"7"})"));
    EXPECT_FALSE(ResolvedCompany::decode(start + R"(1,"crmId":7.5})"));
    EXPECT_FALSE(ResolvedCompany::decode(start + R"(1,"hubspotId":7})"));
    EXPECT_FALSE(ResolvedCompany::decode(start + R"(1,"totalRevenue":"9"})"));
    EXPECT_TRUE(ResolvedCompany::decode(start + R"(1,"crmId":null,"totalRevenue":null,"unknown":{}})"));
}

TEST(ResolvedCompanyTest, matchesStandUnderTheirKey) {
    const auto matches = decodeMatches("{\"matches\":[" + company("1") + "," + company("\"b\"") + "],\"more\":1}");
    ASSERT_TRUE(matches);
    ASSERT_EQ(matches->size(), 2U);
    EXPECT_EQ((*matches)[1].id.stringValue, u"b"_s);
    EXPECT_EQ(decodeMatches(R"({"matches":[]})").value().size(), 0U);
    EXPECT_EQ(failureOf(decodeMatches("{}")).path, u"matches"_s);
    EXPECT_EQ(failureOf(decodeMatches(R"({"matches":[{}]})")).path, u"matches[0].source"_s);
    EXPECT_FALSE(decodeMatches("[]"));
}

// MARK: - Meetings

TEST(CalendarMeetingTest, readsAllOfIt) {
    const auto decoded = roundTrip<CalendarMeeting>(
        R"({"id":"e-1","summary":"Demo","start":"2026-03-02T09:30:00.000Z","end":"2026-03-02T10:00:00Z",
            "attendees":[{"email":"a@b.test"},
                         {"email":"c@d.test","displayName":"C","organizer":true,"responseStatus":"accepted"}],
            "matchedCompany":{"source":"crm","id":"1","name":"Acme","confidence":1}})");
    EXPECT_EQ(decoded.attendees.at(1), (MeetingAttendee{u"c@d.test"_s, u"C"_s, true, u"accepted"_s}));
    EXPECT_EQ(decoded.matchedCompany.value().name, u"Acme"_s);
}

TEST(CalendarMeetingTest, theListOfAttendeesIsRequiredThoughItMayBeEmpty) {
    const QByteArray start = R"({"id":"e","summary":"s","start":"a","end":"b")";
    EXPECT_EQ(failureOf(CalendarMeeting::decode(start + "}")).path, u"attendees"_s);
    EXPECT_TRUE(CalendarMeeting::decode(start + R"(,"attendees":[]})"));
    EXPECT_EQ(failureOf(CalendarMeeting::decode(start + R"(,"attendees":[{}]})")).path, u"attendees[0].email"_s);
}

TEST(CalendarMeetingTest, aStartWithOrWithoutAFractionIsAMoment) {
    const WallTime halfPastNine = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 9h + 30min;
    EXPECT_EQ(CalendarMeeting{.start = u"2026-03-02T09:30:00Z"_s}.startDate(), halfPastNine);
    EXPECT_EQ(CalendarMeeting{.start = u"2026-03-02T10:30:00.500+01:00"_s}.startDate(), halfPastNine + 500ms);
}

TEST(CalendarMeetingTest, anEventOfAWholeDayHasNoMoment) {
    const CalendarMeeting meeting{.start = u"2026-03-02"_s, .end = u"2026-03-03"_s};
    EXPECT_EQ(meeting.startDate(), std::nullopt);
    EXPECT_EQ(meeting.timeRange(german), u"2026-03-02 – 2026-03-03"_s);
}

TEST(CalendarMeetingTest, theRangeShowsShortTimesOfTheZone) {
    const CalendarMeeting meeting{.start = u"2026-03-02T09:30:00.000Z"_s, .end = u"2026-03-02T10:00:00Z"_s};
    EXPECT_EQ(meeting.timeRange(german), u"09:30 – 10:00"_s);
    EXPECT_EQ(meeting.timeRange({"de_DE", u"Europe/Berlin"_s}), u"10:30 – 11:00"_s);
}

TEST(CalendarMeetingTest, anEndThatIsNoMomentIsShownAsItStands) {
    EXPECT_EQ((CalendarMeeting{.start = u"2026-03-02T09:30:00Z"_s, .end = u"late"_s}.timeRange(german)),
              u"09:30 – late"_s);
}

TEST(CalendarMeetingTest, eventsStandUnderTheirKey) {
    EXPECT_EQ(decodeEvents(R"({"events":[]})").value().size(), 0U);
    EXPECT_EQ(failureOf(decodeEvents("{}")).path, u"events"_s);
    EXPECT_FALSE(decodeEvents(R"({"events":null})"));
}

// MARK: - Briefs

TEST(SalesBriefTest, readsAllOfIt) {
    const auto brief = roundTrip<SalesBrief>(R"({
        "ids":{"crmId":7,"hubspotCompanyId":"h"},
        "company":{"user_company_name":"a","user_country":"b","user_website":"c","group_name":"d","seller_name":"e",
                   "industry":"f"},
        "hubspot":{"name":"a","domain":"b","country":"c","industry":"d","city":"e","number_of_employees":"10",
                   "annual_revenue":"1000"},
        "revenue":{"total_orders":3,"total_usd":12.5,"last_12mo_usd":4,"first_order":"x","last_order":"y"},
        "topProducts":[{"product_name":"p","total_quantity":2,"total_usd":1.5},{}],
        "pipeline":{"openDealCount":1,"openDealValue":2.5,"recentWonCount":3,"recentWonValue":4.5},
        "contacts":[{"email":"a","firstname":"b","lastname":"c"}],
        "notes":[{"id":"1","body":"b","hs_timestamp":"t","author":"a"}],
        "links":{"crm":"https://crm.test","hubspot":"https://h.test"},
        "error":"partly"})");
    EXPECT_EQ(brief.revenue.value().last_12mo_usd, StringOrNumber{4});
    EXPECT_EQ(brief.company.value().seller_name, u"e"_s);
    EXPECT_EQ(brief.pipeline.value().recentWonValue, StringOrNumber{4.5});
    EXPECT_EQ(brief.notes.value().at(0).hs_timestamp, u"t"_s);
}

TEST(SalesBriefTest, everythingMayBeMissing) {
    EXPECT_EQ(roundTrip<SalesBrief>("{}"), SalesBrief{});
    EXPECT_EQ(SalesBrief::decode(R"({"ids":null,"topProducts":null,"revenue":null})").value(), SalesBrief{});
}

TEST(SalesBriefTest, anErrorAloneIsABrief) {
    EXPECT_EQ(SalesBrief::decode(R"({"error":"No such company"})").value().error, u"No such company"_s);
}

TEST(SalesBriefTest, aWrongTypeInAPlainMemberFails) {
    EXPECT_EQ(failureOf(SalesBrief::decode(R"({"revenue":{"total_orders":"3"}})")).path, u"revenue.total_orders"_s);
    EXPECT_EQ(failureOf(SalesBrief::decode(R"({"hubspot":{"number_of_employees":10}})")).path,
              u"hubspot.number_of_employees"_s);
    EXPECT_EQ(failureOf(SalesBrief::decode(R"({"contacts":[{},{"email":1}]})")).path, u"contacts[1].email"_s);
    EXPECT_FALSE(SalesBrief::decode(R"({"pipeline":[]})"));
    EXPECT_FALSE(SalesBrief::decode("[]"));
}

// MARK: - Handoff, timeline, scenarios

TEST(HandoffResponseTest, readsAllOfItAndNeedsTheNoteAlone) {
    const auto handoff = roundTrip<HandoffResponse>(R"({"handoffNote":"# Note","hubspot":{"noteId":"n","taskId":"t"},
        "meta":{"crmId":1,"hubspotCompanyId":"h","dealId":"d","deviceCount":2,"callCount":3,"engagementEmails":4,
                "preCallTaskCount":5}})");
    EXPECT_EQ(handoff.meta.value().preCallTaskCount, 5);
    EXPECT_EQ(roundTrip<HandoffResponse>(R"({"handoffNote":""})"), HandoffResponse{});
    EXPECT_EQ(failureOf(HandoffResponse::decode("{}")).path, u"handoffNote"_s);
}

TEST(TimelineResponseTest, readsAllOfIt) {
    const auto timeline = roundTrip<TimelineResponse>(
        R"({"entityType":"company","entityId":"7","daysBack":90,"activityTypes":["CALL"],"count":2,"timeline":[
            {"type":"CALL","date":"2026-03-01","subject":"Demo","outcome":"Connected","owner":"Dana"},
            {"type":"NOTE","date":"2026-03-01","owner":""}]})");
    EXPECT_EQ(timeline.timeline.at(0).id(), u"2026-03-01-CALL"_s);
    EXPECT_EQ(timeline.timeline.at(1).subject, std::nullopt);
}

TEST(TimelineResponseTest, anEventWithoutItsOwnerFailsTheWhole) {
    EXPECT_EQ(failureOf(TimelineResponse::decode(
                            R"({"entityType":"company","entityId":"7","daysBack":90,"activityTypes":[],"count":1,
                                "timeline":[{"type":"CALL","date":"2026-03-01"}]})"))
                  .path,
              u"timeline[0].owner"_s);
}

TEST(TimelineResponseTest, everythingOfItIsRequired) {
    for (const char* json : {R"({"entityId":"7","daysBack":90,"activityTypes":[],"count":0,"timeline":[]})",
                             R"({"entityType":"c","daysBack":90,"activityTypes":[],"count":0,"timeline":[]})",
                             R"({"entityType":"c","entityId":"7","activityTypes":[],"count":0,"timeline":[]})",
                             R"({"entityType":"c","entityId":"7","daysBack":90,"count":0,"timeline":[]})",
                             R"({"entityType":"c","entityId":"7","daysBack":90,"activityTypes":[],"timeline":[]})",
                             R"({"entityType":"c","entityId":"7","daysBack":90,"activityTypes":[],"count":0})"})
        EXPECT_EQ(failureOf(TimelineResponse::decode(json)).kind, DecodingError::Kind::missingField) << json;
}

TEST(ScenarioItemTest, needsAllFourAndIsNamedByItsKey) {
    const auto scenario = roundTrip<ScenarioItem>(R"({"key":"cto","name":"n","company":"c","industry":"i"})");
    EXPECT_EQ(scenario.id(), u"cto"_s);
    EXPECT_EQ(failureOf(ScenarioItem::decode(R"({"key":"cto","name":"n","company":"c"})")).path, u"industry"_s);
}

TEST(ScenarioItemTest, theListStandsBesideTheTypes) {
    const auto response = roundTrip<ScenariosResponse>(
        R"({"scenarios":[{"key":"cto","name":"n","company":"c","industry":"i"}],"disc_types":["steady"]})");
    EXPECT_EQ(response.scenarios.size(), 1U);
    EXPECT_EQ(response.discTypes, QStringList{u"steady"_s});
    EXPECT_FALSE(ScenariosResponse::decode(R"({"scenarios":[]})"));
}

}  // namespace corvellan::test
