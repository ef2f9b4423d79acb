// The one way the controller changes a display: what a change that went
// through leaves behind, and what a refused one becomes.

#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/SampleMonitors.hpp>

#include "ScriptedDisplaySystem.hpp"

#include <HalvoraSimulation/VirtualClock.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

using namespace HalvoraCore;

namespace {

const DisplayMode full60{3440, 1440, 60};
const DisplayMode split60{1720, 1440, 60};

class DisplayWriterTest : public ::testing::Test {
protected:
    DisplayWriterTest() {
        system->attach("dcp-1", EDIDKit::sampleMonitor("ultrawide-34")->full, {full60, split60}, full60);
        writer.onOwnChange = [this](const DisplayID& changed) { ownChanges.push_back(changed); };
    }

    std::shared_ptr<TestDoubles::ScriptedDisplaySystem> system = std::make_shared<TestDoubles::ScriptedDisplaySystem>();
    RewriteGuard guard;
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock = std::make_shared<HalvoraSimulation::VirtualClock>(50);
    OwnedTimers timers{clock};
    DisplayWriter writer{system, guard, timers};
    std::vector<DisplayID> ownChanges;
    const DisplayID id{"dcp-1"};
    const EDIDKit::Bytes override = *EDIDKit::sampleMonitor("ultrawide-34")->pictureByPicture;

    template <typename Action> SplitError failureOf(Action action) {
        try {
            action();
        } catch (const SplitError& error) {
            return error;
        }
        ADD_FAILURE() << "no error";
        return SplitError::unreadableEDID();
    }
};

} // namespace

TEST_F(DisplayWriterTest, AWrittenOverrideIsStampedEndsTheDisplaysOfferAndIsNotedForQuit) {
    writer.writeOverride(override, id);
    EXPECT_EQ(system->overrideOn("dcp-1"), override);
    EXPECT_EQ(writer.lastOwnChange(), 50);
    EXPECT_EQ(ownChanges, std::vector<DisplayID>{id});
    EXPECT_TRUE(guard.hasOverrideWritten(id));
}

TEST_F(DisplayWriterTest, AFactoryRestoreIsStampedAndClearsWhatQuitWouldUndo) {
    writer.writeOverride(override, id);
    clock->advanceTo(52);
    writer.restoreFactory(id);
    EXPECT_EQ(system->overrideOn("dcp-1"), std::nullopt);
    EXPECT_EQ(writer.lastOwnChange(), 52);
    EXPECT_FALSE(guard.hasOverrideWritten(id));
    EXPECT_EQ(ownChanges.size(), 2u);
}

TEST_F(DisplayWriterTest, RefusedCallsBecomeHardwareErrorsNamingTheOperationAndLeaveNoStamp) {
    system->failApply = std::make_exception_ptr(std::runtime_error("port busy"));
    system->failRestore = std::make_exception_ptr(std::runtime_error("restore refused"));
    system->failSetMode = std::make_exception_ptr(std::runtime_error("switching mode failed: 1001"));
    EXPECT_EQ(failureOf([&] { writer.writeOverride(override, id); }),
              SplitError::hardware(DisplayOperation::writeOverride, "port busy"));
    EXPECT_EQ(failureOf([&] { writer.restoreFactory(id); }),
              SplitError::hardware(DisplayOperation::restoreFactory, "restore refused"));
    EXPECT_EQ(failureOf([&] { writer.setMode(split60, id); }),
              SplitError::hardware(DisplayOperation::setMode, "switching mode failed: 1001"));
    EXPECT_EQ(writer.lastOwnChange(), std::nullopt);
    EXPECT_TRUE(ownChanges.empty());
    EXPECT_FALSE(guard.hasOverrideWritten(id));
}

TEST_F(DisplayWriterTest, WhatTheSystemSaysAboutTheDisplayItselfStaysAsItIs) {
    system->failApply = std::make_exception_ptr(SplitError::displayNotFound());
    EXPECT_EQ(failureOf([&] { writer.writeOverride(override, id); }), SplitError::displayNotFound());
    system->failSetMode = std::make_exception_ptr(SplitError::systemFailure("switching mode failed: 1001"));
    EXPECT_EQ(failureOf([&] { writer.setMode(split60, id); }),
              SplitError::hardware(DisplayOperation::setMode, "switching mode failed: 1001"));
}

TEST_F(DisplayWriterTest, AHardwareErrorReadsAsTheSystemsOwnTextAndShowsAsASystemFailure) {
    const auto error = SplitError::hardware(DisplayOperation::writeOverride, "SetVirtualEDIDMode(apply) failed: 0x1");
    EXPECT_STREQ(error.what(), "SetVirtualEDIDMode(apply) failed: 0x1");
    EXPECT_EQ(errorMessage(error), (ErrorMessage{"error.systemFailure", std::nullopt}));
    EXPECT_NE(error, SplitError::hardware(DisplayOperation::restoreFactory, "SetVirtualEDIDMode(apply) failed: 0x1"));
}

TEST_F(DisplayWriterTest, PuttingAModeBackSkipsTheModeInForceAndOneNotOffered) {
    EXPECT_FALSE(writer.putBackMode(std::nullopt, id));
    EXPECT_FALSE(writer.putBackMode(full60, id)) << "already in it";
    EXPECT_FALSE(writer.putBackMode(DisplayMode{2560, 1440, 60}, id)) << "not offered";
    EXPECT_TRUE(system->calls.empty());
    EXPECT_TRUE(writer.putBackMode(split60, id));
    EXPECT_EQ(system->currentModeOf("dcp-1"), split60);
    EXPECT_EQ(writer.lastOwnChange(), 50);
}

TEST_F(DisplayWriterTest, TheOwnChangeCoolDownLastsEightSecondsFromTheLastChangeOrAttempt) {
    EXPECT_FALSE(writer.inOwnChangeCooldown());
    writer.noteAttempt();
    clock->advanceTo(57.9);
    EXPECT_TRUE(writer.inOwnChangeCooldown());
    clock->advanceTo(58);
    EXPECT_FALSE(writer.inOwnChangeCooldown());
}
