#pragma once

#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/DisplayState.hpp>
#include <HalvoraCore/ModeChoice.hpp>
#include <vector>

namespace HalvoraCore {

/// Switches an identified monitor into its full or its split resolution, at
/// the highest refresh rate the display offers for that size, and remembers
/// the mode as the monitor's last one.
class ModeSwitch {
public:
    /// What the switch asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// What each attached display shows, with its native and split sizes.
        virtual std::vector<DisplayState> displayStates() = 0;
        /// The modes the display offers.
        virtual std::vector<DisplayMode> modes(const DisplayID& display) = 0;
        /// Puts the display into the mode. Throws SplitError.
        virtual void setMode(const DisplayMode& mode, const DisplayID& display) = 0;
        virtual void rememberMode(const DisplayMode& mode, const DisplayID& display) = 0;
    };

    explicit ModeSwitch(Host& host) : host_(host) {}

    /// Throws SplitError: the display is gone, its monitor is not identified,
    /// or it offers no mode of the wanted size.
    void switchTo(ModeChoice choice, const DisplayID& display);

private:
    Host& host_;
};

} // namespace HalvoraCore
