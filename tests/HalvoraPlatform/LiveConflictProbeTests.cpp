// Finding and stopping the other override tools, over scripted seams.

#include "ScriptedCoreGraphics.hpp"
#include "ScriptedOtherApplication.hpp"
#include "ScriptedProcessSpawner.hpp"

#include <HalvoraPlatform/LiveConflictProbe.hpp>
#include <gtest/gtest.h>

using namespace HalvoraPlatform;
using HalvoraCore::ConflictingTool;
using HalvoraCore::ConflictSet;
using TestDoubles::ScriptedProcessSpawner;

namespace {

constexpr const char* label = "test.edid-override";

class ConflictProbeTest : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedProcessSpawner> spawner = std::make_shared<ScriptedProcessSpawner>();
    std::shared_ptr<TestDoubles::ScriptedOtherApplication> app =
        std::make_shared<TestDoubles::ScriptedOtherApplication>();
    std::shared_ptr<TestDoubles::ScriptedCoreGraphics> cg =
        std::make_shared<TestDoubles::ScriptedCoreGraphics>();
    HalvoraPlatform::LiveConflictProbe probe{
        {HalvoraPlatform::Launchctl(spawner), app, cg, label, [] { return 501u; }}};

    void SetUp() override {
        spawner->byDefault = {true, 0, {false, 113}}; // "print": no such service
        cg->add(1, 0x610, 0xA050, 0).builtin = true;
        cg->add(2, 4268, 41229, 809579852);
    }
    /// BetterDisplay runs with its automatic override on for one display.
    void betterDisplayAutoApplies(std::optional<std::string> storedIdentifiers) {
        app->running.insert(HalvoraPlatform::OtherOverrideTools::betterDisplayBundleID);
        app->set("autoApplyEDIDOverride@12345", true);
        if (storedIdentifiers) app->set("storedIdentifiers@12345", *storedIdentifiers);
    }
    static ScriptedProcessSpawner::Script exitWith(int code) { return {true, 0, {false, code}}; }
};

} // namespace

TEST_F(ConflictProbeTest, TheLaunchAgentIsAddressedInTheUsersGUIDomain) {
    EXPECT_EQ(probe.serviceTarget(), "gui/501/test.edid-override");
}

TEST_F(ConflictProbeTest, ALoadedLaunchAgentIsAConflict) {
    spawner->next.push_back(exitWith(0));
    EXPECT_EQ(probe.detect(), ConflictSet{ConflictingTool::edidOverrideService});
    EXPECT_EQ(spawner->spawned,
              (std::vector<std::string>{"/bin/launchctl print gui/501/test.edid-override"}));
    EXPECT_EQ(probe.detect(), ConflictSet{}) << "exit 113: not loaded";
}

TEST_F(ConflictProbeTest, WithoutTheServicesLabelLaunchctlIsNeverAskedAndTheServiceNeverFound) {
    HalvoraPlatform::LiveConflictProbe unlabelled{{HalvoraPlatform::Launchctl(spawner), app, cg, "", [] { return 501u; }}};
    spawner->byDefault = exitWith(0); // whatever launchctl would say
    EXPECT_EQ(unlabelled.detect(), ConflictSet{});
    EXPECT_TRUE(spawner->spawned.empty());
}

TEST_F(ConflictProbeTest, ALaunchctlThatHangsCountsAsNotLoaded) {
    spawner->next.push_back({true, -1, {}});
    EXPECT_EQ(probe.detect(), ConflictSet{});
    EXPECT_EQ(spawner->kills, 1);
}

TEST_F(ConflictProbeTest, BetterDisplayInstalledButNotRunningIsNeverReported) {
    app->set("autoApplyEDIDOverride@12345", true);
    EXPECT_EQ(probe.detect(), ConflictSet{});
    EXPECT_EQ(app->synchronizations, 0);
}

TEST_F(ConflictProbeTest, AnAutomaticOverrideWithoutStoredIdentifiersIsAConflict) {
    betterDisplayAutoApplies(std::nullopt);
    EXPECT_EQ(probe.detect(), ConflictSet{ConflictingTool::betterDisplay});
    EXPECT_EQ(app->synchronizations, 1);
}

