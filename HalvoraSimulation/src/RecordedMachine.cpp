#include <EDIDKit/EDID.hpp>
#include <HalvoraPlatform/ExternalDisplayService.hpp>
#include <HalvoraPlatform/OtherOverrideTools.hpp>
#include <HalvoraSimulation/RecordedMachine.hpp>
#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>

namespace HalvoraSimulation {

using HalvoraCore::ConflictingTool;
using HalvoraCore::DisplayID;
using HalvoraCore::DisplayMode;
using HalvoraCore::PBPBehavior;

namespace {

// kIOReturnNotFound: what the AV service calls answer for a port with nothing on it.
constexpr std::int32_t notFound = static_cast<std::int32_t>(0xE00002F0u);
// kCGErrorIllegalArgument: a configuration with a mode the display does not offer.
constexpr std::int32_t illegalArgument = 1001;
// CGDisplayChangeSummaryFlags the machine reports.
constexpr std::uint32_t beginConfiguration = 0x1, setModeFlag = 0x8, addFlag = 0x10, removeFlag = 0x20,
                        enabledFlag = 0x100;
// The built-in panel: CoreGraphics display 1, and its AV service proxy.
constexpr HalvoraPlatform::CoreGraphicsDisplays::DisplayNumber builtInDisplay = 1;
constexpr std::uint64_t builtInRegistryID = 4294967800;
// Registry entry IDs of the external ports' proxies; a replug makes a new one.
constexpr std::uint64_t firstRegistryID = 4294968000;

DisplayMode modeOf(const EDIDKit::Timing& timing) {
    return {timing.width, timing.height, std::llround(timing.refreshRate())};
}

} // namespace

std::shared_ptr<RecordedMachine> RecordedMachine::create(std::vector<RecordedMonitor> monitors,
                                                         std::shared_ptr<VirtualClock> clock) {
    std::set<std::string> names;
    for (const auto& m : monitors) {
        if (m.name.empty()) throw std::invalid_argument("every monitor needs a name");
        if (!names.insert(m.name).second)
            throw std::invalid_argument("two monitors are named '" + m.name + "'");
    }
    auto machine = std::shared_ptr<RecordedMachine>(
        new RecordedMachine(std::move(monitors), std::move(clock)));
    for (const auto& s : machine->slots_)
        if (s.monitor.attached) machine->plug(s.monitor.name);
    return machine;
}

RecordedMachine::RecordedMachine(std::vector<RecordedMonitor> monitors,
                                 std::shared_ptr<VirtualClock> clock)
    : clock_(std::move(clock)) {
    for (auto& m : monitors) {
        Slot s;
        s.portName = "Port " + std::to_string(slots_.size() + 1);
        s.cgNumber = static_cast<DisplayNumber>(slots_.size() + 2);
        s.monitor = std::move(m);
        slots_.push_back(std::move(s));
    }
}

// --- EDIDs and modes -------------------------------------------------------

std::vector<DisplayMode> RecordedMachine::modesOf(const EDIDKit::Bytes& bytes) {
    std::vector<DisplayMode> result;
    const auto edid = EDIDKit::EDID::tryParse(bytes);
    if (!edid) return result;
    const auto add = [&](const EDIDKit::Timing& t) {
        const DisplayMode m = modeOf(t);
        if (std::find(result.begin(), result.end(), m) == result.end()) result.push_back(m);
    };
    for (const auto& t : edid->detailedTimings())
        add(t);
    for (const auto& t : edid->displayIDTimings())
        add(t.timing);
    return result;
}

std::optional<DisplayMode> RecordedMachine::preferredModeOf(const EDIDKit::Bytes& bytes) {
    const auto edid = EDIDKit::EDID::tryParse(bytes);
    if (!edid) return std::nullopt;
    // Like macOS, a DisplayID timing marked preferred (the whole panel of a
    // monitor too wide for the base block) wins over the base block's choice.
    const std::optional<EDIDKit::Resolution> preferred = edid->monitorPreferredResolution();
    const auto all = modesOf(bytes);
    for (const auto& m : all)
        if (preferred && m.resolution() == *preferred) return m;
    if (all.empty()) return std::nullopt;
    return all.front();
}

EDIDKit::Bytes RecordedMachine::toolEDIDFor(const EDIDKit::Bytes& factoryEDID) {
    // The service's own override differs from the factory EDID in the screen
    // width it declares: enough to tell it from both the factory EDID and
    // Halvora Pro's override, with the monitor's identity unchanged.
    const auto edid = EDIDKit::EDID::tryParse(factoryEDID);
    if (!edid) return factoryEDID;
    const std::uint8_t width = edid->screenWidthCM() == 99 ? 98 : 99;
    return edid->withScreenSizeCM(width, static_cast<std::uint8_t>(edid->screenHeightCM())).bytes();
}

const EDIDKit::Bytes& RecordedMachine::factoryEDID(const Slot& s) const {
    const auto& m = s.monitor;
    switch (m.behavior) {
    case PBPBehavior::switchesOnToggle:
        return m.pbp && m.split ? *m.split : m.full;
    case PBPBehavior::latchedAtPlug:
        return s.latched;
    case PBPBehavior::fixedMissingSplit:
    case PBPBehavior::fixedWithSplit:
        break;
    }
    return m.full;
}

const EDIDKit::Bytes& RecordedMachine::reportedEDID(const Slot& s) const {
    return s.virtualEDID ? *s.virtualEDID : factoryEDID(s);
}

RecordedMachine::Source RecordedMachine::source(const Slot& s) const {
    if (s.virtualEDID) return Source::override;
    const auto& factory = factoryEDID(s);
    return s.monitor.split && factory == *s.monitor.split && factory != s.monitor.full
               ? Source::factorySplit
               : Source::factoryFull;
}

RecordedMachine::Port RecordedMachine::view(const Slot& s) const {
    Port p;
    p.name = s.monitor.name;
    p.attached = s.registryID != 0;
    p.pbp = s.monitor.pbp;
    if (p.attached) p.id = HalvoraPlatform::ExternalDisplayService::displayID(s.registryID);
    p.reportedEDID = reportedEDID(s);
    p.source = source(s);
    p.writer = s.writer;
    p.mode = s.mode;
    p.behavior = s.monitor.behavior;
    p.overrideWriteTimes = s.overrideWriteTimes;
    return p;
}

// --- lookup ----------------------------------------------------------------

RecordedMachine::Slot& RecordedMachine::slot(const std::string& name) {
    for (auto& s : slots_)
        if (s.monitor.name == name) return s;
    throw std::invalid_argument("no monitor is named '" + name + "'");
}

const RecordedMachine::Slot& RecordedMachine::slot(const std::string& name) const {
    return const_cast<RecordedMachine*>(this)->slot(name);
}

RecordedMachine::Slot* RecordedMachine::attachedSlot(std::uint64_t registryID) {
    for (auto& s : slots_)
        if (registryID != 0 && s.registryID == registryID) return &s;
    return nullptr;
}

RecordedMachine::Slot* RecordedMachine::displaySlot(DisplayNumber display) {
    for (auto& s : slots_)
        if (s.registryID != 0 && s.cgNumber == display) return &s;
    return nullptr;
}

std::vector<RecordedMachine::Port> RecordedMachine::ports() const {
    std::vector<Port> result;
    for (const auto& s : slots_)
        result.push_back(view(s));
    return result;
}

RecordedMachine::Port RecordedMachine::port(const std::string& name) const {
    return view(slot(name));
}

std::optional<std::string> RecordedMachine::nameOf(const DisplayID& display) const {
    for (const auto& s : slots_)
        if (s.registryID != 0 && HalvoraPlatform::ExternalDisplayService::displayID(s.registryID) == display)
            return s.monitor.name;
    return std::nullopt;
}

// --- events ----------------------------------------------------------------

void RecordedMachine::post(std::function<void(RecordedMachine&)> event) {
    const auto clock = clock_.lock();
    if (!clock) return; // the machine outlived its time
    clock->schedule(0, [weak = weak_from_this(), event = std::move(event)] {
        if (const auto self = weak.lock()) event(*self);
    });
}

void RecordedMachine::reconfigured(const Slot& s, std::uint32_t flags) {
    post([display = s.cgNumber, flags](RecordedMachine& m) {
        const auto callbacks = m.reconfigurationCallbacks_;
        for (const auto& c : callbacks) c(display, beginConfiguration);
        for (const auto& c : callbacks) c(display, flags);
    });
}

void RecordedMachine::logEvent(Slot& s, const std::string& action) {
    // The log is a ring: the oldest events drop out as new ones come.
    s.eventLog.push_back({false, ++eventClock_, action, "Done"});
    while (s.eventLog.size() > eventLogCapacity) s.eventLog.pop_front();
}

void RecordedMachine::notify(HalvoraPlatform::WorkspaceNotifications::Event event) {
    post([event](RecordedMachine& m) {
        const auto observers = m.workspaceObservers_;
        for (const auto& o : observers) o(event);
    });
}

void RecordedMachine::comeUp(Slot& s) {
    s.mode = preferredModeOf(reportedEDID(s));
    reconfigured(s, addFlag);
}

void RecordedMachine::writeVirtual(Slot& s, std::optional<EDIDKit::Bytes> edid,
                                   std::optional<Writer> writer) {
    const EDIDKit::Bytes before = reportedEDID(s);
    s.virtualEDID = std::move(edid);
    s.writer = s.virtualEDID ? writer : std::nullopt;
    if (reportedEDID(s) != before) comeUp(s);
}

void RecordedMachine::toolWrites() {
    if (!overrideService_) return;
    for (auto& s : slots_)
        if (s.registryID != 0) writeVirtual(s, toolEDIDFor(factoryEDID(s)), Writer::edidOverrideService);
}

void RecordedMachine::plug(const std::string& name) {
    Slot& s = slot(name);
    if (s.registryID != 0) return;
    s.registryID = firstRegistryID + ++plugCount_;
    s.eventLog.clear();
    logEvent(s, "Plug");
    s.latched = s.monitor.pbp && s.monitor.split ? *s.monitor.split : s.monitor.full;
    comeUp(s);
    if (overrideService_) writeVirtual(s, toolEDIDFor(factoryEDID(s)), Writer::edidOverrideService);
}

void RecordedMachine::unplug(const std::string& name) {
    Slot& s = slot(name);
    if (s.registryID == 0) return;
    // The port's AV service goes away with the display, and its virtual EDID with it.
    s.registryID = 0;
    s.virtualEDID.reset();
    s.writer.reset();
    s.mode.reset();
    reconfigured(s, removeFlag);
}

void RecordedMachine::setPBP(const std::string& name, bool on) {
    Slot& s = slot(name);
    if (s.monitor.pbp == on) return;
    s.monitor.pbp = on;
    if (s.registryID == 0) return;
    switch (s.monitor.behavior) {
    case PBPBehavior::switchesOnToggle: {
        // The monitor re-enumerates; it comes up in the preferred timing when
        // the EDID it reports has changed, and in its mode otherwise.
        const bool overridden = s.virtualEDID.has_value();
        if (!overridden) s.mode = preferredModeOf(reportedEDID(s));
        reconfigured(s, addFlag);
        break;
    }
    case PBPBehavior::latchedAtPlug:
        logEvent(s, "IRQ");
        break;
    case PBPBehavior::fixedMissingSplit:
    case PBPBehavior::fixedWithSplit:
        break;
    }
}

void RecordedMachine::interrupt(const std::string& name) {
    Slot& s = slot(name);
    if (s.registryID != 0) logEvent(s, "IRQ");
}

void RecordedMachine::sleep() {
    if (asleep_) return;
    asleep_ = true;
    notify(HalvoraPlatform::WorkspaceNotifications::Event::willSleep);
}

void RecordedMachine::wake() {
    if (!asleep_) return;
    asleep_ = false;
    notify(HalvoraPlatform::WorkspaceNotifications::Event::didWake);
    // Every attached display re-enumerates after wake.
    for (const auto& s : slots_)
        if (s.registryID != 0) reconfigured(s, enabledFlag);
    toolWrites();
}

void RecordedMachine::setTool(ConflictingTool tool, bool present) {
    if (tool == ConflictingTool::betterDisplay) {
        betterDisplay_ = present;
        return;
    }
    const bool starting = present && !overrideService_;
    overrideService_ = present;
    if (starting) toolWrites();
}

bool RecordedMachine::hasTool(ConflictingTool tool) const {
    return tool == ConflictingTool::betterDisplay ? betterDisplay_ : overrideService_;
}

// --- AV services ------------------------------------------------------------

std::optional<std::vector<HalvoraPlatform::AVServiceRegistry::Entry>> RecordedMachine::entries(const std::string& className) {
    std::vector<Entry> result;
    if (className != HalvoraPlatform::ExternalDisplayService::proxyClass) return result;
    const auto pathBuffer = [](const std::string& path) {
        EDIDKit::Bytes buffer(512, 0);
        std::copy(path.begin(), path.end(), buffer.begin());
        return buffer;
    };
    result.push_back({"Embedded", builtInRegistryID, pathBuffer("Built-in"),
                      std::make_shared<const std::uint64_t>(builtInRegistryID)});
    for (const auto& s : slots_)
        if (s.registryID != 0)
            result.push_back({"External", s.registryID, pathBuffer(s.portName),
                              std::make_shared<const std::uint64_t>(s.registryID)});
    return result;
}

std::int32_t RecordedMachine::copyEDID(const ServiceRef& service, std::optional<EDIDKit::Bytes>& edid) {
    ++edidReads_;
    const Slot* s = attachedSlot(*static_cast<const std::uint64_t*>(service.get()));
    if (!s) return notFound;
    edid = reportedEDID(*s);
    return 0;
}

std::int32_t RecordedMachine::setVirtualEDIDMode(const ServiceRef& service, const std::uint32_t* mode,
                                                 const EDIDKit::Bytes* data) {
    Slot* s = attachedSlot(*static_cast<const std::uint64_t*>(service.get()));
    if (!s) return notFound; // the port went away with its display
    if (mode && data) {
        const auto clock = clock_.lock();
        s->overrideWriteTimes.push_back(clock ? clock->now() : 0);
    }
    if (mode && data && s->monitor.alterOnWrite) {
        // This port reports what it was given altered, and re-enumerates on
        // every write, the same bytes or not.
        s->virtualEDID = alteredWrite(*data, *s->monitor.alterOnWrite);
        s->writer = Writer::halvora;
        comeUp(*s);
    } else if (mode && data)
        writeVirtual(*s, *data, Writer::halvora);
    else
        writeVirtual(*s, std::nullopt, std::nullopt);
    return 0;
}

// --- CoreGraphics -------------------------------------------------------------

std::vector<HalvoraPlatform::CoreGraphicsDisplays::DisplayNumber> RecordedMachine::onlineDisplays(std::uint32_t maximum) {
    std::vector<DisplayNumber> online{builtInDisplay};
    for (const auto& s : slots_)
        if (s.registryID != 0) online.push_back(s.cgNumber);
    if (online.size() > maximum) online.resize(maximum);
    return online;
}

bool RecordedMachine::isBuiltin(DisplayNumber display) { return display == builtInDisplay; }

std::uint32_t RecordedMachine::vendorNumber(DisplayNumber display) {
    const Slot* s = displaySlot(display);
    const auto edid = s ? EDIDKit::EDID::tryParse(reportedEDID(*s)) : std::nullopt;
    return edid ? edid->vendorID() : 0x610; // the built-in panel is Apple's
}

std::uint32_t RecordedMachine::modelNumber(DisplayNumber display) {
    const Slot* s = displaySlot(display);
    const auto edid = s ? EDIDKit::EDID::tryParse(reportedEDID(*s)) : std::nullopt;
    return edid ? edid->productID() : 0xA050;
}

std::uint32_t RecordedMachine::serialNumber(DisplayNumber display) {
    const Slot* s = displaySlot(display);
    const auto edid = s ? EDIDKit::EDID::tryParse(reportedEDID(*s)) : std::nullopt;
    if (!edid) return 0;
    // As on a Mac, the EDID serial 0x01010101 is reported as 0.
    return edid->serialNumber() == 0x01010101 ? 0 : edid->serialNumber();
}

std::vector<HalvoraPlatform::CoreGraphicsDisplays::Mode> RecordedMachine::allModes(DisplayNumber display) {
    std::vector<Mode> result;
    const Slot* s = displaySlot(display);
    if (!s) return result;
    const auto modes = modesOf(reportedEDID(*s));
    for (const auto& m : modes) {
        const auto w = static_cast<std::size_t>(m.width), h = static_cast<std::size_t>(m.height);
        result.push_back({w, h, w, static_cast<double>(m.refreshHz), true, {}});
    }
    // Like macOS, the panel's native mode also comes scaled (HiDPI) at half its size.
    if (!modes.empty()) {
        const auto w = static_cast<std::size_t>(modes.front().width), h = static_cast<std::size_t>(modes.front().height);
        result.push_back({w / 2, h / 2, w, static_cast<double>(modes.front().refreshHz), true, {}});
    }
    return result;
}

std::optional<HalvoraPlatform::CoreGraphicsDisplays::Mode> RecordedMachine::currentMode(DisplayNumber display) {
    const Slot* s = displaySlot(display);
    if (!s || !s->mode) return std::nullopt;
    const auto w = static_cast<std::size_t>(s->mode->width), h = static_cast<std::size_t>(s->mode->height);
    return Mode{w, h, w, static_cast<double>(s->mode->refreshHz), true, {}};
}

std::int32_t RecordedMachine::configure(DisplayNumber display, const Mode& mode) {
    Slot* s = displaySlot(display);
    if (!s) return illegalArgument;
    const DisplayMode wanted{static_cast<std::int64_t>(mode.width), static_cast<std::int64_t>(mode.height),
                             std::llround(mode.refreshRate)};
    const auto offered = modesOf(reportedEDID(*s));
    if (mode.pixelWidth != mode.width || std::find(offered.begin(), offered.end(), wanted) == offered.end())
        return illegalArgument;
    if (s->mode == wanted) return 0;
    s->mode = wanted;
    reconfigured(*s, setModeFlag);
    return 0;
}

void RecordedMachine::registerCallback(std::function<void(DisplayNumber, std::uint32_t)> callback) {
    reconfigurationCallbacks_.push_back(std::move(callback));
}

// --- EventLogs and workspace ---------------------------------------------------

std::vector<HalvoraPlatform::PortEventLogs::Event> RecordedMachine::events(const std::string& className) {
    std::vector<HalvoraPlatform::PortEventLogs::Event> result;
    if (className != portClass) return result;
    for (const auto& s : slots_)
        if (s.registryID != 0) result.insert(result.end(), s.eventLog.begin(), s.eventLog.end());
    return result;
}

void RecordedMachine::observe(std::function<void(HalvoraPlatform::WorkspaceNotifications::Event)> callback) {
    workspaceObservers_.push_back(std::move(callback));
}

// --- the other tools ----------------------------------------------------------

bool RecordedMachine::isRunning(const std::string& bundleID) {
    return betterDisplay_ && bundleID == HalvoraPlatform::OtherOverrideTools::betterDisplayBundleID;
}

void RecordedMachine::synchronize(const std::string&) {}

std::optional<std::vector<std::string>> RecordedMachine::keys(const std::string& domain) {
    // BetterDisplay's automatic override is on for a display it names by no
    // stored identifiers, so it counts as connected.
    if (domain != HalvoraPlatform::OtherOverrideTools::betterDisplayBundleID) return std::vector<std::string>{};
    return std::vector<std::string>{HalvoraPlatform::OtherOverrideTools::autoApplyPrefix + "recorded"};
}

HalvoraPlatform::OtherApplication::Value RecordedMachine::value(const std::string& key, const std::string& domain) {
    if (domain == HalvoraPlatform::OtherOverrideTools::betterDisplayBundleID && key == HalvoraPlatform::OtherOverrideTools::autoApplyPrefix + "recorded")
        return true;
    return {};
}

int RecordedMachine::launchctl(const std::vector<std::string>& arguments) {
    constexpr int noSuchService = 113;
    const std::string target = "gui/" + std::to_string(userID) + "/" + overrideServiceLabel;
    if (arguments.size() != 3 || arguments[2] != target) return noSuchService;
    const std::string& verb = arguments[1];
    if (verb == "print") return overrideService_ ? 0 : noSuchService;
    if (verb == "bootout") {
        // The service is stopped; the overrides it wrote stay until someone clears them.
        if (!overrideService_) return 3;
        overrideService_ = false;
        return 0;
    }
    if (verb == "disable") return 0;
    return 1;
}

std::optional<int> RecordedMachine::spawn(const std::string&, const std::vector<std::string>& arguments) {
    const int process = ++processCount_;
    finishedRuns_[process] = launchctl(arguments);
    return process;
}

std::optional<HalvoraPlatform::ProcessSpawner::Ending> RecordedMachine::poll(int process) {
    const auto run = finishedRuns_.find(process);
    if (run == finishedRuns_.end()) return Ending{true, 9};
    const Ending ending{false, run->second};
    finishedRuns_.erase(run);
    return ending;
}

void RecordedMachine::killAndReap(int process) { finishedRuns_.erase(process); }

void RecordedMachine::sleepMilliseconds(int) {}

} // namespace HalvoraSimulation
