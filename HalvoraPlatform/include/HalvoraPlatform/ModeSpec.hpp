#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace HalvoraPlatform {

/// A requested display mode: size and refresh rate.
struct ModeSpec {
    int width = 0;
    int height = 0;
    double refresh = 60.0;

    /// "1720x1440@60": the refresh rate truncated to a whole number.
    std::string description() const;

    /// The highest refresh rate a spec may ask for, in Hz.
    static constexpr double maximumRefresh = 1000;

    /// Reads "1720x1440", "1720X1440@60" or "1920x1080@59.94" (60 Hz when no
    /// rate is given); nothing for any other text. A size with more than two
    /// pieces ("1920xabcx1080") is rejected, and so are a width or height that
    /// is not positive and a rate that is not a finite number above 0 and at
    /// most `maximumRefresh` ("@nan", "@inf", "@-60").
    static std::optional<ModeSpec> parse(std::string_view text);

    friend bool operator==(const ModeSpec&, const ModeSpec&) = default;
};

} // namespace HalvoraPlatform
