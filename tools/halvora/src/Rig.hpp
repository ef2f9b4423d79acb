#pragma once

#include <HalvoraSimulation/RecordedMonitor.hpp>
#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace Halvora {

/// A rig file that cannot be used, with what is wrong in words.
class RigError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The machine the simulator runs on: its monitors and which of the other
/// override tools are running at the start.
struct Rig {
    /// The most monitors a rig has: more than any Mac drives at once.
    static constexpr std::size_t maxMonitors = 32;
    /// The largest rig file: room for every monitor's EDIDs in hex.
    static constexpr std::size_t maxFileSize = std::size_t{4} << 20;

    std::vector<HalvoraSimulation::RecordedMonitor> monitors;
    bool edidOverrideService = false;
    bool betterDisplay = false;

    /// Two monitors the project builds itself: "ultrawide-34", a 3440×1440
    /// panel that latches at plug and lacks the 1720×1440 timing, and
    /// "superwide-49", a 5120×1440 panel that switches its EDID on a PBP
    /// toggle (its split EDID prefers 2560×1440).
    static Rig builtIn();
    /// Reads the JSON form:
    /// {"monitors":[{"name","full","split","behavior","attached","pbp"}],
    ///  "tools":{"edidOverrideService":false,"betterDisplay":false}}
    /// where "full" and "split" are EDIDs in hex or paths relative to
    /// `baseDirectory` (binary or hex files), with at most maxMonitors
    /// monitors. Throws RigError.
    static Rig fromJSON(const nlohmann::json& json, const std::filesystem::path& baseDirectory);
    /// Reads a rig file (a regular file or a pipe of at most maxFileSize
    /// bytes; EDID files at most maxEDIDFileSize, as every EDID input). Throws RigError naming
    /// the file.
    static Rig load(const std::filesystem::path& file);
};

} // namespace Halvora
