// Feeds arbitrary bytes to the settings file decoder as the application reads
// displays.json: parse, then decode record by record. What decodes must
// encode and decode to the same records, and the strict list decoder must
// agree with the record-by-record one.

#include "FuzzCheck.hpp"

#include <HalvoraCore/SettingsCoding.hpp>

#include <cstdint>
#include <string>

using namespace HalvoraCore;
using FuzzCheck::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded()) return 0;
    ReadableSettings readable;
    try {
        readable = decodeReadableSettings(json);
    } catch (const SettingsDecodingError&) {
        require(!json.is_array(), "only a file that is not a list is unreadable as a whole");
        return 0;
    }
    require(json.is_array(), "a readable file is a list");
    require(readable.records.size() + readable.dropped.size() == json.size(), "every record is kept or named");
    const nlohmann::json encoded = encodeSettingsList(readable.records);
    require(decodeSettingsList(encoded) == readable.records, "what decodes survives encoding");
    require(decodeSettingsList(nlohmann::json::parse(encoded.dump(2))) == readable.records,
            "what decodes survives the file's text");
    try {
        const auto strict = decodeSettingsList(json);
        require(readable.dropped.empty() && strict == readable.records, "the strict decoder agrees");
    } catch (const SettingsDecodingError&) {
        require(!readable.dropped.empty(), "the strict decoder fails only where a record was dropped");
    }
    return 0;
}
