#pragma once

#include <HalvoraCore/DisplayID.hpp>

#include <EDIDKit/Bytes.hpp>

#include <optional>
#include <string>

namespace HalvoraCore {

/// One external display as the display system reports it right now: the EDID
/// it presents (its own, or an override in force) and its port when known.
struct ExternalDisplay {
    DisplayID id;
    EDIDKit::Bytes edid;
    std::optional<std::string> port;

    friend bool operator==(const ExternalDisplay&, const ExternalDisplay&) = default;
};

} // namespace HalvoraCore
