#include "Sandbox/CustomerBook.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

#include "Base/Iso8601.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::CustomerBook;

const WallTime anchor = *parseIso8601(u"2026-03-02T10:00:20Z"_s);
const auto anna = u"anna@fernhill.example"_s;

std::vector<CalendarMeeting> meetings(const CustomerBook& book, const QString& user, WallTime now) {
    const QJsonObject sent{{u"events"_s, book.upcoming(user, anchor, now, 100)}};
    auto decoded = decodeEvents(QJsonDocument{sent}.toJson());
    EXPECT_TRUE(decoded) << decoded.error().errorDescription().toStdString();
    return decoded.value_or(std::vector<CalendarMeeting>{});
}

QStringList namesOf(const QJsonArray& matches) {
    QStringList names;
    for (const auto& match : matches)
        names.append(match[u"name"_s].toString());
    return names;
}

struct BadFile {
    const char* json;
    const char16_t* problem;
};
class BadCustomerFiles : public testing::TestWithParam<BadFile> {};

}  // namespace

TEST(CustomerBookTest, theShippedFileReads) {
    const auto book = CustomerBook::shipped();
    EXPECT_GE(book.customers().size(), 5U);
}

TEST(CustomerBookTest, aSearchFindsByWordsTheBestFirst) {
    const auto book = CustomerBook::shipped();
    EXPECT_EQ(namesOf(book.search(u"halden freight"_s, 3)), QStringList{u"Halden Freight"_s});
    EXPECT_EQ(book.search(u"Halden Freight"_s, 3)[0][u"confidence"_s].toDouble(), 1.0);
    EXPECT_LT(book.search(u"hal"_s, 3)[0][u"confidence"_s].toDouble(), 1.0);
    EXPECT_EQ(namesOf(book.search(u"FINCH"_s, 3)), QStringList{u"Ostler & Finch Foods"_s});
    EXPECT_EQ(namesOf(book.search(u"brúnarvík"_s, 3)), QStringList{u"Brúnarvík Seafood"_s});
    EXPECT_EQ(namesOf(book.search(u"brunarvik"_s, 3)), QStringList{u"Brúnarvík Seafood"_s});
    EXPECT_EQ(namesOf(book.search(u"northwind-shops.ex"_s, 3)), QStringList{u"Northwind"_s});
    const auto within = book.search(u"components"_s, 3);
    const auto begins = book.search(u"kestrel"_s, 3);
    EXPECT_LT(within[0][u"confidence"_s].toDouble(), begins[0][u"confidence"_s].toDouble());
}

TEST(CustomerBookTest, nothingMatchesAnEmptyOrAForeignName) {
    const auto book = CustomerBook::shipped();
    for (const auto& name : {u""_s, u"  "_s, u"&"_s, u"alden"_s, u"halden bakery"_s})
        EXPECT_TRUE(book.search(name, 3).isEmpty()) << name.toStdString();
}

TEST(CustomerBookTest, aSearchKeepsItsLimit) {
    const auto book = CustomerBook::parse(R"({"customers":[
        {"name":"Acme One","match":{"source":"crm","id":1}}, {"name":"Acme Two","match":{"source":"crm","id":2}},
        {"name":"Big Acme","match":{"source":"crm","id":3}}]})");
    ASSERT_TRUE(book) << book.error().toStdString();
    EXPECT_EQ(namesOf(book->search(u"acme"_s, 10)), (QStringList{u"Acme One"_s, u"Acme Two"_s, u"Big Acme"_s}));
    EXPECT_EQ(namesOf(book->search(u"acme"_s, 2)), (QStringList{u"Acme One"_s, u"Acme Two"_s}));
}

TEST(CustomerBookTest, meetingsComeInTheirOrderFromTheStartOn) {
    const auto list = meetings(CustomerBook::shipped(), anna, anchor);
    ASSERT_GE(list.size(), 5U);
    EXPECT_EQ(list[0].summary, u"Halden Freight: discovery"_s);
    EXPECT_EQ(list[0].start, u"2026-03-02T10:05:00.000Z"_s);
    EXPECT_EQ(list[0].end, u"2026-03-02T10:35:00.000Z"_s);
    EXPECT_EQ(list[1].start, u"2026-03-02T10:46:00Z"_s);
    EXPECT_EQ(list.back().start, u"2026-03-03"_s);
    EXPECT_FALSE(list.back().startDate());
    for (const auto& meeting : list) {
        EXPECT_EQ(meeting.attendees.at(0).email, anna);
        EXPECT_EQ(meeting.attendees.at(0).organizer, true);
    }
}

TEST(CustomerBookTest, meetingsAreWithAndWithoutACompanyAndOneHasSevenAttendees) {
    const auto list = meetings(CustomerBook::shipped(), anna, anchor);
    EXPECT_TRUE(std::ranges::any_of(list, [](const auto& one) { return one.matchedCompany.has_value(); }));
    EXPECT_TRUE(std::ranges::any_of(list, [](const auto& one) { return !one.matchedCompany; }));
    EXPECT_EQ(std::ranges::count_if(list, [](const auto& one) { return one.attendees.size() == 7; }), 1);
}

TEST(CustomerBookTest, eachUserHasMeetingsOfHisOwn) {
    const auto book = CustomerBook::shipped();
    const auto has = [&](const QString& user, const QString& summary) {
        return std::ranges::any_of(meetings(book, user, anchor),
                                   [&](const auto& meeting) { return meeting.summary == summary; });
    };
    EXPECT_TRUE(has(anna, u"Pipeline review"_s));
    EXPECT_FALSE(has(u"ben@fernhill.example"_s, u"Pipeline review"_s));
    EXPECT_TRUE(has(u"ben@fernhill.example"_s, u"Support desk: open cases"_s));
    EXPECT_TRUE(has(u"zoe@x.example"_s, u"Halden Freight: discovery"_s));
}

