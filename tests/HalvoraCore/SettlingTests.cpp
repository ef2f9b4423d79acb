// What follows an override write: the quiet period of mode recording, and
// the user's mode put back once the display has settled.

#include "ScriptedDisplaySystem.hpp"

#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/Settling.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace HalvoraCore;

namespace {

const DisplayMode full60{3440, 1440, 60};

/// The controller as the settling sees it: the modes it was asked to put back.
class FakeSettlingHost final : public Settling::Host {
public:
    std::vector<std::pair<std::optional<DisplayMode>, DisplayID>> restored;
    void restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& display) override {
        restored.emplace_back(mode, display);
    }
};

class SettlingTest : public ::testing::Test {
protected:
    SettlingTest() {
        system->attach("dcp-1", EDIDKit::sampleMonitor("ultrawide-34")->full, {full60}, full60);
        timers.tieTo(owner);
    }

    std::shared_ptr<TestDoubles::ScriptedDisplaySystem> system =
        std::make_shared<TestDoubles::ScriptedDisplaySystem>();
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>(50);
    RewriteGuard guard;
    OwnedTimers timers{clock};
    /// What the settling's timer lives no longer than.
    std::shared_ptr<int> owner = std::make_shared<int>(0);
    DisplayWriter writer{system, guard, timers};
    ModeMemory modes;
    FakeSettlingHost host;
    Settling settling{timers, writer, modes, host};
    const DisplayID id{"dcp-1"};
    const EDIDKit::Bytes override = *EDIDKit::sampleMonitor("ultrawide-34")->pictureByPicture;
};

} // namespace

TEST_F(SettlingTest, TheModeComesBackThreeSecondsAfterTheWriteWhichQuietsModeRecording) {
    settling.writeAndSettle(override, id, full60);
    EXPECT_EQ(system->overrideOn("dcp-1"), override);
    EXPECT_EQ(modes.quietUntil, 50 + ModeMemory::quietPeriod);
    clock->advance(2.9);
    EXPECT_TRUE(host.restored.empty());
    clock->advance(0.1);
    ASSERT_EQ(host.restored.size(), 1u);
    EXPECT_EQ(host.restored[0], std::make_pair(std::optional(full60), id));
}

TEST_F(SettlingTest, ANewWriteRestartsTheSettling) {
    settling.writeAndSettle(override, id, std::nullopt);
    clock->advance(2);
    settling.writeAndSettle(override, id, full60);
    clock->advance(2);
    EXPECT_TRUE(host.restored.empty());
    clock->advance(1);
    ASSERT_EQ(host.restored.size(), 1u) << "one settling at a time";
    EXPECT_EQ(host.restored[0].first, full60);
}

TEST_F(SettlingTest, ACancelledSettlingPutsNothingBack) {
    settling.writeAndSettle(override, id, full60);
    settling.cancel();
    clock->advance(10);
    EXPECT_TRUE(host.restored.empty());
}

TEST_F(SettlingTest, AFailedWriteThrowsAndNeitherQuietsRecordingNorSettles) {
    system->failApply = std::make_exception_ptr(std::runtime_error("port busy"));
    EXPECT_THROW(settling.writeAndSettle(override, id, full60), SplitError);
    EXPECT_EQ(modes.quietUntil, -std::numeric_limits<double>::infinity());
    clock->advance(10);
    EXPECT_TRUE(host.restored.empty());
}
