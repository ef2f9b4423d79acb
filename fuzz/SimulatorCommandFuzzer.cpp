// Feeds arbitrary scripts to the simulator's command parser, on the built-in
// rig with a fresh settings file each time: every line is carried out or
// refused with a reason, and afterwards the state is one line of JSON and the
// settings file still parses.

#include "FuzzCheck.hpp"

#include "Simulator.hpp"

#include <HalvoraCore/SettingsCoding.hpp>

#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <unistd.h>

using FuzzCheck::require;

namespace {

/// A settings folder for this process, emptied before each input.
const std::filesystem::path& settingsFolder() {
    static const std::filesystem::path folder = [] {
        auto f = std::filesystem::temp_directory_path() / ("halvora-command-fuzzer-" + std::to_string(::getpid()));
        std::filesystem::create_directories(f);
        return f;
    }();
    return folder;
}

class NullBuffer final : public std::streambuf {
protected:
    int overflow(int c) override { return c; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t maxLines = 64; // a script is a handful of commands
    const std::string script(reinterpret_cast<const char*>(data), size);
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(settingsFolder(), ignored))
        std::filesystem::remove_all(entry.path(), ignored);
    NullBuffer nothing;
    std::ostream quiet(&nothing);
    Halvora::Simulator simulator(Halvora::Rig::builtIn(), settingsFolder() / "displays.json", quiet);
    std::istringstream lines(script);
    std::size_t count = 0;
    for (std::string line; count < maxLines && std::getline(lines, line); ++count) simulator.execute(line);
    const std::string state = simulator.state().dump();
    require(state.find('\n') == std::string::npos, "the state is one line");
    require(!simulator.savedSettings().is_null(), "the settings file parses");
    (void)HalvoraCore::decodeSettingsList(simulator.savedSettings());
    return 0;
}
