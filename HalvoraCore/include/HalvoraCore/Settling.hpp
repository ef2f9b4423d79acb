#pragma once

#include <EDIDKit/Bytes.hpp>
#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/ModeMemory.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <optional>

namespace HalvoraCore {

/// What follows every override write: the system picks a mode of its own, so
/// the modes the display shows go unrecorded for a while, and the user's mode
/// is put back once the display has settled, 3 s later. One settling at a
/// time: a new write restarts it.
class Settling {
public:
    static constexpr double settleDelay = 3;

    /// What the settling asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// Puts the display back into a mode it offers; failures are reported.
        virtual void restoreMode(const std::optional<DisplayMode>& mode,
                                 const DisplayID& display) = 0;
    };

    Settling(OwnedTimers& timers, DisplayWriter& writer, ModeMemory& modes, Host& host)
        : timers_(timers), writer_(writer), modes_(modes), host_(host) {}
    Settling(const Settling&) = delete;
    Settling& operator=(const Settling&) = delete;
    ~Settling();

    /// Writes `edid` to the display, then puts `mode` back once it has
    /// settled. Throws SplitError.
    void writeAndSettle(const EDIDKit::Bytes& edid, const DisplayID& display,
                        std::optional<DisplayMode> mode);
    /// Drops the mode that was to be put back.
    void cancel() { OwnedTimers::cancel(settle_); }

private:
    OwnedTimers& timers_;
    DisplayWriter& writer_;
    ModeMemory& modes_;
    Host& host_;
    std::optional<ScheduledTask> settle_;
};

} // namespace HalvoraCore
