#pragma once

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/ModeChoice.hpp>
#include <HalvoraCore/ModeMemory.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <HalvoraCore/PendingChange.hpp>
#include <HalvoraCore/RewriteGuard.hpp>
#include <HalvoraCore/Settling.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <optional>
#include <unordered_map>

namespace HalvoraCore {

/// Puts one attached monitor back into its saved state: its own EDID
/// remembered, its kept override written again where the display lost it
/// (within the rewrite guard's limits), a monitor that switched its EDID by
/// itself followed, and its mode restored while the display settles or
/// remembered once it has.
class RestorePass {
public:
    /// What the pass asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// Remembers the monitor's own EDID for the mode it is in; never one of ours.
        virtual void captureFactoryEDID(const AttachedMonitor& monitor) = 0;
        /// Switches without counting as the user's action. Throws SplitError.
        virtual void switchMode(ModeChoice choice, const DisplayID& display) = 0;
        virtual void rememberMode(const DisplayMode& mode, const DisplayID& display) = 0;
        virtual void restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& display) = 0;
        virtual std::optional<DisplayMode> currentMode(const DisplayID& display) = 0;
        virtual void changed() = 0;
        virtual void report(const SplitError& error) = 0;
    };

    struct Parts {
        OwnedTimers& timers;
        MonitorRecords& monitors;
        PendingChange& pending;
        Settling& settling;
        DisplayWriter& writer;
        RewriteGuard& guard;
        const ModeMemory& modes;
        EDIDKit::SplitLayout layout;
        Host& host;
    };

    explicit RestorePass(Parts parts) : p_(parts) {}

    /// Restores one monitor (one with no record is left alone).
    void restore(const AttachedMonitor& monitor);
    /// Gives the factory EDID back to monitors with a record that show an
    /// EDID this system does not know for them (another tool's); true when
    /// something was cleared.
    bool clearOtherTools();
    /// Forgets which EDIDs switching monitors reported last (after a reset).
    void forgetSeenEDIDs() { lastSeenFactoryEDID_.clear(); }

private:
    /// Follows a monitor whose EDID changed by itself: switches to the mode
    /// its EDID now prefers, when that is the full or the split resolution.
    void switchToPreferred(const AttachedMonitor& monitor, const DisplaySettings& settings);
    /// Whether the override may be written again; tells the user once when
    /// the display has just run out of rewrites.
    bool mayRewrite(const AttachedMonitor& monitor, const EDIDKit::Bytes& override);

    Parts p_;
    std::unordered_map<DisplayIdentity, EDIDKit::Bytes> lastSeenFactoryEDID_;
};

} // namespace HalvoraCore
