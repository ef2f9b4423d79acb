#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayMode.hpp>
#include <HalvoraPlatform/seams/AVServiceRegistry.hpp>
#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <HalvoraPlatform/seams/OtherApplication.hpp>
#include <HalvoraPlatform/seams/PortEventLogs.hpp>
#include <HalvoraPlatform/seams/ProcessSpawner.hpp>
#include <HalvoraPlatform/seams/WorkspaceNotifications.hpp>
#include <HalvoraSimulation/RecordedMonitor.hpp>
#include <HalvoraSimulation/VirtualClock.hpp>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraSimulation {

/// A model of a Mac with external monitors, precise enough for the whole
/// application to run on it: monitors with their factory EDIDs and PBP
/// behaviour, ports that may carry a virtual EDID, modes taken from the EDID a
/// display reports, re-enumeration after every EDID change, sleep and wake,
/// and the two other tools that write override EDIDs. It answers the raw
/// platform calls (the AV service registry, CoreGraphics, reconfiguration
/// callbacks, port EventLogs, workspace notifications, BetterDisplay's
/// preferences and launchctl), so the live display system and conflict probe
/// run on it unchanged. Events reach their callbacks through the virtual clock
/// (due at once, delivered when the clock next runs), as the real ones arrive
/// on the main run loop.
class RecordedMachine final : public HalvoraPlatform::AVServiceRegistry,
                              public HalvoraPlatform::CoreGraphicsDisplays,
                              public HalvoraPlatform::ReconfigurationEvents,
                              public HalvoraPlatform::PortEventLogs,
                              public HalvoraPlatform::WorkspaceNotifications,
                              public HalvoraPlatform::OtherApplication,
                              public HalvoraPlatform::ProcessSpawner,
                              public std::enable_shared_from_this<RecordedMachine> {
public:
    /// Who wrote the virtual EDID a port carries.
    enum class Writer { halvora, edidOverrideService };
    /// Which EDID a port reports.
    enum class Source { factoryFull, factorySplit, override };

    /// The launch agent of the recorded EDID override service, and the user
    /// whose GUI domain it runs in.
    static inline const std::string overrideServiceLabel = "recorded.edid-override-service";
    static constexpr unsigned userID = 501;
    /// The registry class whose EventLogs carry the ports' interrupts here.
    static inline const std::string portClass = "AppleDCPDPTXRemotePortUFP";
    /// How many events a port's EventLog keeps before the oldest drop out.
    static constexpr std::size_t eventLogCapacity = 8;

    /// What one monitor's port shows right now.
    struct Port {
        std::string name;
        bool attached = false;
        bool pbp = false;
        /// The display's ID while attached ("dcp-" and its registry entry ID).
        std::optional<HalvoraCore::DisplayID> id;
        EDIDKit::Bytes reportedEDID;
        Source source = Source::factoryFull;
        std::optional<Writer> writer;
        std::optional<HalvoraCore::DisplayMode> mode;
        HalvoraCore::PBPBehavior behavior = HalvoraCore::PBPBehavior::fixedMissingSplit;
        /// When an override was written to the port (by anyone calling
        /// SetVirtualEDIDMode with an EDID), over the machine's whole life.
        std::vector<double> overrideWriteTimes;
    };

    /// Monitor names must be unique and not empty; throws std::invalid_argument.
    static std::shared_ptr<RecordedMachine> create(std::vector<RecordedMonitor> monitors,
                                                   std::shared_ptr<VirtualClock> clock);

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
    /// How many times an EDID was read from the machine's ports (CopyEDID calls).
    std::size_t edidReads() const { return edidReads_; }
    std::vector<Port> ports() const;
    Port port(const std::string& name) const;
    /// The monitor an attached display belongs to.
    std::optional<std::string> nameOf(const HalvoraCore::DisplayID& display) const;
    /// The override the EDID override service writes for a monitor.
    static EDIDKit::Bytes toolEDIDFor(const EDIDKit::Bytes& factoryEDID);
    /// The modes offered for an EDID: its detailed and DisplayID timings at
    /// whole-hertz refresh rates, each once, in EDID order.
    static std::vector<HalvoraCore::DisplayMode> modesOf(const EDIDKit::Bytes& edid);
    /// The mode a display comes up in with this EDID: the monitor's preferred
    /// timing (a preferred DisplayID timing first).
    static std::optional<HalvoraCore::DisplayMode> preferredModeOf(const EDIDKit::Bytes& edid);

    // AVServiceRegistry: a built-in panel's proxy, then one per attached port.
    std::optional<std::vector<Entry>> entries(const std::string& className) override;
    std::int32_t copyEDID(const ServiceRef& service, std::optional<EDIDKit::Bytes>& edid) override;
    std::int32_t setVirtualEDIDMode(const ServiceRef& service, const std::uint32_t* mode,
                                    const EDIDKit::Bytes* data) override;
    // CoreGraphicsDisplays: the built-in panel is display 1; monitors follow.
    std::vector<DisplayNumber> onlineDisplays(std::uint32_t maximum) override;
    bool isBuiltin(DisplayNumber display) override;
    std::uint32_t vendorNumber(DisplayNumber display) override;
    std::uint32_t modelNumber(DisplayNumber display) override;
    std::uint32_t serialNumber(DisplayNumber display) override;
    std::vector<Mode> allModes(DisplayNumber display) override;
    std::optional<Mode> currentMode(DisplayNumber display) override;
    std::int32_t configure(DisplayNumber display, const Mode& mode) override;
    // ReconfigurationEvents
    void registerCallback(std::function<void(DisplayNumber, std::uint32_t flags)> callback) override;
    // PortEventLogs
    std::vector<HalvoraPlatform::PortEventLogs::Event> events(const std::string& className) override;
    // WorkspaceNotifications
    void observe(std::function<void(HalvoraPlatform::WorkspaceNotifications::Event)> callback) override;
    // OtherApplication: BetterDisplay, with its automatic override on while it runs.
    bool isRunning(const std::string& bundleID) override;
    void synchronize(const std::string& domain) override;
    std::optional<std::vector<std::string>> keys(const std::string& domain) override;
    Value value(const std::string& key, const std::string& domain) override;
    // ProcessSpawner: launchctl's print, bootout and disable for the service;
    // every run ends at once.
    std::optional<int> spawn(const std::string& path, const std::vector<std::string>& arguments) override;
    std::optional<Ending> poll(int process) override;
    void killAndReap(int process) override;
    void sleepMilliseconds(int milliseconds) override;

private:
    struct Slot {
        RecordedMonitor monitor;
        std::string portName;
        DisplayNumber cgNumber = 0;
        std::uint64_t registryID = 0; ///< while attached
        EDIDKit::Bytes latched;        ///< what a latching monitor reported at plug
        std::optional<EDIDKit::Bytes> virtualEDID;
        std::optional<Writer> writer;
        std::optional<HalvoraCore::DisplayMode> mode;
        std::deque<HalvoraPlatform::PortEventLogs::Event> eventLog;
        std::vector<double> overrideWriteTimes;
    };

    RecordedMachine(std::vector<RecordedMonitor> monitors, std::shared_ptr<VirtualClock> clock);

    Slot& slot(const std::string& name);
    const Slot& slot(const std::string& name) const;
    Slot* attachedSlot(std::uint64_t registryID);
    Slot* displaySlot(DisplayNumber display);
    const EDIDKit::Bytes& factoryEDID(const Slot& s) const;
    const EDIDKit::Bytes& reportedEDID(const Slot& s) const;
    Source source(const Slot& s) const;
    Port view(const Slot& s) const;
    void comeUp(Slot& s);
    void writeVirtual(Slot& s, std::optional<EDIDKit::Bytes> edid, std::optional<Writer> writer);
    void toolWrites();
    void post(std::function<void(RecordedMachine&)> event);
    /// CoreGraphics' announcement, then the change itself, for one display.
    void reconfigured(const Slot& s, std::uint32_t flags);
    void logEvent(Slot& s, const std::string& action);
    void notify(HalvoraPlatform::WorkspaceNotifications::Event event);
    /// What launchctl answers for these arguments.
    int launchctl(const std::vector<std::string>& arguments);

    std::vector<Slot> slots_;
    /// Held weakly: the clock holds the machine's events, which may hold what holds the machine.
    std::weak_ptr<VirtualClock> clock_;
    std::vector<std::function<void(DisplayNumber, std::uint32_t)>> reconfigurationCallbacks_;
    std::vector<std::function<void(HalvoraPlatform::WorkspaceNotifications::Event)>> workspaceObservers_;
    std::map<int, int> finishedRuns_; ///< process → exit code
    int processCount_ = 0;
    std::size_t edidReads_ = 0;
    std::uint64_t eventClock_ = 1000;
    bool asleep_ = false;
    bool overrideService_ = false;
    bool betterDisplay_ = false;
    unsigned plugCount_ = 0;
};

} // namespace HalvoraSimulation
