#include "Shell/LaunchAtLogin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Base/Preferences.h"
#include "Support/FakeDesktop.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace corvellan::test {
namespace {

class LaunchAtLoginTest : public testing::Test {
protected:
    CallLog log;
    FakeLoginItems items{log};
    MemoryPreferences preferences;
    LaunchAtLogin launch{items, preferences};
};

TEST_F(LaunchAtLoginTest, theFirstLaunchRegistersTheProgram) {
    launch.registerIfFirstLaunch();
    EXPECT_TRUE(launch.isEnabled());
    EXPECT_EQ(preferences.boolean(u"hasRegisteredLoginItem"_s), true);
}

TEST_F(LaunchAtLoginTest, theSecondLaunchDoesNothingWhateverTheServicesStatus) {
    preferences.setBoolean(u"hasRegisteredLoginItem"_s, true);
    for (const bool isRegistered : {false, true}) {
        items.isRegistered = isRegistered;
        launch.registerIfFirstLaunch();
        EXPECT_EQ(launch.isEnabled(), isRegistered);
    }
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(LaunchAtLoginTest, whoSwitchedItOffStaysOff) {
    launch.registerIfFirstLaunch();
    launch.setEnabled(false);
    LaunchAtLogin{items, preferences}.registerIfFirstLaunch();
    EXPECT_FALSE(launch.isEnabled());
}

TEST_F(LaunchAtLoginTest, aFirstAttemptThatFailsIsNotRepeated) {
    items.failure = TransportError{u"The folder can't be written"_s};
    launch.registerIfFirstLaunch();
    EXPECT_EQ(preferences.boolean(u"hasRegisteredLoginItem"_s), true);
    items.failure.reset();
    launch.registerIfFirstLaunch();
    EXPECT_FALSE(launch.isEnabled());
    EXPECT_THAT(log, ElementsAre("loginItems.registerItem"));
}

TEST_F(LaunchAtLoginTest, theFlagIsSetBeforeTheAttempt) {
    // Looks at the flag at the moment of the registration.
    struct WatchingItems final : LoginItems {
        explicit WatchingItems(Preferences& watched) : preferences(watched) {}
        [[nodiscard]] bool isEnabled() const override { return false; }
        std::expected<void, Error> registerItem() override {
            flag = preferences.boolean(u"hasRegisteredLoginItem"_s);
            return {};
        }
        std::expected<void, Error> unregisterItem() override { return {}; }
        Preferences& preferences;
        std::optional<bool> flag;
    };
    WatchingItems watching{preferences};
    LaunchAtLogin{watching, preferences}.registerIfFirstLaunch();
    EXPECT_EQ(watching.flag, true);
}

TEST_F(LaunchAtLoginTest, aFlagThatIsFalseOrNoBooleanCountsAsAFirstLaunch) {
    preferences.setBoolean(u"hasRegisteredLoginItem"_s, false);
    launch.registerIfFirstLaunch();
    preferences.setString(u"hasRegisteredLoginItem"_s, u"perhaps"_s);
    launch.registerIfFirstLaunch();
    EXPECT_THAT(log, ElementsAre("loginItems.registerItem", "loginItems.registerItem"));
}

TEST_F(LaunchAtLoginTest, aFailureIsDroppedAndTheNextReadShowsTheTruth) {
    items.failure = TransportError{u"The folder can't be written"_s};
    launch.setEnabled(true);
    EXPECT_FALSE(launch.isEnabled());
    items.isRegistered = true;
    launch.setEnabled(false);
    EXPECT_TRUE(launch.isEnabled());
    EXPECT_THAT(log, ElementsAre("loginItems.registerItem", "loginItems.unregisterItem"));
}

}  // namespace
}  // namespace corvellan::test
