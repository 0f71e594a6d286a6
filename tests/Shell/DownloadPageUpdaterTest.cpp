#include "Shell/DownloadPageUpdater.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Support/FakeDesktop.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace corvellan::test {
namespace {

class DownloadPageUpdaterTest : public testing::Test {
protected:
    void check() {
        updater->checkForUpdates();
        settle();
    }

    CallLog log;
    FakeWebBrowser browser{log};
    FakeAlertPresenter alerts{log};
    const QUrl page{u"https://download.example/bram?for=linux"_s};
    std::unique_ptr<DownloadPageUpdater> updater = std::make_unique<DownloadPageUpdater>(browser, alerts, page);
};

TEST_F(DownloadPageUpdaterTest, opensTheDownloadPage) {
    check();
    EXPECT_THAT(browser.pages, ElementsAre(page));
    EXPECT_TRUE(alerts.alerts.empty());
    check();
    EXPECT_THAT(browser.pages, ElementsAre(page, page));
}

TEST_F(DownloadPageUpdaterTest, tellsTheAddressWhereNoBrowserOpens) {
    browser.failure = TransportError{u"No web browser is here."_s};
    check();
    ASSERT_EQ(alerts.alerts.size(), 1U);
    EXPECT_EQ(alerts.alerts[0].messageText, u"The download page could not be opened"_s);
    EXPECT_EQ(alerts.alerts[0].informativeText,
              u"No web browser is here.\n\nNew versions are at:\nhttps://download.example/bram?for=linux"_s);
    EXPECT_THAT(alerts.alerts[0].buttonTitles, ElementsAre(u"OK"_s));
}

TEST_F(DownloadPageUpdaterTest, showsOneAlertHoweverOftenItIsAsked) {
    browser.failure = TransportError{u"No web browser is here."_s};
    check();
    check();
    EXPECT_EQ(alerts.openCount(), 1U);
    alerts.press(0);
    settle();
    check();
    EXPECT_EQ(alerts.alerts.size(), 2U);
}

TEST_F(DownloadPageUpdaterTest, mayGoWhileTheBrowserOpens) {
    browser.failure = TransportError{u"No web browser is here."_s};
    browser.gate.close();
    check();
    updater.reset();
    browser.gate.open();
    settle();
    EXPECT_EQ(alerts.openCount(), 1U);
    alerts.press(0);
    settle();
}

}  // namespace
}  // namespace corvellan::test
