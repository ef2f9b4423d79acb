#pragma once

#include <HalvoraCore/DisplayState.hpp>
#include <HalvoraCore/DisplayWriter.hpp>
#include <HalvoraCore/OwnedTimers.hpp>
#include <optional>
#include <vector>

namespace HalvoraCore {

/// The offer to switch a monitor to its other resolution after the user
/// seems to have toggled PBP on it: a port interrupt, outside the quiet
/// spans after the controller's own changes and after wake, is followed 1 s
/// later by an offer for the first latching (or unobserved) monitor with the
/// split applied; the offer lapses after 30 s.
class SwitchOffer {
public:
    static constexpr double wakeQuiet = 15;
    static constexpr double promptDelay = 1;
    static constexpr double promptTimeout = 30;

    /// What the offer asks of the controller.
    class Host {
    public:
        virtual ~Host() = default;
        /// No offer while a change awaits confirmation or PBP is being observed.
        virtual bool offersPaused() = 0;
        virtual std::vector<DisplayState> displayStates() = 0;
        virtual void changed() = 0;
    };

    SwitchOffer(OwnedTimers& timers, const DisplayWriter& writer, Host& host)
        : timers_(timers), writer_(writer), host_(host) {}
    SwitchOffer(const SwitchOffer&) = delete;
    SwitchOffer& operator=(const SwitchOffer&) = delete;
    ~SwitchOffer();

    const std::optional<SwitchPrompt>& prompt() const { return prompt_; }

    /// Whether an interrupt could ever lead to an offer for this display: its
    /// split is applied and its monitor latches its EDID at plug-in, or has
    /// not been observed.
    static bool mayOfferFor(const DisplayState& state);

    /// A port interrupt that may be the user's toggle.
    void interrupted();
    void sleepChanged(bool asleep);
    /// Opens the offer now, when there is a monitor to offer it for.
    void offer();
    void dismiss();
    /// Withdraws the offer if it names `display`.
    void withdrawFor(const DisplayID& display);
    /// The open offer, withdrawn to be acted on.
    std::optional<SwitchPrompt> take();

    bool inWakeQuiet() const;

private:
    OwnedTimers& timers_;
    const DisplayWriter& writer_;
    Host& host_;
    std::optional<SwitchPrompt> prompt_;
    std::optional<ScheduledTask> promptCheck_;
    std::optional<ScheduledTask> promptTimeout_;
    bool screensAsleep_ = false;
    std::optional<double> lastWake_;
};

} // namespace HalvoraCore
