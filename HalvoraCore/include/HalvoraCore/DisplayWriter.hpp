#pragma once

#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/DisplaySystem.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <HalvoraCore/RewriteGuard.hpp>

#include <EDIDKit/Bytes.hpp>

#include <functional>
#include <memory>
#include <optional>

namespace HalvoraCore {

/// The one way the controller changes a display: every override write,
/// factory restore and mode set. A change that went through is stamped as the
/// controller's own (the interrupts it causes are not the user's), ends any
/// switch offer for that display, and is noted in the rewrite guard; a
/// failure comes back as a SplitError of kind `hardware`, naming the
/// operation, unless the system said something about the display itself.
class DisplayWriter {
public:
    /// After a change, a port interrupt within this many seconds is taken as
    /// the change's own, not as the user toggling PBP.
    static constexpr double ownChangeCooldown = 8;

    DisplayWriter(std::shared_ptr<DisplaySystem> system, RewriteGuard& guard, const OwnedTimers& timers)
        : system_(std::move(system)), guard_(guard), timers_(timers) {}

    /// Called with the display after every change that went through.
    std::function<void(const DisplayID&)> onOwnChange;

    /// Throw SplitError.
    void writeOverride(const EDIDKit::Bytes& edid, const DisplayID& display);
    void restoreFactory(const DisplayID& display);
    void setMode(const DisplayMode& mode, const DisplayID& display);

    /// Puts the display back into `mode` when it offers it and is not in it
    /// already; false when there was nothing to do. Throws SplitError.
    bool putBackMode(const std::optional<DisplayMode>& mode, const DisplayID& display);

    /// Stamps a change that failed but may still have disturbed the display.
    void noteAttempt() { lastOwnChange_ = timers_.now(); }

    /// When the controller last changed a display itself.
    std::optional<double> lastOwnChange() const { return lastOwnChange_; }
    bool inOwnChangeCooldown() const;

private:
    void changedByUs(const DisplayID& display);

    std::shared_ptr<DisplaySystem> system_;
    RewriteGuard& guard_;
    const OwnedTimers& timers_;
    std::optional<double> lastOwnChange_;
};

} // namespace HalvoraCore
