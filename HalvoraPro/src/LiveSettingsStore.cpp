#include <HalvoraPro/LiveSettingsStore.hpp>

#include <HalvoraPro/AtomicFile.hpp>

#include <HalvoraCore/SettingsCoding.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <pwd.h>
#include <unistd.h>

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

LiveSettingsStore::HomeLookup LiveSettingsStore::HomeLookup::system() {
    return {[](const char* name) -> std::optional<std::string> {
                if (const char* value = std::getenv(name)) return std::string(value);
                return std::nullopt;
            },
            []() -> std::optional<std::string> {
                if (const passwd* account = ::getpwuid(::getuid()); account && account->pw_dir)
                    return std::string(account->pw_dir);
                return std::nullopt;
            }};
}

fs::path LiveSettingsStore::defaultURL(const HomeLookup& lookup) {
    const auto usable = [](const std::optional<std::string>& folder) {
        return folder && fs::path(*folder).is_absolute();
    };
    std::optional<std::string> home = lookup.environment("HOME");
    if (!usable(home)) home = lookup.accountHome();
    if (!usable(home))
        throw NoSettingsFolder("Halvora Pro: cannot start: there is no Application Support folder for the "
                               "settings (HOME is not set to a folder and the user account has no home folder)");
#if defined(__APPLE__)
    const fs::path base = fs::path(*home) / "Library" / "Application Support";
#else
    const auto dataHome = lookup.environment("XDG_DATA_HOME");
    const fs::path base = usable(dataHome) ? fs::path(*dataHome) : fs::path(*home) / ".local" / "share";
#endif
    return base / "Halvora Pro" / "displays.json";
}

fs::path LiveSettingsStore::defaultURLOrStop(const HomeLookup& lookup, const LogSink& log) {
    try {
        return defaultURL(lookup);
    } catch (const NoSettingsFolder& error) {
        log(error.what());
        std::fputs((std::string(error.what()) + "\n").c_str(), stderr);
        std::abort();
    }
}

std::vector<HalvoraCore::DisplaySettings> LiveSettingsStore::load() {
    // A save killed half-way never replaced the file; what it left is litter.
    if (const std::size_t unfinished = removeUnfinishedWrites(url_))
        log_("Halvora Pro: removed " + std::to_string(unfinished) + " unfinished settings save(s)");
    std::ifstream file(url_, std::ios::binary);
    if (!file) return {};
    const std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad()) return {};
    HalvoraCore::ReadableSettings readable;
    try {
        readable = HalvoraCore::decodeReadableSettings(nlohmann::json::parse(content));
    } catch (const std::exception& error) {
        log_("Halvora Pro: settings unreadable (" + std::string(error.what()) + "), moved to " +
             moveAside().filename().string());
        return {};
    }
    if (readable.dropped.empty()) return std::move(readable.records);
    // One bad record costs no other monitor its settings: the original file
    // is kept aside as it was, and the records that decode are saved afresh.
    for (const std::string& reason : readable.dropped)
        log_("Halvora Pro: settings record dropped (" + reason + ")");
    log_("Halvora Pro: settings partly unreadable, moved to " + moveAside().filename().string() + "; " +
         std::to_string(readable.records.size()) + " of " +
         std::to_string(readable.records.size() + readable.dropped.size()) + " records kept");
    save(readable.records);
    return std::move(readable.records);
}

fs::path LiveSettingsStore::moveAside() const {
    // Neither lose nor overwrite what the user had.
    fs::path aside = url_;
    aside.replace_extension("unreadable-" + std::to_string(clock_()) + ".json");
    std::error_code ignored;
    fs::rename(url_, aside, ignored);
    return aside;
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
