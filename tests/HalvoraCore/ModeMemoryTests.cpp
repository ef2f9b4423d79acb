#include <HalvoraCore/ModeMemory.hpp>

#include <gtest/gtest.h>

using namespace HalvoraCore;

TEST(ModeMemory, FreshMemoryRecordsAlreadyActiveAtAnyTime) {
    const ModeMemory memory;
    EXPECT_TRUE(memory.shouldRecord(ApplyOutcome::alreadyActive, -1e9));
    EXPECT_TRUE(memory.shouldRecord(ApplyOutcome::alreadyActive, 0));
    EXPECT_TRUE(memory.shouldRecord(ApplyOutcome::alreadyActive, 1e9));
}

TEST(ModeMemory, QuietPeriodEndsTenSecondsAfterApplyInclusive) {
    ModeMemory memory;
    memory.noteApplied(100);
    EXPECT_FALSE(memory.shouldRecord(ApplyOutcome::alreadyActive, 109.9));
    EXPECT_TRUE(memory.shouldRecord(ApplyOutcome::alreadyActive, 110));
}

TEST(ModeMemory, OlderNoteNeverShortensTheQuietPeriod) {
    ModeMemory memory;
    memory.noteApplied(100);
    memory.noteDisplayChange(95);
    EXPECT_EQ(memory.quietUntil, 110);
}

TEST(ModeMemory, DisplayChangeOpensAQuietPeriodLikeApply) {
    ModeMemory memory;
    memory.noteDisplayChange(50);
    EXPECT_EQ(memory.quietUntil, 60);
    EXPECT_FALSE(memory.shouldRecord(ApplyOutcome::alreadyActive, 59));
}

TEST(ModeMemory, AppliedAndDisplayNotFoundAreNeverRecorded) {
    ModeMemory memory;
    EXPECT_FALSE(memory.shouldRecord(ApplyOutcome::applied, 0));
    EXPECT_FALSE(memory.shouldRecord(ApplyOutcome::displayNotFound, 0));
    memory.noteApplied(0);
    EXPECT_FALSE(memory.shouldRecord(ApplyOutcome::applied, 1000));
    EXPECT_FALSE(memory.shouldRecord(ApplyOutcome::displayNotFound, 1000));
}
