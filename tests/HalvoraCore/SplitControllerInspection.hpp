#pragma once

// What the controller's tests read of the policies behind it, and the steps
// they drive one at a time, none of which the shell sees.

#include <HalvoraCore/SplitController.hpp>
#include <memory>
#include <optional>

namespace HalvoraCore {

class SplitControllerInspection {
public:
    explicit SplitControllerInspection(SplitController& controller) : c_(controller) {}

    std::optional<double> lastOwnChange() const { return c_.writer_.lastOwnChange(); }
    bool inOwnChangeCooldown() const { return c_.writer_.inOwnChangeCooldown(); }
    bool inWakeQuiet() const { return c_.offer_.inWakeQuiet(); }
    const ModeMemory& modeMemory() const { return c_.modeMemory_; }
    std::shared_ptr<PBPObservation> activeObservation() { return c_.observer_.active(); }
    bool wantsInterrupts() { return c_.wantsInterrupts(); }

    std::optional<ExternalDisplay> display(const DisplayID& id) const {
        return c_.monitors_.display(id);
    }
    /// The saved record of the attached display's monitor.
    std::optional<DisplaySettings> savedSettings(const DisplayID& id) const {
        const auto m = c_.monitors_.monitor(id);
        return m ? m->settings : std::nullopt;
    }
    std::optional<bool> factoryHasSplit(const DisplayID& id) { return c_.factoryHasSplit(id); }
    void captureFactoryEDID(const ExternalDisplay& display) {
        if (const auto m = c_.monitors_.view(display)) c_.capture_.capture(*m);
    }
    bool isOwnEDID(const EDIDKit::Bytes& bytes,
                   const std::optional<DisplaySettings>& settings) const {
        return c_.capture_.isOwnEDID(bytes, settings);
    }
    void confirmNative(EDIDKit::Resolution native, const DisplayID& id) {
        c_.confirmNative(native, id);
    }
    void restoreMode(const std::optional<DisplayMode>& mode, const DisplayID& id) {
        c_.restoreMode(mode, id);
    }
    bool refreshConflicts() { return c_.refreshConflicts(); }
    bool clearOtherToolsEDID() { return c_.restore_.clearOtherTools(); }

private:
    SplitController& c_;
};

} // namespace HalvoraCore
