#include "Rig.hpp"

#include "Files.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/PBPBehavior.hpp>
#include <HalvoraPlatform/FileReading.hpp>
#include <algorithm>
#include <cctype>
#include <set>

namespace Halvora {

using HalvoraSimulation::RecordedMonitor;
using HalvoraCore::PBPBehavior;

Rig Rig::builtIn() {
    Rig rig;
    const auto* ultrawide = EDIDKit::sampleMonitor("ultrawide-34");
    const auto* superwide = EDIDKit::sampleMonitor("superwide-49");
    rig.monitors.push_back({ultrawide->name, ultrawide->full, ultrawide->pictureByPicture,
                            PBPBehavior::latchedAtPlug, true, false, std::nullopt});
    rig.monitors.push_back({superwide->name, superwide->full, superwide->pictureByPicture,
                            PBPBehavior::switchesOnToggle, true, false, std::nullopt});
    return rig;
}

namespace {

/// A file of a rig (the rig or an EDID it names), of at most `limit` bytes:
/// a regular file or a pipe, never a folder or a device.
std::string readFile(const std::filesystem::path& file, std::size_t limit) {
    try {
        return HalvoraPlatform::readWholeFile(file, limit, HalvoraPlatform::Readable::regularFileOrPipe);
    } catch (const HalvoraPlatform::FileReadError& error) {
        throw RigError("cannot read " + std::string(error.what()));
    }
}

bool looksLikeHex(const std::string& text) {
    std::size_t digits = 0;
    for (const char c : text) {
        if (std::isxdigit(static_cast<unsigned char>(c))) {
            ++digits;
        } else if (!std::isspace(static_cast<unsigned char>(c))) {
            return false;
        }
    }
    return digits >= 256;
}

EDIDKit::Bytes edidField(const nlohmann::json& monitor, const char* field, const std::string& where,
                         const std::filesystem::path& baseDirectory) {
    if (!monitor.at(field).is_string())
        throw RigError(where + ": \"" + field + "\" must be a path or hex text");
    const std::string value = monitor.at(field).get<std::string>();
    std::string content;
    if (looksLikeHex(value)) {
        content = value;
    } else {
        const std::filesystem::path path =
            baseDirectory / value; // an absolute value replaces the base
        content = readFile(path, maxEDIDFileSize);
    }
    try {
        const std::span<const std::uint8_t> raw(
            reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
        EDIDKit::Bytes bytes = EDIDKit::bytesFromEDIDInput(raw);
        EDIDKit::EDID checked(bytes);
        return bytes;
    } catch (const std::exception& error) {
        throw RigError(where + ": \"" + field + "\" is not a usable EDID: " + error.what());
    }
}

bool flag(const nlohmann::json& object, const char* field, bool fallback,
          const std::string& where) {
    if (!object.contains(field)) return fallback;
    if (!object.at(field).is_boolean())
        throw RigError(where + ": \"" + field + "\" must be true or false");
    return object.at(field).get<bool>();
}

} // namespace

Rig Rig::fromJSON(const nlohmann::json& json, const std::filesystem::path& baseDirectory) {
    if (!json.is_object() || !json.contains("monitors") || !json.at("monitors").is_array())
        throw RigError("a rig is an object with a \"monitors\" list");
    if (json.at("monitors").size() > maxMonitors)
        throw RigError("a rig has at most " + std::to_string(maxMonitors) + " monitors");
    Rig rig;
    std::set<std::string> names;
    for (std::size_t i = 0; i < json.at("monitors").size(); ++i) {
        const auto& m = json.at("monitors").at(i);
        std::string where = "monitor " + std::to_string(i + 1);
        if (!m.is_object()) throw RigError(where + " is not an object");
        if (!m.contains("name") || !m.at("name").is_string() ||
            m.at("name").get<std::string>().empty())
            throw RigError(where + " needs a \"name\"");
        HalvoraSimulation::RecordedMonitor monitor;
        monitor.name = m.at("name").get<std::string>();
        if (monitor.name.find_first_of(" \t") != std::string::npos)
            throw RigError(where + ": a name cannot contain spaces");
        where = "monitor \"" + monitor.name + "\"";
        if (!names.insert(monitor.name).second) throw RigError(where + " is listed twice");
        if (!m.contains("full")) throw RigError(where + " needs a \"full\" EDID");
        monitor.full = edidField(m, "full", where, baseDirectory);
        if (m.contains("split") && !m.at("split").is_null())
            monitor.split = edidField(m, "split", where, baseDirectory);
        if (!m.contains("behavior") || !m.at("behavior").is_string())
            throw RigError(where + " needs a \"behavior\"");
        const auto behavior = HalvoraCore::pbpBehavior(m.at("behavior").get<std::string>());
        if (!behavior)
            throw RigError(
                where +
                ": \"behavior\" must be switchesOnToggle, latchedAtPlug, fixedMissingSplit or "
                "fixedWithSplit");
        monitor.behavior = *behavior;
        monitor.attached = flag(m, "attached", true, where);
        monitor.pbp = flag(m, "pbp", false, where);
        if (m.contains("alterOnWrite") && !m.at("alterOnWrite").is_null()) {
            const auto& alter = m.at("alterOnWrite");
            const auto alteration = alter.is_string()
                                        ? HalvoraSimulation::writeAlteration(alter.get<std::string>())
                                        : std::nullopt;
            if (!alteration)
                throw RigError(where + ": \"alterOnWrite\" must be serial, checksum or extensions");
            monitor.alterOnWrite = alteration;
        }
        rig.monitors.push_back(std::move(monitor));
    }
    if (json.contains("tools")) {
        const auto& tools = json.at("tools");
        if (!tools.is_object()) throw RigError("\"tools\" must be an object");
        rig.edidOverrideService = flag(tools, "edidOverrideService", false, "tools");
        rig.betterDisplay = flag(tools, "betterDisplay", false, "tools");
    }
    return rig;
}

Rig Rig::load(const std::filesystem::path& file) {
    const std::string content = readFile(file, maxFileSize);
    nlohmann::json json;
    try {
        json = nlohmann::json::parse(content);
    } catch (const nlohmann::json::exception& error) {
        throw RigError(file.string() + ": not JSON: " + error.what());
    }
    try {
        return fromJSON(json, file.parent_path());
    } catch (const RigError& error) {
        throw RigError(file.string() + ": " + error.what());
    }
}

} // namespace Halvora
