#include <HalvoraCore/DisplayState.hpp>

#include <EDIDKit/SampleMonitors.hpp>

#include <gtest/gtest.h>

using namespace HalvoraCore;
using EDIDKit::EDID;

namespace {

AttachedMonitor ultrawide(const EDIDKit::Bytes& reported, std::optional<DisplaySettings> settings) {
    return {{DisplayID("dcp-1"), reported, "DP-1"},
            EDID(reported),
            std::move(settings),
            DisplayIdentity::of(EDID(reported)),
            std::nullopt};
}

const EDIDKit::Bytes& full() { return EDIDKit::sampleMonitor("ultrawide-34")->full; }

} // namespace

TEST(DisplayState, AnUnidentifiedMonitorShowsOnlyItsName) {
    const auto state = displayStateOf(ultrawide(full(), std::nullopt), DisplayMode{3440, 1440, 60},
                                      EDIDKit::SplitLayout::halves);
    EXPECT_EQ(state, (DisplayState{DisplayID("dcp-1"), "Halvora UW34", std::nullopt, std::nullopt, false,
                                   std::nullopt, std::nullopt}));
}

TEST(DisplayState, AnIdentifiedMonitorShowsItsResolutionsWhetherTheSplitIsOnAndWhichItRuns) {
    const DisplaySettings s({DisplayIdentity::of(EDID(full()))}, "DP-1", {3440, 1440}, std::nullopt, std::nullopt,
                            PBPBehavior::latchedAtPlug);
    const auto split = EDID(full()).addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}).bytes();
    const auto layout = EDIDKit::SplitLayout::halves;
    auto state = displayStateOf(ultrawide(split, s), DisplayMode{1720, 1440, 60}, layout);
    EXPECT_EQ(state, (DisplayState{DisplayID("dcp-1"), "Halvora UW34", EDIDKit::Resolution{3440, 1440},
                                   EDIDKit::Resolution{1720, 1440}, true, ModeChoice::split,
                                   PBPBehavior::latchedAtPlug}));
    state = displayStateOf(ultrawide(full(), s), DisplayMode{2560, 1440, 60}, layout);
    EXPECT_FALSE(state.isSplitApplied);
    EXPECT_EQ(state.current, std::nullopt) << "neither resolution";
    EXPECT_EQ(displayStateOf(ultrawide(full(), s), std::nullopt, layout).current, std::nullopt);
}
