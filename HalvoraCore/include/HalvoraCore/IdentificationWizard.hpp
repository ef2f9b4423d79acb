#pragma once

#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplaySystem.hpp>
#include <HalvoraCore/IdentificationHost.hpp>
#include <HalvoraCore/IdentificationProgress.hpp>
#include <HalvoraCore/PBPBehavior.hpp>

#include <EDIDKit/NativeResolutionGuess.hpp>
#include <EDIDKit/Resolution.hpp>

#include <functional>
#include <memory>
#include <optional>

namespace HalvoraCore {

/// Walks the user through identifying one monitor: confirm the panel's native
/// resolution among the guess's candidates, toggle picture-by-picture while
/// the controller watches, then see the result. The identification window
/// renders `step()` and forwards the user's answers; the controller reports
/// what it saw through `IdentificationProgress`, and the wizard moves its own
/// step on.
class IdentificationWizard final : public IdentificationProgress,
                                   public std::enable_shared_from_this<IdentificationWizard> {
public:
    struct Step {
        enum class Kind {
            chooseNative,       ///< pick the native resolution among the guess's candidates
            confirming,         ///< behaviour observed; the split change awaits confirmation
            finished,           ///< identified, with the observed behaviour
            reverted,           ///< the change that followed identification was reverted
            replugGuidance,     ///< no candidate fits: unplug, replug and try again
            displayUnavailable, ///< not attached, unreadable EDID, or no guess
            togglePBP,          ///< toggle picture-by-picture on the monitor now
        };
        Kind kind = Kind::displayUnavailable;
        std::optional<EDIDKit::NativeResolutionGuess> guess; ///< for chooseNative
        std::optional<PBPBehavior> behavior;                 ///< for confirming, finished, reverted

        static Step chooseNative(EDIDKit::NativeResolutionGuess g) { return {Kind::chooseNative, std::move(g), {}}; }
        static Step confirming(PBPBehavior b) { return {Kind::confirming, {}, b}; }
        static Step finished(PBPBehavior b) { return {Kind::finished, {}, b}; }
        static Step reverted(PBPBehavior b) { return {Kind::reverted, {}, b}; }
        static Step replugGuidance() { return {Kind::replugGuidance, {}, {}}; }
        static Step displayUnavailable() { return {Kind::displayUnavailable, {}, {}}; }
        static Step togglePBP() { return {Kind::togglePBP, {}, {}}; }

        friend bool operator==(const Step&, const Step&) = default;
    };

    /// A wizard for `display`, at `displayUnavailable` until `detect()`. It
    /// holds the controller weakly and keeps working when it is gone.
    static std::shared_ptr<IdentificationWizard> create(DisplayID display, std::shared_ptr<DisplaySystem> system,
                                                        std::weak_ptr<IdentificationHost> controller);

    /// The display being identified. When the monitor is unplugged and plugged
    /// in again it comes back under a new ID; the wizard finds it again by its
    /// EDID identity and follows it.
    const DisplayID& display() const { return display_; }
    const Step& step() const { return step_; }

    /// Called when the step moved on because of what the controller reported.
    std::function<void()> onChange;

    /// Looks at the display again (found again by its EDID identity after a
    /// replug): `chooseNative` with the EDID's guess, or `displayUnavailable`.
    void detect();
    void recheck() { detect(); }
    /// The split resolution the controller derives for this display.
    std::optional<EDIDKit::Resolution> splitResolution() const;
    /// The user confirms the native resolution: the controller saves it and
    /// starts watching picture-by-picture toggles.
    void confirm(EDIDKit::Resolution native);
    void noneOfThese() { step_ = Step::replugGuidance(); }
    /// The user has toggled picture-by-picture (or skips doing so).
    void finishToggle();
    void skipToggle();
    /// The window closed: stop this wizard's observation, if it is running.
    void cancel();

    // What the controller reports.
    void displayUnavailable() override;
    void judged(PBPBehavior verdict, Outcome outcome) override;
    /// Moves on only while confirming: to finished, or reverted, with the
    /// observed behaviour.
    void confirmationEnded(bool kept) override;

private:
    IdentificationWizard(DisplayID display, std::shared_ptr<DisplaySystem> system,
                         std::weak_ptr<IdentificationHost> controller);

    void moveTo(Step step);

    /// The attached display this wizard identifies: by its ID, or else the
    /// first display of the monitor it was last seen with (then `display_`
    /// follows it).
    std::optional<ExternalDisplay> locate();

    DisplayID display_;
    std::optional<DisplayIdentity> identity_;
    Step step_ = Step::displayUnavailable();
    std::shared_ptr<DisplaySystem> system_;
    std::weak_ptr<IdentificationHost> controller_;
};

} // namespace HalvoraCore
