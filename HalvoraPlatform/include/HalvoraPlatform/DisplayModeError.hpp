#pragma once

#include <HalvoraPlatform/ModeSpec.hpp>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>

namespace HalvoraPlatform {

/// Why a display could not be switched to a mode.
class DisplayModeError : public std::exception {
public:
    enum class Kind { noSuchMode, switchFailed };

    static DisplayModeError noSuchMode(const ModeSpec& spec) { return DisplayModeError(spec); }
    static DisplayModeError switchFailed(std::int32_t code) { return DisplayModeError(code); }

    Kind kind() const noexcept { return kind_; }
    const std::optional<ModeSpec>& spec() const noexcept { return spec_; }
    std::int32_t code() const noexcept { return code_; }

    /// "the display has no 1720x1440@60 mode — apply an EDID that contains it
    /// first", or "switching mode failed: -1".
    const std::string& description() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const DisplayModeError& a, const DisplayModeError& b) {
        return a.kind_ == b.kind_ && a.spec_ == b.spec_ && a.code_ == b.code_;
    }

private:
    explicit DisplayModeError(const ModeSpec& spec);
    explicit DisplayModeError(std::int32_t code);

    Kind kind_;
    std::optional<ModeSpec> spec_;
    std::int32_t code_ = 0;
    std::string description_;
};

} // namespace HalvoraPlatform
