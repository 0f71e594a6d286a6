#include "Views/BriefText.h"

#include <gtest/gtest.h>

#include "Views/ActivityText.h"
#include "Views/MeetingText.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

const DateStyle german{"de_DE", u"Europe/Berlin"_s};

QStringList texts(const QVariantList& rows, const QString& key) {
    QStringList found;
    for (const QVariant& row : rows)
        found.append(row.toMap().value(key).toString());
    return found;
}

StringOrNumber number(double value) {
    return {.value = value};
}

// MARK: - Dates and events

TEST(ActivityTextTest, stampsAreReadWithAndWithoutFractions) {
    for (const QString& stamp : {u"2026-03-02T08:05:59.250Z"_s, u"2026-03-02T08:05:59Z"_s}) {
        EXPECT_EQ(formatNoteDate(stamp, german), u"02.03.2026"_s);
        EXPECT_EQ(formatEventDate(stamp, german), u"02.03.26, 09:05"_s);
    }
}

TEST(ActivityTextTest, aTextThatIsNoStampStandsAsItIs) {
    for (const QString& other : {u"yesterday"_s, u"2026-03-02"_s, u""_s}) {
        EXPECT_EQ(formatNoteDate(other, german), other);
        EXPECT_EQ(formatEventDate(other, german), other);
    }
}

TEST(ActivityTextTest, everyTypeHasItsIconAndColor) {
    struct Row {
        QString type, icon;
        ColorRole color;
    };
    for (const Row& row :
         {Row{u"call"_s, u"phone"_s, ColorRole::green}, Row{u"email"_s, u"envelope"_s, ColorRole::blue},
          Row{u"meeting"_s, u"calendar"_s, ColorRole::purple}, Row{u"note"_s, u"note.text"_s, ColorRole::orange},
          Row{u"task"_s, u"checkmark.circle"_s, ColorRole::cyan},
          Row{u"letter"_s, u"circle.fill"_s, ColorRole::gray}}) {
        EXPECT_EQ(timelineEventIcon(row.type), row.icon);
        EXPECT_EQ(timelineEventColor(row.type), row.color);
    }
}

TEST(ActivityTextTest, aTypeInCapitalsTakesTheDefaultIcon) {
    EXPECT_EQ(timelineEventIcon(u"Call"), u"circle.fill"_s);
    EXPECT_EQ(timelineEventColor(u"Call"), ColorRole::gray);
}

// MARK: - Brief

