#include <HalvoraPro/LiveSettingsStore.hpp>

#include <HalvoraPro/AtomicFile.hpp>

#include <HalvoraCore/SettingsCoding.hpp>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace HalvoraPro {

namespace fs = std::filesystem;

namespace {

long long secondsSince1970() {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

} // namespace

LiveSettingsStore::LiveSettingsStore(fs::path url, LogSink log, Clock clock)
    : url_(std::move(url)), log_(std::move(log)), clock_(clock ? std::move(clock) : Clock(secondsSince1970)) {}

fs::path LiveSettingsStore::defaultURL() {
    const char* home = std::getenv("HOME");
    const fs::path homeFolder = home ? fs::path(home) : fs::path(".");
#if defined(__APPLE__)
    const fs::path base = homeFolder / "Library" / "Application Support";
#else
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    const fs::path base = dataHome && *dataHome ? fs::path(dataHome) : homeFolder / ".local" / "share";
#endif
    return base / "Halvora Pro" / "displays.json";
}

std::vector<HalvoraCore::DisplaySettings> LiveSettingsStore::load() {
    std::ifstream file(url_, std::ios::binary);
    if (!file) return {};
    const std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad()) return {};
    try {
        return HalvoraCore::decodeSettingsList(nlohmann::json::parse(content));
    } catch (const std::exception& error) {
        // Neither lose nor overwrite what the user had: move it aside.
        fs::path aside = url_;
        aside.replace_extension("unreadable-" + std::to_string(clock_()) + ".json");
        std::error_code ignored;
        fs::rename(url_, aside, ignored);
        log_("Halvora Pro: settings unreadable (" + std::string(error.what()) + "), moved to " +
             aside.filename().string());
        return {};
    }
}

void LiveSettingsStore::save(const std::vector<HalvoraCore::DisplaySettings>& settings) {
    try {
        fs::create_directories(url_.parent_path());
        // nlohmann::json keeps object keys sorted; indent 2 is the pretty form.
        writeFileAtomically(url_, HalvoraCore::encodeSettingsList(settings).dump(2) + "\n");
    } catch (const std::exception& error) {
        log_("Halvora Pro: saving settings failed: " + std::string(error.what()));
    }
}

} // namespace HalvoraPro
