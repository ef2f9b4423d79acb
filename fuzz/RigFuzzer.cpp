// Feeds arbitrary bytes to the simulator's rig reader. A rig either fails
// with a RigError that says why, or describes monitors with unique names and
// EDIDs that parse, on which a recorded machine can be built.

#include "FuzzCheck.hpp"

#include "Rig.hpp"

#include <EDIDKit/EDID.hpp>
#include <HalvoraSimulation/RecordedMachine.hpp>

#include <cstdint>
#include <set>
#include <string>

using FuzzCheck::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded()) return 0;
    Halvora::Rig rig;
    try {
        // EDID files are looked up beside the project's sample rig.
        rig = Halvora::Rig::fromJSON(json, HALVORA_RIGS_DIR);
    } catch (const Halvora::RigError& error) {
        require(std::string(error.what()).size() > 0, "a refused rig says why");
        return 0;
    }
    std::set<std::string> names;
    for (const auto& monitor : rig.monitors) {
        require(!monitor.name.empty(), "a monitor has a name");
        require(names.insert(monitor.name).second, "names are unique");
        (void)EDIDKit::EDID(monitor.full); // throws (and fails the run) when it does not parse
        if (monitor.split) (void)EDIDKit::EDID(*monitor.split);
    }
    const auto machine = HalvoraSimulation::RecordedMachine::create(
        rig.monitors, std::make_shared<HalvoraSimulation::VirtualClock>());
    require(machine->ports().size() == rig.monitors.size(), "one port per monitor");
    return 0;
}