TEST(BriefTextTest, revenueShowsWhatTheBriefHas) {
    SalesBrief brief{.revenue = SalesBriefRevenue{
                         .total_orders = 17, .total_usd = number(2'500'000), .last_12mo_usd = number(48'200)}};
    EXPECT_EQ(texts(brief::revenue(brief), u"label"_s), (QStringList{u"Total"_s, u"Last 12mo"_s, u"Orders"_s}));
    EXPECT_EQ(texts(brief::revenue(brief), u"value"_s), (QStringList{u"$2.5M"_s, u"$48K"_s, u"17"_s}));

    brief.revenue = SalesBriefRevenue{.total_orders = 0, .total_usd = StringOrNumber{}};
    EXPECT_EQ(texts(brief::revenue(brief), u"label"_s), QStringList{u"Orders"_s}) << "a word instead of a number";
    EXPECT_TRUE(brief::revenue({}).isEmpty());
}

TEST(BriefTextTest, productsComeWithTheirValueIfThereIsOne) {
    const SalesBrief brief{
        .topProducts = std::vector<SalesBriefProduct>{
            {.product_name = u"Monitor"_s, .total_usd = number(12'000)}, {.product_name = u"Probe"_s}, {}}};
    EXPECT_EQ(texts(brief::products(brief), u"name"_s), (QStringList{u"Monitor"_s, u"Probe"_s}));
    EXPECT_EQ(texts(brief::products(brief), u"value"_s), (QStringList{u"$12K"_s, QString{}}));
}

TEST(BriefTextTest, contactsAreNamedByWhatIsKnown) {
    const SalesBrief brief{.contacts = std::vector<SalesBriefContact>{
                               {.email = u"s@n.example"_s, .firstname = u"Sandra"_s, .lastname = u"Weiss"_s},
                               {.lastname = u"Brandt"_s},
                               {.email = u"info@n.example"_s},
                               {}}};
    EXPECT_EQ(texts(brief::contacts(brief), u"name"_s), (QStringList{u"Sandra Weiss"_s, u"Brandt"_s, QString{}}));
    EXPECT_EQ(texts(brief::contacts(brief), u"detail"_s),
              (QStringList{u"s@n.example"_s, QString{}, u"info@n.example"_s}));
}

TEST(BriefTextTest, notesStandNewestFirst) {
    const auto note = [](const QString& body, const std::optional<QString>& stamp) {
        return SalesBriefNote{.body = body, .hs_timestamp = stamp, .author = u"Kim"_s};
    };
    const SalesBrief brief{
        .notes = std::vector{note(u"old"_s, u"2025-01-05T10:00:00Z"_s), note(u"none"_s, std::nullopt),
                             note(u"new"_s, u"2026-02-01T10:00:00.5Z"_s), note(u"word"_s, u"yesterday"_s)}};
    const auto rows = brief::notes(brief, german);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0], (FixedRowsModel::Row{u"new"_s, u"Kim · 01.02.2026"_s}));
    EXPECT_EQ(rows[1], (FixedRowsModel::Row{u"old"_s, u"Kim · 05.01.2025"_s}));
    EXPECT_EQ(rows[2], (FixedRowsModel::Row{u"none"_s, u"Kim"_s}));
    EXPECT_EQ(rows[3], (FixedRowsModel::Row{u"word"_s, u"Kim · yesterday"_s}));
}

TEST(BriefTextTest, aNotesBodyLosesItsHardBlanksAndTheBlanksRoundIt) {
    EXPECT_EQ(brief::noteBody(u"&nbsp;\tCall&nbsp;back &nbsp;"_s), u"Call back"_s);
    EXPECT_EQ(brief::noteBody(u"\n a \n"_s), u"\n a \n"_s) << "line feeds are no blanks";
    EXPECT_EQ(brief::noteBody(u"<b>&amp;</b>"_s), u"<b>&amp;</b>"_s);
}

TEST(BriefTextTest, onlyPagesOfTheWebAreLinks) {
    EXPECT_EQ(brief::page(u"https://crm.example/c/42"_s), QUrl{u"https://crm.example/c/42"_s});
    EXPECT_EQ(brief::page(u"http://crm.example"_s), QUrl{u"http://crm.example"_s});
    for (const QString& other : {u""_s, u"no address"_s, u"https://"_s, u"file:///etc/passwd"_s,
                                 u"javascript:alert(1)"_s, u"https://crm.example/a b"_s, u"/c/42"_s})
        EXPECT_FALSE(brief::page(other)) << qPrintable(other);
    EXPECT_FALSE(brief::page(std::nullopt));
}

// MARK: - Timeline

TEST(BriefTextTest, anEventShowsItsSubjectAndHowItWent) {
    const TimelineResponse timeline{
        .timeline = {{.eventType = u"call"_s,
                      .date = u"2026-03-02T08:05:00Z"_s,
                      .subject = u"Renewal"_s,
                      .outcome = u"Connected"_s,
                      .owner = u"Kim"_s},
                     {.eventType = u"Call"_s, .date = u"yesterday"_s, .outcome = u""_s, .owner = u"Kim"_s}}};
    const auto rows = brief::events(timeline, german);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0],
              (FixedRowsModel::Row{u"phone"_s, u"green"_s, u"Renewal"_s, u"Connected"_s, u"02.03.26, 09:05"_s}));
    EXPECT_EQ(rows[1], (FixedRowsModel::Row{u"circle.fill"_s, u"gray"_s, u"Call"_s, u""_s, u"yesterday"_s}));
}

// MARK: - Meetings

CalendarMeeting meetingOf(int attendees) {
    CalendarMeeting meeting;
    for (int i = 1; i <= attendees; ++i)
        meeting.attendees.push_back({.email = u"a%1@n.example"_s.arg(i)});
    return meeting;
}

TEST(MeetingTextTest, sixAttendeesAreShownAndSevenAreCounted) {
    EXPECT_EQ(meeting::attendees(meetingOf(6)).size(), 6);
    EXPECT_EQ(meeting::moreAttendees(meetingOf(6)), QString{});
    EXPECT_EQ(meeting::attendees(meetingOf(7)).size(), 6);
    EXPECT_EQ(meeting::moreAttendees(meetingOf(7)), u"+1 more"_s);
    EXPECT_EQ(meeting::moreAttendees(meetingOf(40)), u"+34 more"_s);
}

TEST(MeetingTextTest, anAttendeeWithoutANameShowsTheLocalPartOfTheAddress) {
    EXPECT_EQ(meeting::nameOf({.email = u"sandra.weiss@nordwind@x.example"_s}), u"sandra.weiss"_s);
    EXPECT_EQ(meeting::nameOf({.email = u"room-4"_s}), u"room-4"_s);
    EXPECT_EQ(meeting::nameOf({.email = u"s@n.example"_s, .displayName = u"Sandra Weiss"_s}), u"Sandra Weiss"_s);
}

TEST(MeetingTextTest, theCompanysRowShowsWhatIsKnown) {
    CalendarMeeting meeting;
    EXPECT_EQ(meeting::companyName(meeting), QString{});
    meeting.matchedCompany = ResolvedCompany{.name = u"Nordwind"_s, .totalRevenue = 0};
    EXPECT_EQ(meeting::companyName(meeting), u"Nordwind"_s);
    EXPECT_EQ(meeting::companyCountry(meeting), QString{});
    EXPECT_EQ(meeting::companyRevenue(meeting), QString{}) << "nothing is no revenue";
    meeting.matchedCompany->country = u"Germany"_s;
    meeting.matchedCompany->totalRevenue = 248'000;
    EXPECT_EQ(meeting::companyCountry(meeting), u"· Germany"_s);
    EXPECT_EQ(meeting::companyRevenue(meeting), u"· $248K"_s);
}

}  // namespace

}  // namespace corvellan
