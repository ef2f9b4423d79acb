#pragma once

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/ModeChoice.hpp>
#include <HalvoraCore/PBPBehavior.hpp>

#include <EDIDKit/Resolution.hpp>
#include <EDIDKit/SplitLayout.hpp>

#include <optional>
#include <string>

namespace HalvoraCore {

/// What the menu shows about one attached display.
struct DisplayState {
    DisplayID id;
    /// The EDID's product name; empty when it has none.
    std::string name;
    /// Saved native resolution; nothing when the monitor is not identified.
    std::optional<EDIDKit::Resolution> native;
    /// The split resolution derived from `native`.
    std::optional<EDIDKit::Resolution> split;
    /// The EDID the display reports now lists both the native and the split timing.
    bool isSplitApplied = false;
    /// Which of the two resolutions the current mode shows, if either.
    std::optional<ModeChoice> current;
    std::optional<PBPBehavior> behavior;

    friend bool operator==(const DisplayState&, const DisplayState&) = default;
};

/// What the menu shows about the attached monitor, in mode `current`.
DisplayState displayStateOf(const AttachedMonitor& monitor, const std::optional<DisplayMode>& current,
                            EDIDKit::SplitLayout layout);

/// An applied change that waits for the user, and when it reverts by itself.
struct PendingConfirmation {
    DisplayID display;
    double deadline = 0;
    friend bool operator==(const PendingConfirmation&, const PendingConfirmation&) = default;
};

/// An offer to switch a monitor to its other resolution, and when it lapses.
struct SwitchPrompt {
    DisplayID display;
    ModeChoice target = ModeChoice::full;
    EDIDKit::Resolution resolution;
    double deadline = 0;
    friend bool operator==(const SwitchPrompt&, const SwitchPrompt&) = default;
};

} // namespace HalvoraCore
