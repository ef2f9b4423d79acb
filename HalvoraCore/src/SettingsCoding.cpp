#include <HalvoraCore/Base64.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <limits>

namespace HalvoraCore {

using nlohmann::json;

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw SettingsDecodingError(what);
}

const json& required(const json& object, const char* key) {
    if (!object.is_object()) fail("expected an object");
    const auto it = object.find(key);
    if (it == object.end() || it->is_null()) fail(std::string("missing \"") + key + "\"");
    return *it;
}

/// The value of an optional key, or nothing when it is absent or null.
const json* optionalValue(const json& object, const char* key) {
    const auto it = object.find(key);
    return it == object.end() || it->is_null() ? nullptr : &*it;
}

template <typename Integer> Integer integer(const json& object, const char* key) {
    const json& value = required(object, key);
    if (value.is_number_unsigned()) {
        const auto v = value.get<std::uint64_t>();
        if (v <= static_cast<std::uint64_t>(std::numeric_limits<Integer>::max()))
            return static_cast<Integer>(v);
    } else if (value.is_number_integer()) {
        const auto v = value.get<std::int64_t>();
        if (v >= static_cast<std::int64_t>(std::numeric_limits<Integer>::min()) &&
            (v < 0 || static_cast<std::uint64_t>(v) <=
                          static_cast<std::uint64_t>(std::numeric_limits<Integer>::max())))
            return static_cast<Integer>(v);
    }
    fail(std::string("\"") + key + "\" is not a whole number in range");
}

std::string sizeText(std::int64_t width, std::int64_t height) {
    return std::to_string(width) + "×" + std::to_string(height);
}

EDIDKit::Bytes bytes(const json& value, const char* key) {
    if (!value.is_string()) fail(std::string("\"") + key + "\" is not a base64 string");
    auto decoded = base64Decoded(value.get_ref<const std::string&>());
    if (!decoded) fail(std::string("\"") + key + "\" is not valid base64");
    return std::move(*decoded);
}

} // namespace

json encodeMode(const DisplayMode& mode) {
    return {{"width", mode.width}, {"height", mode.height}, {"refreshHz", mode.refreshHz}};
}

DisplayMode decodeMode(const json& j) {
    const DisplayMode mode{integer<std::int64_t>(j, "width"), integer<std::int64_t>(j, "height"),
                           integer<std::int64_t>(j, "refreshHz")};
    const auto side = [](std::int64_t v) {
        return v >= 1 && v <= EDIDKit::Resolution::largestDescribableSide;
    };
    if (!side(mode.width) || !side(mode.height))
        fail("the mode " + sizeText(mode.width, mode.height) +
             " is not a size an EDID can describe");
    if (mode.refreshHz < 0) fail("the mode's refresh rate is negative");
    return mode;
}

json encodeSettings(const DisplaySettings& s) {
    json j;
    j["identity"] = {{"vendorID", s.identity.vendorID},
                     {"productID", s.identity.productID},
                     {"serialNumber", s.identity.serialNumber}};
    j["native"] = {{"width", s.native.width}, {"height", s.native.height}};
    if (s.port) j["port"] = *s.port;
    if (s.overrideEDID) j["overrideEDID"] = base64Encoded(*s.overrideEDID);
    if (s.lastMode) j["lastMode"] = encodeMode(*s.lastMode);
    if (s.behavior) j["behavior"] = std::string(rawValue(*s.behavior));
    if (s.factoryFullEDID) j["factoryFullEDID"] = base64Encoded(*s.factoryFullEDID);
    if (s.factorySplitEDID) j["factorySplitEDID"] = base64Encoded(*s.factorySplitEDID);
    return j;
}

json encodeSettingsList(const std::vector<DisplaySettings>& list) {
    json array = json::array();
    for (const auto& s : list)
        array.push_back(encodeSettings(s));
    return array;
}

DisplaySettings decodeSettings(const json& j) {
    const json& identity = required(j, "identity");
    const json& native = required(j, "native");
    DisplaySettings s;
    s.identity = {integer<std::uint32_t>(identity, "vendorID"),
                  integer<std::uint32_t>(identity, "productID"),
                  integer<std::uint32_t>(identity, "serialNumber")};
    s.native = {integer<int>(native, "width"), integer<int>(native, "height")};
    if (!s.native.isDescribable())
        fail("\"native\" " + sizeText(s.native.width, s.native.height) +
             " is not a size an EDID can describe");
    if (const json* port = optionalValue(j, "port")) {
        if (!port->is_string()) fail("\"port\" is not a string");
        s.port = port->get<std::string>();
    }
    if (const json* v = optionalValue(j, "overrideEDID"))
        s.overrideEDID = bytes(*v, "overrideEDID");
    if (const json* v = optionalValue(j, "lastMode")) s.lastMode = decodeMode(*v);
    // Read leniently: an unknown behaviour leaves the monitor "not yet observed"
    // while the rest of the record still loads.
    if (const json* v = optionalValue(j, "behavior"); v && v->is_string())
        s.behavior = pbpBehavior(v->get_ref<const std::string&>());
    if (const json* v = optionalValue(j, "factoryFullEDID"))
        s.factoryFullEDID = bytes(*v, "factoryFullEDID");
    if (const json* v = optionalValue(j, "factorySplitEDID"))
        s.factorySplitEDID = bytes(*v, "factorySplitEDID");
    return s;
}

ReadableSettings decodeReadableSettings(const json& j) {
    if (!j.is_array()) fail("the settings are not a list");
    ReadableSettings result;
    for (std::size_t i = 0; i < j.size(); ++i) {
        try {
            result.records.push_back(decodeSettings(j[i]));
        } catch (const SettingsDecodingError& error) {
            result.dropped.push_back("record " + std::to_string(i + 1) + ": " + error.what());
        }
    }
    return result;
}

std::vector<DisplaySettings> decodeSettingsList(const json& j) {
    if (!j.is_array()) fail("the settings are not a list");
    std::vector<DisplaySettings> list;
    for (std::size_t i = 0; i < j.size(); ++i) {
        try {
            list.push_back(decodeSettings(j[i]));
        } catch (const SettingsDecodingError& error) {
            fail("record " + std::to_string(i + 1) + ": " + error.what());
        }
    }
    return list;
}

} // namespace HalvoraCore
