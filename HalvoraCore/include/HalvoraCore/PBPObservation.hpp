#pragma once

#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/Scheduler.hpp>

#include <EDIDKit/Bytes.hpp>

#include <memory>
#include <optional>

namespace HalvoraCore {

class IdentificationWizard;

/// Watches one monitor while the user toggles its picture-by-picture mode
/// during identification: which EDIDs of its own it presents, how many port
/// interrupts it raises, and how many separate toggles that adds up to.
class PBPObservation {
public:
    /// Signals closer together than this count as one toggle.
    static constexpr double toggleDebounce = 2.0;

    /// `currentEDID` is the monitor's baseline unless it is our own override.
    PBPObservation(std::weak_ptr<IdentificationWizard> wizard, DisplayID display,
                   std::optional<EDIDKit::Bytes> currentEDID, std::optional<EDIDKit::Bytes> ourOverride);

    /// Feeds the display's current EDID; true when it counts as a change of
    /// the monitor's own EDID (which is also a toggle signal).
    bool noteEDID(const std::optional<EDIDKit::Bytes>& edid, double at);
    /// Counts a toggle unless it follows the last one within 2 s.
    void noteSignal(double at);
    /// Cancels the time limit and the pending verdict (the handles stay).
    void cancelTasks();

    std::weak_ptr<IdentificationWizard> wizard;
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