TEST_F(ConflictProbeTest, AnAutomaticOverrideForADisplayThatIsNotConnectedIsNoConflict) {
    betterDisplayAutoApplies(R"([{"vendorNumber": 4268, "modelNumber": 41229, "serial": 1}])");
    EXPECT_EQ(probe.detect(), ConflictSet{});
}

TEST_F(ConflictProbeTest, AnAutomaticOverrideForAConnectedDisplayIsAConflict) {
    betterDisplayAutoApplies(R"([{"vendorNumber": 1, "modelNumber": 2},
                                 {"vendorNumber": 4268, "modelNumber": 41229, "serial": 809579852}])");
    EXPECT_EQ(probe.detect(), ConflictSet{ConflictingTool::betterDisplay});
}

TEST_F(ConflictProbeTest, TheBuiltInPanelIsNotAConnectedDisplayForThis) {
    EXPECT_FALSE(
        probe.isConnected(R"([{"vendorNumber": 1552, "modelNumber": 41040, "serial": 0}])"));
}

TEST_F(ConflictProbeTest, AMissingSerialCountsAsZero) {
    cg->add(3, 7, 8, 0);
    EXPECT_TRUE(probe.isConnected(R"([{"vendorNumber": 7, "modelNumber": 8}])"));
    EXPECT_TRUE(probe.isConnected(R"([{"vendorNumber": 7, "modelNumber": 8, "serial": "x"}])"));
}

TEST_F(ConflictProbeTest, WhatCannotBeUnderstoodIsTakenToConcernAConnectedDisplay) {
    for (const char* text : {"not json", "{}", "[]", "[1]", R"([{"modelNumber": 3}])",
                             R"([{"vendorNumber": "1", "modelNumber": 3}])"})
        EXPECT_TRUE(probe.isConnected(std::string(text))) << text;
    EXPECT_TRUE(probe.isConnected(std::nullopt));
}

TEST_F(ConflictProbeTest, OnlyATrueBooleanTurnsTheAutomaticOverrideOn) {
    app->running.insert(HalvoraPlatform::OtherOverrideTools::betterDisplayBundleID);
    app->set("autoApplyEDIDOverride@1", false);
    app->set("autoApplyEDIDOverride@2", std::string("true"));
    app->set("someOtherKey", true);
    EXPECT_FALSE(probe.betterDisplayAutoApplies());
    app->keyList.reset(); // no key list at all
    EXPECT_FALSE(probe.betterDisplayAutoApplies());
}

TEST_F(ConflictProbeTest, BetterDisplayIsNeverStopped) {
    probe.takeOver(ConflictingTool::betterDisplay);
    EXPECT_TRUE(spawner->spawned.empty());
}

TEST_F(ConflictProbeTest, AnAgentThatIgnoresBootoutAndDisableButGoesWithinTwoSecondsIsTakenOver) {
    spawner->next = {exitWith(5), exitWith(0)}; // bootout fails, disable succeeds
    for (int i = 0; i < 6; ++i)
        spawner->next.push_back(exitWith(0)); // still loaded for a while
    probe.takeOver(ConflictingTool::edidOverrideService);
    const std::string target = "gui/501/test.edid-override";
    ASSERT_GE(spawner->spawned.size(), 3u);
    EXPECT_EQ(spawner->spawned[0], "/bin/launchctl bootout " + target);
    EXPECT_EQ(spawner->spawned[1], "/bin/launchctl disable " + target);
    EXPECT_EQ(spawner->spawned[2], "/bin/launchctl print " + target);
    EXPECT_EQ(spawner->spawned.size(), 2u + 20u + 1u);
    EXPECT_EQ(spawner->sleptMilliseconds, 6 * 100)
        << "a pause after each print that still found it";
}

TEST_F(ConflictProbeTest, AFailedDisableFailsTheTakeOverWithoutWaiting) {
    spawner->next = {exitWith(0), exitWith(1)};
    EXPECT_THROW(probe.takeOver(ConflictingTool::edidOverrideService), HalvoraPlatform::TakeOverFailed);
    EXPECT_EQ(spawner->spawned.size(), 2u);
}

TEST_F(ConflictProbeTest, AnAgentThatStaysLoadedFailsTheTakeOver) {
    spawner->byDefault = exitWith(0);
    EXPECT_THROW(probe.takeOver(ConflictingTool::edidOverrideService), HalvoraPlatform::TakeOverFailed);
    EXPECT_EQ(spawner->sleptMilliseconds, 20 * 100);
}
