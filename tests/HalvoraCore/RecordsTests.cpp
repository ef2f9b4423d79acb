#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/DisplaySettings.hpp>
#include <HalvoraCore/DisplayState.hpp>
#include <HalvoraCore/PBPBehavior.hpp>

#include <gtest/gtest.h>

#include <unordered_set>

using namespace HalvoraCore;

TEST(DisplayMode, DescriptionUsesTheMultiplicationSignAndWholeHertz) {
    EXPECT_EQ((DisplayMode{1920, 1080, 60}).description(), "1920\u00D71080@60");
    EXPECT_EQ((DisplayMode{2560, 1440, 60}).resolution(), (EDIDKit::Resolution{2560, 1440}));
}

TEST(DisplayMode, EqualAndHashedOverAllThreeFields) {
    const std::unordered_set<DisplayMode> modes{{1920, 1080, 60}, {1920, 1080, 59}, {1920, 1080, 60}};
    EXPECT_EQ(modes.size(), 2u);
}

TEST(DisplayIdentity, DifferentSerialNumbersAreDifferentMonitors) {
    EXPECT_NE((DisplayIdentity{1, 2, 3}), (DisplayIdentity{1, 2, 4}));
    const std::unordered_set<DisplayIdentity> set{{1, 2, 3}, {1, 2, 4}, {1, 2, 3}};
    EXPECT_EQ(set.size(), 2u);
}

TEST(DisplayID, ComparesAndHashesByRawValue) {
    EXPECT_EQ(DisplayID("dcp-1"), DisplayID("dcp-1"));
    EXPECT_NE(DisplayID("dcp-1"), DisplayID("dcp-2"));
    EXPECT_EQ(std::unordered_set<DisplayID>({DisplayID("a"), DisplayID("a")}).size(), 1u);
}

TEST(PBPBehavior, RawValuesAreTheCaseNamesAndCaseSensitive) {
    for (auto b : {PBPBehavior::switchesOnToggle, PBPBehavior::latchedAtPlug, PBPBehavior::fixedMissingSplit,
                   PBPBehavior::fixedWithSplit})
        EXPECT_EQ(pbpBehavior(rawValue(b)), b);
    EXPECT_EQ(rawValue(PBPBehavior::latchedAtPlug), "latchedAtPlug");
    EXPECT_EQ(pbpBehavior("LatchedAtPlug"), std::nullopt);
    EXPECT_EQ(pbpBehavior(""), std::nullopt);
}

TEST(PBPBehavior, OnlyLatchingAndFixedMissingSplitNeedAnOverride) {
    EXPECT_FALSE(needsOverride(PBPBehavior::switchesOnToggle));
    EXPECT_TRUE(needsOverride(PBPBehavior::latchedAtPlug));
    EXPECT_TRUE(needsOverride(PBPBehavior::fixedMissingSplit));
    EXPECT_FALSE(needsOverride(PBPBehavior::fixedWithSplit));
}

TEST(DisplaySettings, FactoryEDIDsStartEmptyAndEqualityComparesEveryField) {
    DisplaySettings a({1, 2, 3}, "DP-1", {3440, 1440});
    EXPECT_EQ(a.factoryFullEDID, std::nullopt);
    EXPECT_EQ(a.factorySplitEDID, std::nullopt);
    DisplaySettings b = a;
    EXPECT_EQ(a, b);
    b.factorySplitEDID = EDIDKit::Bytes{1};
    EXPECT_NE(a, b);
}
