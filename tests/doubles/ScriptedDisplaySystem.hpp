#pragma once

#include <HalvoraCore/DisplaySystem.hpp>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TestDoubles {

/// A display system a test scripts: attached displays with their own EDIDs,
/// ports, modes and current mode, an override per display, failures on
/// demand, and events fired by hand. Every call from the core is recorded.
class ScriptedDisplaySystem final : public HalvoraCore::DisplaySystem {
public:
    struct Call {
        std::string operation; ///< "applyEDIDOverride", "restoreFactoryEDID", "setMode"
        HalvoraCore::DisplayID display;
        std::optional<EDIDKit::Bytes> edid;
        std::optional<HalvoraCore::DisplayMode> mode;
        /// "setMode dcp-1 1720×1440@60", "applyEDIDOverride dcp-1", "restoreFactoryEDID dcp-1".
        std::string description() const;
    };

    // Scripting.
    void attach(const std::string& id, EDIDKit::Bytes factoryEDID,
                std::vector<HalvoraCore::DisplayMode> modes = {},
                std::optional<HalvoraCore::DisplayMode> current = std::nullopt,
                std::optional<std::string> port = std::nullopt);
    void detach(const std::string& id);
    /// What the monitor itself reports (shown when no override is in force).
    void setFactoryEDID(const std::string& id, EDIDKit::Bytes edid);
    /// Puts an override on the port without recording a call (as at launch,
    /// when an earlier run left one).
    void setOverride(const std::string& id, std::optional<EDIDKit::Bytes> edid);
    void setModes(const std::string& id, std::vector<HalvoraCore::DisplayMode> modes);
    void setCurrentMode(const std::string& id, std::optional<HalvoraCore::DisplayMode> mode);

    /// Make the calls of that operation throw (until cleared with nullptr).
    std::exception_ptr failApply, failRestore, failSetMode;
    /// What the system makes of an override it is given (it shows that instead).
    std::function<EDIDKit::Bytes(const EDIDKit::Bytes&)> alterWrites;
    /// Make restoring the factory EDID throw for one display only.
    std::map<std::string, std::exception_ptr> failRestoreOn;

    void fireConfigurationChange(bool isHotplug);
    void fireInterrupt();
    void fireSleep(bool asleep);

    // What happened.
    std::vector<Call> calls;
    /// Told of every call as it is made (before a scripted failure is thrown).
    std::function<void(const Call&)> onCall;
    std::vector<std::string> callDescriptions() const;
    std::optional<EDIDKit::Bytes> overrideOn(const std::string& id) const;
    std::optional<HalvoraCore::DisplayMode> currentModeOf(const std::string& id) const;
    int observerRegistrations = 0;
    /// What the core said about watching for interrupts, in order (it says
    /// so only when it changes).
    std::vector<bool> interruptsWatched;

    // DisplaySystem.
    std::vector<HalvoraCore::ExternalDisplay> externalDisplays() override;
    void applyEDIDOverride(const EDIDKit::Bytes& edid,
                           const HalvoraCore::DisplayID& display) override;
    void restoreFactoryEDID(const HalvoraCore::DisplayID& display) override;
    std::vector<HalvoraCore::DisplayMode> modes(const HalvoraCore::DisplayID& display) override;
    std::optional<HalvoraCore::DisplayMode>
    currentMode(const HalvoraCore::DisplayID& display) override;
    void setMode(const HalvoraCore::DisplayMode& mode,
                 const HalvoraCore::DisplayID& display) override;
    void observeConfigurationChanges(std::function<void(bool)> callback) override;
    void observeDisplayInterrupts(std::function<void()> callback) override;
    void watchInterrupts(bool wanted) override { interruptsWatched.push_back(wanted); }
    void observeSleep(std::function<void(bool)> callback) override;

private:
    struct Attached {
        std::string id;
        EDIDKit::Bytes factoryEDID;
        std::optional<EDIDKit::Bytes> override;
        std::vector<HalvoraCore::DisplayMode> modes;
        std::optional<HalvoraCore::DisplayMode> current;
        std::optional<std::string> port;
    };
    Attached* find(const std::string& id);
    const Attached* find(const std::string& id) const;

    std::vector<Attached> displays_;
    std::vector<std::function<void(bool)>> configurationObservers_;
    std::vector<std::function<void()>> interruptObservers_;
    std::vector<std::function<void(bool)>> sleepObservers_;
};

} // namespace TestDoubles
