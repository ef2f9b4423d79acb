#pragma once

#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace TestDoubles {

/// CoreGraphics displays a test scripts: identity numbers, modes, the current
/// mode, and the code a configuration completes with. Every configure call is
/// recorded as "configure 2 1720x1440@60".
class ScriptedCoreGraphics final : public HalvoraPlatform::CoreGraphicsDisplays {
public:
    struct Display {
        DisplayNumber number = 0;
        bool builtin = false;
        std::uint32_t vendor = 0, model = 0, serial = 0;
        std::vector<Mode> modes;
        std::optional<std::size_t> current; ///< index into modes
        std::int32_t configureCode = 0;
    };

    /// A 1:1 mode usable for the desktop, or a scaled one (`pixelWidth` twice the width).
    static Mode mode(std::size_t width, std::size_t height, double refresh, bool hiDPI = false,
                     bool usable = true) {
        return {width, height, hiDPI ? width * 2 : width, refresh, usable, {}};
    }

    Display& add(DisplayNumber number, std::uint32_t vendor, std::uint32_t model,
                 std::uint32_t serial) {
        displays.push_back({number, false, vendor, model, serial, {}, std::nullopt, 0});
        return displays.back();
    }
    Display& display(DisplayNumber number) {
        for (auto& d : displays)
            if (d.number == number) return d;
        throw std::invalid_argument("no such display");
    }

    std::vector<Display> displays;
    std::vector<std::string> calls;
    std::uint32_t lastMaximum = 0;

    std::vector<DisplayNumber> onlineDisplays(std::uint32_t maximum) override {
        lastMaximum = maximum;
        std::vector<DisplayNumber> out;
        for (const auto& d : displays)
            out.push_back(d.number);
        return out;
    }
    bool isBuiltin(DisplayNumber d) override { return display(d).builtin; }
    std::uint32_t vendorNumber(DisplayNumber d) override { return display(d).vendor; }
    std::uint32_t modelNumber(DisplayNumber d) override { return display(d).model; }
    std::uint32_t serialNumber(DisplayNumber d) override { return display(d).serial; }
    std::vector<Mode> allModes(DisplayNumber d) override { return display(d).modes; }
    std::optional<Mode> currentMode(DisplayNumber d) override {
        const auto& shown = display(d);
        if (!shown.current) return std::nullopt;
        return shown.modes[*shown.current];
    }
    std::int32_t configure(DisplayNumber d, const Mode& m) override {
        auto& target = display(d);
        calls.push_back("configure " + std::to_string(d) + " " + std::to_string(m.width) + "x" +
                        std::to_string(m.height) + "@" + std::to_string(m.refreshRate));
        if (target.configureCode != 0) return target.configureCode;
        for (std::size_t i = 0; i < target.modes.size(); ++i)
            if (target.modes[i].width == m.width && target.modes[i].height == m.height &&
                target.modes[i].pixelWidth == m.pixelWidth &&
                target.modes[i].refreshRate == m.refreshRate)
                target.current = i;
        return 0;
    }
};

} // namespace TestDoubles
