#pragma once

#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/PBPBehavior.hpp>
#include <HalvoraCore/Scheduler.hpp>

#include <EDIDKit/Bytes.hpp>

#include <memory>
#include <optional>

namespace HalvoraCore {

class IdentificationProgress;

/// Watches one monitor while the user toggles its picture-by-picture mode
/// during identification: which EDIDs of its own it presents, how many port
/// interrupts it raises, and how many separate toggles that adds up to.
class PBPObservation {
public:
    /// Signals closer together than this count as one toggle.
    static constexpr double toggleDebounce = 2.0;

    /// `currentEDID` is the monitor's baseline unless it is our own override
    /// (as written, or handed back with other identity bytes or checksums).
    PBPObservation(std::weak_ptr<IdentificationProgress> wizard, DisplayID display,
                   std::optional<EDIDKit::Bytes> currentEDID, std::optional<EDIDKit::Bytes> ourOverride);

    /// Feeds the display's current EDID; true when it counts as a change of
    /// the monitor's own EDID (which is also a toggle signal).
    bool noteEDID(const std::optional<EDIDKit::Bytes>& edid, double at);
    /// Counts a toggle unless it follows the last one within 2 s.
    void noteSignal(double at);
    /// Cancels the time limit and the pending verdict (the handles stay).
    void cancelTasks();

    /// The behaviour what was seen adds up to. A monitor that presented an
    /// EDID of its own other than before switches on toggle. One that did
    /// nothing at all while the user says PBP was toggled is fixed, with or
    /// without the split timing as its own EDID (`factoryHasSplit`) tells;
    /// when that cannot be told, or anything else was seen, it latches.
    PBPBehavior verdict(bool userToggled, std::optional<bool> factoryHasSplit) const;
    /// Whether `edid` is `ourOverride`, allowing for a port that changed only
    /// its identity bytes or checksums (absent counts as ours when both are).
    bool isOurOverride(const std::optional<EDIDKit::Bytes>& edid) const;

    std::weak_ptr<IdentificationProgress> wizard;
    DisplayID display;
    std::optional<EDIDKit::Bytes> ourOverride;
    /// The last EDID seen from the monitor itself (not our override).
    std::optional<EDIDKit::Bytes> factoryEDID;
    bool edidChanged = false;
    int interrupts = 0;
    int toggles = 0;
    std::optional<double> lastSignal;
    std::optional<ScheduledTask> timeout;
    std::optional<ScheduledTask> judgeTask;
};

} // namespace HalvoraCore
