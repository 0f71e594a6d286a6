#include "Views/HandoffWindowView.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>

#include "Support/FakeDesktop.h"
#include "Support/TestLoop.h"
#include "Views/HandoffStatistics.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {

namespace {

const CrmAddress crm{.url = u"https://crm.example"_s, .portal = u"42"_s};

class HandoffWindowViewTest : public testing::Test {
protected:
    HandoffWindowView& make(HandoffResponse handoff) {
        view.emplace(std::move(handoff), browser, crm, [this] { ++closings; });
        return *view;
    }

    CallLog log;
    FakeWebBrowser browser{log};
    std::optional<HandoffWindowView> view;
    int closings = 0;
};

}  // namespace

// MARK: - Statistics

TEST(HandoffStatisticsTest, eachStandsOnlyWhenItIsAtLeastOne) {
    using Statistics = QList<HandoffStatistic>;
    EXPECT_EQ(handoffStatistics({}), Statistics{});
    EXPECT_EQ(handoffStatistics(HandoffMeta{}), Statistics{});
    EXPECT_EQ(handoffStatistics(HandoffMeta{.deviceCount = 0, .callCount = -1, .engagementEmails = 0}), Statistics{});
    EXPECT_EQ(
        handoffStatistics(HandoffMeta{.deviceCount = 12, .callCount = 3, .engagementEmails = 1}),
        (Statistics{{u"server.rack"_s, u"12 devices"_s}, {u"phone"_s, u"3 calls"_s}, {u"envelope"_s, u"1 emails"_s}}));
    EXPECT_EQ(handoffStatistics(HandoffMeta{.callCount = 1}), (Statistics{{u"phone"_s, u"1 calls"_s}}));
}

TEST_F(HandoffWindowViewTest, theStatisticsAreRows) {
    EXPECT_FALSE(make({.handoffNote = u"x"_s}).hasStatistics());
    auto& whole = make({.handoffNote = u"x"_s, .meta = HandoffMeta{.deviceCount = 2, .engagementEmails = 5}});
    ASSERT_TRUE(whole.hasStatistics());
    auto* const rows = qobject_cast<FixedRowsModel*>(whole.statistics());
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->rowCount(), 2);
    EXPECT_EQ(rows->value(0, "symbol"), u"server.rack"_s);
    EXPECT_EQ(rows->value(1, "text"), u"5 emails"_s);
}

// MARK: - The company's page

TEST(CrmAddressTest, theCompanysPageIsThatOfThePortal) {
    EXPECT_EQ(crm.companyPage(u"77"_s), QUrl{u"https://crm.example/contacts/42/company/77"_s});
}

TEST(CrmAddressTest, withoutAnIdThereIsNoPage) {
    EXPECT_EQ(crm.companyPage(std::nullopt), std::nullopt);
    EXPECT_EQ(crm.companyPage(u""_s), std::nullopt);
}

TEST(CrmAddressTest, anAddressThatCantBeParsedGivesNoPage) {
    for (const auto& id : {u"7 7"_s, u"7%zz"_s, u"<7>"_s, u"7\n"_s})
        EXPECT_EQ(crm.companyPage(id), std::nullopt) << id.toStdString();
    EXPECT_EQ((CrmAddress{.url = u"no address"_s, .portal = u"42"_s}.companyPage(u"77"_s)), std::nullopt);
    EXPECT_EQ((CrmAddress{}.companyPage(u"77"_s)), std::nullopt);
}

TEST(CrmAddressTest, anIdNeverLeadsToAnotherHost) {
    for (const auto& id : {u"@evil.example"_s, u"//evil.example"_s, u"..//evil.example/"_s})
        if (const auto page = crm.companyPage(id))
            EXPECT_EQ(page->host(), u"crm.example"_s) << id.toStdString();
}

TEST_F(HandoffWindowViewTest, theCompanysPageOpensInTheBrowser) {
    auto& whole = make({.handoffNote = u"x"_s, .meta = HandoffMeta{.hubspotCompanyId = u"77"_s}});
    EXPECT_TRUE(whole.hasCompanyPage());
    whole.openCompanyPage();
    settle();
    ASSERT_EQ(browser.pages.size(), 1U);
    EXPECT_EQ(browser.pages[0], QUrl{u"https://crm.example/contacts/42/company/77"_s});
    EXPECT_EQ(whole.notice(), QString{});
}

TEST_F(HandoffWindowViewTest, withoutAnIdThereIsNothingToOpen) {
    EXPECT_FALSE(make({.handoffNote = u"x"_s}).hasCompanyPage());
    EXPECT_FALSE(make({.handoffNote = u"x"_s, .meta = HandoffMeta{.hubspotCompanyId = u""_s}}).hasCompanyPage());
    view->openCompanyPage();
    settle();
    EXPECT_TRUE(browser.pages.empty());
}

// MARK: - Links, copying, closing

TEST_F(HandoffWindowViewTest, linksOfTheNoteAreContactsAndNeverPages) {
    make({.handoffNote = u"x"_s}).openLink(u"tel:+49 30 123456"_s);
    settle();
    ASSERT_EQ(browser.contacts.size(), 1U);
    EXPECT_EQ(browser.contacts[0].path(), u"+49 30 123456"_s);
    view->openLink(u"https://x.example"_s);
    settle();
    EXPECT_TRUE(browser.pages.empty());
}

TEST_F(HandoffWindowViewTest, whatCantBeOpenedIsSaidUntilTheNextTry) {
    browser.failure = TransportError{u"No program here takes telephone numbers."_s};
    make({.handoffNote = u"x"_s}).openLink(u"tel:+49 30 123456"_s);
    settle();
    EXPECT_EQ(view->notice(), u"No program here takes telephone numbers."_s);
    browser.failure.reset();
    view->openLink(u"mailto:a@b.example"_s);
    settle();
    EXPECT_EQ(view->notice(), QString{});
}

TEST_F(HandoffWindowViewTest, theWindowMayGoWhileTheDesktopIsAsked) {
    browser.gate.close();
    browser.failure = TransportError{u"Too late."_s};
    make({.handoffNote = u"x"_s}).openLink(u"mailto:a@b.example"_s);
    settle();
    view.reset();
    browser.gate.open();
    settle();
    EXPECT_EQ(browser.contacts.size(), 1U);
}

TEST_F(HandoffWindowViewTest, theNoteIsCopiedAsItWasWritten) {
    const QString note = u"## A & B\n**c** | d\n"_s;
    make({.handoffNote = note}).copyNote();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), note);
}

TEST_F(HandoffWindowViewTest, closingIsTheOwnersDoing) {
    EXPECT_TRUE(make({.handoffNote = u"x"_s}).canClose());
    view->close();
    EXPECT_EQ(closings, 1);
    HandoffWindowView without{HandoffResponse{}, browser, crm, std::nullopt};
    EXPECT_FALSE(without.canClose());
    without.close();
}

}  // namespace corvellan::test
