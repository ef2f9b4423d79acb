// The re-apply loop guard on its own: how many rewrites of one override a
// display gets, and what lets it be written again.

#include <HalvoraCore/RewriteGuard.hpp>

#include <gtest/gtest.h>

using namespace HalvoraCore;
using Verdict = RewriteGuard::Verdict;

namespace {

const DisplayID left("dcp-1");
const DisplayID right("dcp-2");
const EDIDKit::Bytes override = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 1};
const EDIDKit::Bytes otherOverride = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 2};

/// Writes whenever the guard lets it, at the given times; the verdicts.
std::vector<Verdict> rewrite(RewriteGuard& guard, const DisplayID& display, const EDIDKit::Bytes& edid,
                             std::initializer_list<double> times) {
    std::vector<Verdict> verdicts;
    for (const double t : times) {
        verdicts.push_back(guard.check(display, edid, t));
        if (verdicts.back() == Verdict::write) guard.noteRewrite(display, edid, t);
    }
    return verdicts;
}

} // namespace

TEST(RewriteGuard, TheFourthRewriteWithinAMinuteStopsAndIsToldOnce) {
    RewriteGuard guard;
    EXPECT_EQ(rewrite(guard, left, override, {0, 4, 8, 12, 16, 20}),
              (std::vector{Verdict::write, Verdict::write, Verdict::write, Verdict::stopNow, Verdict::stopped,
                           Verdict::stopped}));
    EXPECT_TRUE(guard.isStopped(left));
}

TEST(RewriteGuard, RewritesSpreadOverMoreThanAMinuteGoOn) {
    RewriteGuard guard;
    for (const Verdict v : rewrite(guard, left, override, {0, 25, 50, 75, 100, 125, 150})) EXPECT_EQ(v, Verdict::write);
    EXPECT_FALSE(guard.isStopped(left));
}

TEST(RewriteGuard, ADisplayThatReportsTheOverrideIsNeverStopped) {
    RewriteGuard guard;
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(guard.check(left, override, i), Verdict::write) << "write " << i;
        guard.noteRewrite(left, override, i);
        guard.noteArrived(left);
    }
}

TEST(RewriteGuard, AnotherOverrideIsCountedAfresh) {
    RewriteGuard guard;
    rewrite(guard, left, override, {0, 1, 2});
    EXPECT_EQ(rewrite(guard, left, otherOverride, {3, 4, 5}),
              (std::vector{Verdict::write, Verdict::write, Verdict::write}));
    EXPECT_EQ(guard.check(left, otherOverride, 6), Verdict::stopNow);
}

TEST(RewriteGuard, EachDisplayIsCountedOnItsOwn) {
    RewriteGuard guard;
    rewrite(guard, left, override, {0, 1, 2, 3});
    EXPECT_TRUE(guard.isStopped(left));
    EXPECT_EQ(guard.check(right, override, 4), Verdict::write);
}

TEST(RewriteGuard, AReplugAndTheUserActingEachLetTheDisplayBeWrittenAgain) {
    RewriteGuard guard;
    rewrite(guard, left, override, {0, 1, 2, 3});
    guard.releaseAll();
    EXPECT_FALSE(guard.isStopped(left));
    EXPECT_EQ(rewrite(guard, left, override, {4, 5, 6, 7}),
              (std::vector{Verdict::write, Verdict::write, Verdict::write, Verdict::stopNow}));

    guard.keepOnly({right}); // the monitor was unplugged
    EXPECT_FALSE(guard.isStopped(left));
    EXPECT_EQ(guard.check(left, override, 8), Verdict::write);
}

TEST(RewriteGuard, RemembersWhichDisplaysCarryAnOverrideOfThisRun) {
    RewriteGuard guard;
    EXPECT_FALSE(guard.hasOverrideWritten(left));
    guard.noteRewrite(left, override, 0);
    guard.noteOverrideWritten(right);
    EXPECT_TRUE(guard.hasOverrideWritten(left));
    EXPECT_TRUE(guard.hasOverrideWritten(right));
    guard.noteFactoryRestored(left);
    EXPECT_FALSE(guard.hasOverrideWritten(left));
    EXPECT_TRUE(guard.hasOverrideWritten(right));
}

TEST(RewriteGuard, AUserWriteIsNotCountedAsARewrite) {
    RewriteGuard guard;
    guard.noteOverrideWritten(left);
    EXPECT_EQ(rewrite(guard, left, override, {0, 1, 2, 3}),
              (std::vector{Verdict::write, Verdict::write, Verdict::write, Verdict::stopNow}));
}

TEST(RewriteGuard, RemembersWhatADisplayReportedInsteadOfItsOverrideUntilItsFactoryEDIDIsBack) {
    RewriteGuard guard;
    const EDIDKit::Bytes altered = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 9};
    guard.noteReportedInstead(left, altered);
    EXPECT_FALSE(guard.isReportedInstead(left, altered)) << "nothing of ours was written there";
    guard.noteRewrite(left, override, 0);
    guard.noteReportedInstead(left, altered);
    EXPECT_TRUE(guard.isReportedInstead(left, altered));
    EXPECT_FALSE(guard.isReportedInstead(left, override));
    EXPECT_FALSE(guard.isReportedInstead(right, altered));
    guard.noteFactoryRestored(left);
    EXPECT_FALSE(guard.isReportedInstead(left, altered));
}