TEST(CustomerBookTest, aMeetingStaysWhereItIsUntilItIsOver) {
    const auto book = CustomerBook::shipped();
    const auto first = meetings(book, anna, anchor)[0];
    for (const auto later : {1min, 5min, 34min})
        EXPECT_EQ(meetings(book, anna, anchor + later)[0], first);
}

TEST(CustomerBookTest, thereIsAlwaysANextMeetingWhateverTheTime) {
    const auto book = CustomerBook::shipped();
    for (const auto later : {35min, 10h + 0min, 24h * 400 + 7min}) {
        const auto now = anchor + later;
        const auto list = meetings(book, anna, now);
        ASSERT_GE(list.size(), 5U);
        int timed = 0;
        for (const auto& meeting : list) {
            const auto start = meeting.startDate();
            if (!start)
                continue;
            ++timed;
            EXPECT_GT(*parseIso8601(meeting.end), now);
            EXPECT_LT(*start, now + 13h);
        }
        EXPECT_GE(timed, 4);
    }
    // An occurrence of its own.
    EXPECT_NE(meetings(book, anna, anchor + 10h)[0].id, meetings(book, anna, anchor)[0].id);
}

TEST(CustomerBookTest, aTimelineHoldsTheDaysThatAreAskedForTheNewestFirst) {
    const auto book = CustomerBook::shipped();
    const auto* const halden = book.find({}, 4711, {});
    ASSERT_TRUE(halden);
    const auto ask = [&](const std::optional<QString>& contact, int days) {
        const auto decoded = TimelineResponse::decode(
            QJsonDocument{CustomerBook::timeline(*halden, contact, u"x"_s, days, anchor)}.toJson());
        EXPECT_TRUE(decoded);
        return decoded.value_or(TimelineResponse{});
    };
    const auto all = ask({}, 90);
    EXPECT_EQ(all.entityType, u"company"_s);
    EXPECT_EQ(all.daysBack, 90);
    EXPECT_EQ(all.count, static_cast<qint64>(all.timeline.size()));
    EXPECT_EQ(all.activityTypes,
              (QStringList{u"call"_s, u"email"_s, u"meeting"_s, u"note"_s, u"task"_s, u"webinar_signup"_s}));
    EXPECT_EQ(all.timeline[0].date, u"2026-03-02T00:00:00.000Z"_s);
    EXPECT_TRUE(std::ranges::is_sorted(all.timeline, std::ranges::greater{}, &TimelineEvent::date));
    EXPECT_EQ(ask({}, 365).count, all.count + 1);
    EXPECT_EQ(ask({}, 3).count, 2);
    EXPECT_EQ(ask(u"maria.solheim@haldenfreight.example"_s, 90).count, 1);
    EXPECT_EQ(ask(u"maria.solheim@haldenfreight.example"_s, 90).entityType, u"contact"_s);
}

TEST(CustomerBookTest, numbersGoOutAsNumbersTextsAndWords) {
    const auto book = CustomerBook::shipped();
    QSet<int> kinds;
    for (const auto& customer : book.customers())
        for (const auto& key : {u"total_usd"_s, u"last_12mo_usd"_s})
            if (const auto value = customer.brief[u"revenue"_s][key]; !value.isUndefined())
                kinds.insert(value.type());
    EXPECT_TRUE(kinds.contains(QJsonValue::Double));
    EXPECT_TRUE(kinds.contains(QJsonValue::String));
    EXPECT_TRUE(kinds.contains(QJsonValue::Bool));
    EXPECT_TRUE(book.find({}, 4711, {})->brief[u"topProducts"_s][3][u"total_usd"_s].isNull());
    kinds.clear();
    for (const auto& customer : book.customers())
        kinds.insert(customer.match[u"id"_s].type());
    EXPECT_EQ(kinds, (QSet<int>{QJsonValue::Double, QJsonValue::String}));
}

TEST_P(BadCustomerFiles, areRefusedInWords) {
    const auto book = CustomerBook::parse(GetParam().json);
    ASSERT_FALSE(book);
    EXPECT_EQ(book.error().toStdString(), QStringView{GetParam().problem}.toString().toStdString());
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadCustomerFiles,
    testing::Values(BadFile{"", u"at byte 0: illegal value"}, BadFile{"[]", u"the file: expected an object"},
                    BadFile{R"({"customers":7})", u"the file: customers: expected a list"},
                    BadFile{R"({"customers":[7]})", u"customers[0]: expected an object"},
                    BadFile{R"({"customers":[{"match":{"source":"crm","id":1}}]})",
                            u"customers[0]: name: expected a text"},
                    BadFile{R"({"customers":[{"name":"A"}]})", u"customers[0]: match: The field \"source\" is missing"},
                    BadFile{R"({"customers":[{"name":"A","match":{"source":"crm","id":1},"handoff":{"note":[1]}}]})",
                            u"customers[0]: handoff: note: expected texts"},
                    BadFile{R"({"customers":[{"name":"A","match":{"source":"crm","id":1},
                "timeline":[{"type":"call","daysAgo":1,"at":"9 o'clock","owner":"B"}]}]})",
                            u"customers[0]: timeline[0]: at: expected a time like 09:30"},
                    BadFile{R"({"meetings":[{"id":"m","summary":"S","inMinutes":-1}]})",
                            u"meetings[0]: inMinutes: expected a whole number from 0 to 527040"},
                    BadFile{R"({"meetings":[{"id":"m","summary":"S","company":"Nobody"}]})",
                            u"meetings[0]: company: expected the name of a customer"}));

}  // namespace corvellan::test
