#pragma once

#include <EDIDKit/Bytes.hpp>
#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/ExternalDisplay.hpp>
#include <HalvoraCore/MonitorRecords.hpp>
#include <HalvoraCore/PBPBehavior.hpp>
#include <HalvoraCore/SplitError.hpp>

namespace HalvoraCore {

/// Acts on how a monitor turned out to behave when PBP is toggled: stores
/// the behaviour in its record, writes the split override when the monitor
/// needs one and does not show it yet, or drops a saved override (and takes
/// it off the display) when the monitor brings its own split timing.
class BehaviorAdoption {
public:
    /// What the adoption asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// The override that gives the display its split timing. Throws SplitError.
        virtual EDIDKit::Bytes splitTarget(const ExternalDisplay& display) = 0;
        /// Writes the split override and opens the confirmation. Throws SplitError.
        virtual void applySplit(const DisplayID& display) = 0;
        /// Asks for a restore pass once the displays have settled.
        virtual void restoreSoon() = 0;
        virtual void changed() = 0;
        virtual void report(const SplitError& error) = 0;
    };

    BehaviorAdoption(MonitorRecords& monitors, DisplayWriter& writer, Host& host)
        : monitors_(monitors), writer_(writer), host_(host) {}

    /// False when the monitor needs an override that could not be built or
    /// written (the error was reported), or is gone.
    bool adopt(PBPBehavior behavior, const DisplayID& display);

private:
    /// The monitor brings its own split timing: no override is kept for it.
    void dropOverride(const ExternalDisplay& display);

    MonitorRecords& monitors_;
    DisplayWriter& writer_;
    Host& host_;
};

} // namespace HalvoraCore
