#pragma once

#include <HalvoraCore/DisplayID.hpp>

#include <EDIDKit/Bytes.hpp>

#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

namespace HalvoraCore {

/// Keeps the restore pass out of a loop with a system that alters what it is
/// given: the override written never shows up as written, so every pass finds
/// it missing and writes it again, and every write re-enumerates the display,
/// which asks for another pass. The same override written to the same display
/// `maxWrites` times within `window` seconds, without the display ever
/// reporting it, stops being written there until the monitor is replugged (it
/// comes back under a new display ID) or the user acts.
///
/// It also remembers which displays carry an override written in this run,
/// so that quitting gives them their factory EDID back even when what they
/// report no longer looks like ours.
class RewriteGuard {
public:
    static constexpr int maxWrites = 3;
    static constexpr double window = 60;

    enum class Verdict {
        write,    ///< go on and write
        stopNow,  ///< the display just ran out of writes: tell the user, once
        stopped,  ///< the display is stopped already: say nothing
    };

    /// Whether the restore pass may write `edid` to `display` at `now`.
    Verdict check(const DisplayID& display, const EDIDKit::Bytes& edid, double now);
    /// The restore pass wrote `edid` to `display`.
    void noteRewrite(const DisplayID& display, const EDIDKit::Bytes& edid, double now);
    /// Any other write of an override of ours (the user's apply, a revert
    /// putting the earlier override back): not counted, but quit undoes it.
    void noteOverrideWritten(const DisplayID& display);
    /// The display reports the override it was given: its count starts again.
    void noteArrived(const DisplayID& display);
    /// A display carrying an override of this run reports `edid` instead: the
    /// system's altered copy of it, remembered so that quit still knows it.
    void noteReportedInstead(const DisplayID& display, const EDIDKit::Bytes& edid);
    /// The display was given its factory EDID back.
    void noteFactoryRestored(const DisplayID& display);
    /// Forgets the displays that are not attached any more.
    void keepOnly(const std::vector<DisplayID>& attached);
    /// The user acted: every display may be written again.
    void releaseAll();

    bool isStopped(const DisplayID& display) const;
    bool hasOverrideWritten(const DisplayID& display) const;
    /// Whether `edid` is what the display last reported instead of the
    /// override written to it in this run.
    bool isReportedInstead(const DisplayID& display, const EDIDKit::Bytes& edid) const;

private:
    struct History {
        EDIDKit::Bytes edid;       ///< the override the writes below wrote
        std::deque<double> writes; ///< when, within the last window
        bool stopped = false;
        bool overrideWritten = false;
        std::optional<EDIDKit::Bytes> reportedInstead;
    };
    std::unordered_map<DisplayID, History> displays_;
};

} // namespace HalvoraCore
