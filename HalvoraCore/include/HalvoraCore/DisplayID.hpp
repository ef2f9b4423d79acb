#pragma once

#include <functional>
#include <string>

namespace HalvoraCore {

/// Identifies an attached display while it stays attached. The text is the
/// display system's own; the core never parses it and never saves it.
struct DisplayID {
    std::string rawValue;

    DisplayID() = default;
    explicit DisplayID(std::string raw) : rawValue(std::move(raw)) {}

    friend bool operator==(const DisplayID&, const DisplayID&) = default;
};

} // namespace HalvoraCore

template <> struct std::hash<HalvoraCore::DisplayID> {
    std::size_t operator()(const HalvoraCore::DisplayID& id) const noexcept {
        return std::hash<std::string>{}(id.rawValue);
    }
};
