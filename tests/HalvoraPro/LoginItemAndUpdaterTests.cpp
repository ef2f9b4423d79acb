#include <HalvoraPro/LoginItem.hpp>
#include <HalvoraPro/Updater.hpp>
#include <HalvoraSimulation/SimulatedLoginItemService.hpp>
#include <HalvoraSimulation/SimulatedUserDefaults.hpp>

#include "ScriptedUpdaterDriver.hpp"

#include <gtest/gtest.h>

using HalvoraPro::LoginItem;
using HalvoraPro::LoginItemService;
using HalvoraPro::UserDefaults;

namespace {

class LoginItemTest : public ::testing::Test {
protected:
    std::shared_ptr<HalvoraSimulation::SimulatedLoginItemService> service =
        std::make_shared<HalvoraSimulation::SimulatedLoginItemService>();
    std::shared_ptr<HalvoraSimulation::SimulatedUserDefaults> defaults =
        std::make_shared<HalvoraSimulation::SimulatedUserDefaults>();
    std::vector<std::string> log;
    LoginItem item{service, defaults, [this](const std::string& line) { log.push_back(line); }};
};

TEST_F(LoginItemTest, AFailedRegistrationLeavesTheDefaultUnsetAndALaterSuccessSetsIt) {
    service->refuse = true;
    item.enableByDefaultOnce();
    EXPECT_FALSE(defaults->boolValue(UserDefaults::loginItemDefaultApplied));
    EXPECT_FALSE(item.isEnabled());
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0], "Halvora Pro: login item register failed: Operation not permitted");

    service->refuse = false;
    item.enableByDefaultOnce();
    EXPECT_EQ(defaults->boolValue(UserDefaults::loginItemDefaultApplied), true);
    EXPECT_TRUE(item.isEnabled());
}

TEST_F(LoginItemTest, OnceAppliedTheDefaultNeverTurnsTheItemOnAgain) {
    item.enableByDefaultOnce();
    ASSERT_TRUE(item.setEnabled(false)); // the user turns it off in the menu
    item.enableByDefaultOnce();
    EXPECT_FALSE(item.isEnabled());
}

TEST_F(LoginItemTest, AnItemAwaitingApprovalCountsAsEnabled) {
    service->setStatus(LoginItemService::Status::requiresApproval);
    EXPECT_TRUE(item.isEnabled());
    service->setStatus(LoginItemService::Status::notFound);
    EXPECT_FALSE(item.isEnabled());
}

TEST_F(LoginItemTest, AFailedUnregistrationIsLoggedAndAnsweredFalse) {
    item.setEnabled(true);
    service->refuse = true;
    EXPECT_FALSE(item.setEnabled(false));
    EXPECT_TRUE(item.isEnabled());
    EXPECT_EQ(log.back(), "Halvora Pro: login item unregister failed: Operation not permitted");
}

TEST(UserDefaults, AnAbsentKeyReadsAsFalse) {
    HalvoraSimulation::SimulatedUserDefaults defaults;
    EXPECT_FALSE(defaults.boolValue(UserDefaults::keepSettingsOnQuit));
    EXPECT_FALSE(defaults.flag(UserDefaults::keepSettingsOnQuit));
    defaults.setBool(UserDefaults::keepSettingsOnQuit, true);
    EXPECT_TRUE(defaults.flag(UserDefaults::keepSettingsOnQuit));
}

TEST(Updater, AScheduledUpdateOutOfFocusIsRememberedUntilTheUserAttendsToIt) {
    HalvoraPro::Updater updater(std::make_shared<TestDoubles::ScriptedUpdaterDriver>());
    EXPECT_FALSE(updater.pendingVersion());
    EXPECT_TRUE(updater.supportsGentleScheduledUpdateReminders());
    EXPECT_FALSE(updater.shouldHandleShowingScheduledUpdate(false));
    EXPECT_TRUE(updater.shouldHandleShowingScheduledUpdate(true));
    updater.willHandleShowingUpdate(false, "2.0");
    EXPECT_EQ(updater.pendingVersion(), "2.0");
    updater.didReceiveUserAttention();
    EXPECT_FALSE(updater.pendingVersion());
}

TEST(Updater, AnUpdateTheFrameworkShowsItselfLeavesThePendingVersionAsItWas) {
    HalvoraPro::Updater updater(std::make_shared<TestDoubles::ScriptedUpdaterDriver>());
    updater.willHandleShowingUpdate(true, "2.0");
    EXPECT_FALSE(updater.pendingVersion());
    updater.willHandleShowingUpdate(false, "2.1");
    updater.willHandleShowingUpdate(true, "2.2");
    EXPECT_EQ(updater.pendingVersion(), "2.1");
    updater.willFinishUpdateSession();
    EXPECT_FALSE(updater.pendingVersion());
}

} // namespace
