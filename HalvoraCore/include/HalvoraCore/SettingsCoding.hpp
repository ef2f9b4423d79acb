#pragma once

#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/DisplaySettings.hpp>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace HalvoraCore {

/// A settings record, or a list of them, that cannot be decoded.
class SettingsDecodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The JSON of a record: "identity" and "native" always; every other key only
/// when it has a value; byte buffers as standard base64.
nlohmann::json encodeSettings(const DisplaySettings& settings);
nlohmann::json encodeSettingsList(const std::vector<DisplaySettings>& list);

/// Decodes one record. "identity" and "native" are required; every other key
/// may be absent (or null), but when present must decode, except "behavior",
/// which yields nothing for any value that is not one of the four raw values.
/// A native size or a mode size that no EDID can describe (each side 1 to
/// 65536 pixels) fails the record. Throws SettingsDecodingError.
DisplaySettings decodeSettings(const nlohmann::json& json);

/// Decodes a top-level array of records, all or nothing: one record that fails
/// fails the list. Throws SettingsDecodingError.
std::vector<DisplaySettings> decodeSettingsList(const nlohmann::json& json);

/// A settings list read record by record: the records that decode, and for
/// each one that does not, "record N: why" (N counting from 1).
struct ReadableSettings {
    std::vector<DisplaySettings> records;
    std::vector<std::string> dropped;
};

/// Decodes every record of a top-level array that can be decoded and names
/// the others, so that one bad record costs no other monitor its settings.
/// Throws SettingsDecodingError only when the JSON is not an array.
ReadableSettings decodeReadableSettings(const nlohmann::json& json);

nlohmann::json encodeMode(const DisplayMode& mode);
/// Throws SettingsDecodingError unless all three integer keys are there, the
/// size is one an EDID can describe and the refresh rate is not negative.
DisplayMode decodeMode(const nlohmann::json& json);

} // namespace HalvoraCore
