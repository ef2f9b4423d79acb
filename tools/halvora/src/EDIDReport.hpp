#pragma once

#include <EDIDKit/EDID.hpp>

#include <nlohmann/json.hpp>

#include <string>

namespace Halvora {

/// The nine fields of a timing as a JSON object, in field order.
nlohmann::ordered_json timingJSON(const EDIDKit::Timing& timing);

/// Everything `halvora decode --json` prints about an EDID, as one object.
nlohmann::ordered_json edidJSON(const EDIDKit::EDID& edid);

/// The same facts for people, one per line.
std::string edidText(const EDIDKit::EDID& edid);

/// One line about a timing: "3440×1440 @ 59.97 Hz, 319.75 MHz, h 3440+160 (48/32), v 1440+41 (3/10)".
std::string timingLine(const EDIDKit::Timing& timing);

/// The manufacturer ID's three letters ("DEL"), or empty when the ID holds no letters.
std::string manufacturerLetters(std::uint32_t vendorID);

} // namespace Halvora
