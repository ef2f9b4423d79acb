#pragma once

#include <HalvoraCore/IdentificationProgress.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <HalvoraCore/PBPObservation.hpp>
#include <HalvoraCore/PendingChange.hpp>

#include <EDIDKit/Bytes.hpp>

#include <memory>
#include <optional>

namespace HalvoraCore {

/// Runs the one observation of a monitor while the user toggles PBP for its
/// identification, judges it (90 s after it began at the latest, 15 s after
/// a toggle signal, 3 s once two toggles were counted, or when the user says
/// so), has the verdict adopted, and tells the identification what became of it.
class PBPObserver {
public:
    static constexpr double observationTimeout = 90;
    static constexpr double quietAfterSignal = 15;
    static constexpr double judgeAfterToggles = 3;

    /// What the observation asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// Whether the monitor's own EDID carries the split timing, if that can be told.
        virtual std::optional<bool> factoryHasSplit(const DisplayID& display) = 0;
        /// Stores the verdict and acts on it; false when the override it
        /// needs could not be written.
        virtual bool adopt(PBPBehavior verdict, const DisplayID& display) = 0;
    };

    PBPObserver(OwnedTimers& timers, const MonitorRecords& monitors, PendingChange& pending, Host& host)
        : timers_(timers), monitors_(monitors), pending_(pending), host_(host) {}
    PBPObserver(const PBPObserver&) = delete;
    PBPObserver& operator=(const PBPObserver&) = delete;
    ~PBPObserver() { end(); }

    /// Starts watching `display`, which reports `currentEDID` now, for `progress`.
    void begin(std::weak_ptr<IdentificationProgress> progress, const DisplayID& display,
               EDIDKit::Bytes currentEDID, std::optional<EDIDKit::Bytes> ourOverride);
    /// The running observation whose identification is still there; one whose
    /// identification is gone is ended.
    std::shared_ptr<PBPObservation> active();
    /// Whether `progress` is the identification of the running observation.
    bool isReportingTo(const IdentificationProgress& progress) const;
    /// A port interrupt during the observation: a toggle signal.
    void interrupted();
    /// Hands the observed display's current EDID to the observation.
    void noteReportedEDID();
    /// Judges what was seen, has the verdict adopted and tells the identification.
    void finish(bool userToggled);
    void end();

private:
    /// A toggle signal was seen: the judgement follows 15 s later, or 3 s
    /// once two toggles were counted.
    void signalled(PBPObservation& observation);

    OwnedTimers& timers_;
    const MonitorRecords& monitors_;
    PendingChange& pending_;
    Host& host_;
    std::shared_ptr<PBPObservation> observation_;
};

} // namespace HalvoraCore
