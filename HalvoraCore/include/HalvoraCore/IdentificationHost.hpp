#pragma once

#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>

#include <EDIDKit/Resolution.hpp>

#include <memory>
#include <optional>

namespace HalvoraCore {

class IdentificationProgress;

/// What an identification asks of the controller.
class IdentificationHost {
public:
    virtual ~IdentificationHost() = default;

    /// The key of the record the attached display belongs to (whether or not
    /// the record exists yet); nothing when the display is gone or its EDID
    /// unreadable. It follows the monitor through our own override, however
    /// the port hands that back.
    virtual std::optional<DisplayIdentity> monitorKey(const DisplayID& display) = 0;
    /// The split resolution derived for the display's monitor, once identified.
    virtual std::optional<EDIDKit::Resolution> splitResolution(const DisplayID& display) = 0;
    /// Saves the confirmed native resolution (creating the monitor's record)
    /// and captures its factory EDID.
    virtual void confirmNative(EDIDKit::Resolution native, const DisplayID& display) = 0;
    /// Starts watching the display while the user toggles PBP; the verdict
    /// goes to `progress`.
    virtual void beginObservingPBP(const std::shared_ptr<IdentificationProgress>& progress,
                                   const DisplayID& display) = 0;
    /// Judges the monitor's behaviour from what was seen and acts on it.
    virtual void finishObservingPBP(bool userToggled) = 0;
    /// Ends the observation reporting to `progress`, if it is the running one.
    virtual void cancelObservation(const IdentificationProgress& progress) = 0;
};

} // namespace HalvoraCore
