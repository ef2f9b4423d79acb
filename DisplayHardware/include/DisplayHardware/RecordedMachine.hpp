#pragma once

#include <DisplayHardware/RecordedMonitor.hpp>
#include <DisplayHardware/VirtualClock.hpp>
#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/DisplaySystem.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace DisplayHardware {

/// A model of a Mac with external monitors, precise enough for the whole
/// application to run on it: monitors with their factory EDIDs and PBP
/// behaviour, ports that may carry a virtual EDID, modes taken from the EDID a
/// display reports, re-enumeration after every EDID change, sleep and wake,
/// and the two other tools that write override EDIDs. Events reach the
/// observers through the virtual clock (due at once, delivered when the clock
/// next runs), as the real ones arrive on the main run loop.
class RecordedMachine final : public HalvoraCore::DisplaySystem,
                              public HalvoraCore::ConflictProbe,
                              public std::enable_shared_from_this<RecordedMachine> {
public:
    /// Who wrote the virtual EDID a port carries.
    enum class Writer { halvora, edidOverrideService };
    /// Which EDID a port reports.
    enum class Source { factoryFull, factorySplit, override };

    /// What one monitor's port shows right now.
    struct Port {
        std::string name;
        bool attached = false;
        bool pbp = false;
        std::optional<HalvoraCore::DisplayID> id;
        EDIDKit::Bytes reportedEDID;
        Source source = Source::factoryFull;
        std::optional<Writer> writer;
        std::optional<HalvoraCore::DisplayMode> mode;
        HalvoraCore::PBPBehavior behavior = HalvoraCore::PBPBehavior::fixedMissingSplit;
    };

    /// Monitor names must be unique and not empty; throws std::invalid_argument.
    static std::shared_ptr<RecordedMachine> create(std::vector<RecordedMonitor> monitors,
                                                   std::shared_ptr<VirtualClock> clock);

    // DisplaySystem
    std::vector<HalvoraCore::ExternalDisplay> externalDisplays() override;
    void applyEDIDOverride(const EDIDKit::Bytes& edid,
                           const HalvoraCore::DisplayID& display) override;
    void restoreFactoryEDID(const HalvoraCore::DisplayID& display) override;
    std::vector<HalvoraCore::DisplayMode> modes(const HalvoraCore::DisplayID& display) override;
    std::optional<HalvoraCore::DisplayMode>
    currentMode(const HalvoraCore::DisplayID& display) override;
    void setMode(const HalvoraCore::DisplayMode& mode,
                 const HalvoraCore::DisplayID& display) override;
    void observeConfigurationChanges(std::function<void(bool isHotplug)> callback) override;
    void observeDisplayInterrupts(std::function<void()> callback) override;
    void observeSleep(std::function<void(bool asleep)> callback) override;

    // ConflictProbe
    HalvoraCore::ConflictSet detect() override;
    void takeOver(HalvoraCore::ConflictingTool tool) override;

    // What happens to the machine. A name that no monitor has throws
    // std::invalid_argument; an action that changes nothing does nothing.
    void plug(const std::string& name);
    void unplug(const std::string& name);
    /// The user toggles picture-by-picture on the monitor.
    void setPBP(const std::string& name, bool on);
    /// A port interrupt from the monitor (as a cable wiggle or an OSD action raises).
    void interrupt(const std::string& name);
    void sleep();
    void wake();
    /// The other tool starts or stops. While the EDID override service runs,
    /// it writes its own override to every monitor at plug, at wake and when
    /// it starts.
    void setTool(HalvoraCore::ConflictingTool tool, bool present);
    bool hasTool(HalvoraCore::ConflictingTool tool) const;

    bool isAsleep() const { return asleep_; }
    std::vector<Port> ports() const;
    Port port(const std::string& name) const;
    /// The monitor an attached display belongs to.
    std::optional<std::string> nameOf(const HalvoraCore::DisplayID& display) const;
    /// The override the EDID override service writes for a monitor.
    static EDIDKit::Bytes toolEDIDFor(const EDIDKit::Bytes& factoryEDID);
    /// The modes offered for an EDID: its detailed and DisplayID timings at
    /// whole-hertz refresh rates, each once, in EDID order.
    static std::vector<HalvoraCore::DisplayMode> modesOf(const EDIDKit::Bytes& edid);
    /// The mode a display comes up in with this EDID: the preferred timing, a
    /// preferred DisplayID timing first.
    static std::optional<HalvoraCore::DisplayMode> preferredModeOf(const EDIDKit::Bytes& edid);

private:
    struct Slot {
        RecordedMonitor monitor;
        std::string portName;
        std::optional<HalvoraCore::DisplayID> id;
        EDIDKit::Bytes latched; ///< what a latching monitor reported at plug
        std::optional<EDIDKit::Bytes> virtualEDID;
        std::optional<Writer> writer;
        std::optional<HalvoraCore::DisplayMode> mode;
    };

    RecordedMachine(std::vector<RecordedMonitor> monitors, std::shared_ptr<VirtualClock> clock);

    Slot& slot(const std::string& name);
    const Slot& slot(const std::string& name) const;
    Slot* attachedSlot(const HalvoraCore::DisplayID& display);
    const EDIDKit::Bytes& factoryEDID(const Slot& s) const;
    const EDIDKit::Bytes& reportedEDID(const Slot& s) const;
    Source source(const Slot& s) const;
    Port view(const Slot& s) const;
    void comeUp(Slot& s);
    void writeVirtual(Slot& s, std::optional<EDIDKit::Bytes> edid, std::optional<Writer> writer);
    void toolWrites();
    void post(std::function<void(RecordedMachine&)> event);
    void configurationEvent(bool isHotplug);

    std::vector<Slot> slots_;
    std::shared_ptr<VirtualClock> clock_;
    std::vector<std::function<void(bool)>> configurationObservers_;
    std::vector<std::function<void()>> interruptObservers_;
    std::vector<std::function<void(bool)>> sleepObservers_;
    bool asleep_ = false;
    bool overrideService_ = false;
    bool betterDisplay_ = false;
    unsigned plugCount_ = 0;
};

} // namespace DisplayHardware
