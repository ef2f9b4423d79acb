#pragma once

// One policy of the controller on the test doubles, without the controller:
// a virtual clock at T = 1000, a scriptable display system, an in-memory
// store, and the display writer over them.

#include "ControllerFixture.hpp"

#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/PendingChange.hpp>
#include <HalvoraCore/Settling.hpp>

namespace ControllerTesting {

/// What the pending change and the settling ask of the controller: nothing
/// the cases that use it reach.
class IdleChangeHost final : public PendingChange::Host, public Settling::Host {
public:
    void restoreMode(const std::optional<DisplayMode>&, const DisplayID&) override {}
    void changeOpened() override {}
    void changed() override {}
    void report(const SplitError&) override {}
};

class PolicyTest : public ::testing::Test {
protected:
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>(T);
    std::shared_ptr<TestDoubles::ScriptedDisplaySystem> system =
        std::make_shared<TestDoubles::ScriptedDisplaySystem>();
    std::shared_ptr<TestDoubles::MemorySettingsStore> store =
        std::make_shared<TestDoubles::MemorySettingsStore>();
    RewriteGuard guard;
    OwnedTimers timers{clock};
    DisplayWriter writer{system, guard, timers};
    /// The records, loaded from the store by `loadRecords`.
    std::optional<MonitorRecords> monitors;

    /// Loads the records as they are saved now.
    void loadRecords() { monitors.emplace(system, store, EDIDKit::SplitLayout::halves); }

    /// Attaches the ultrawide in full mode on "DP-1", offering its full and split modes.
    void attachUltrawide() {
        system->attach("dcp-1", ultrawideFull(), {full60, qhd60, split60}, full60, "DP-1");
    }

    std::vector<std::string> calls() const { return system->callDescriptions(); }
};

} // namespace ControllerTesting
