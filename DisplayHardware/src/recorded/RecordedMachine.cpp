#include <DisplayHardware/DisplayModeError.hpp>
#include <DisplayHardware/IOAVError.hpp>
#include <DisplayHardware/RecordedMachine.hpp>
#include <EDIDKit/EDID.hpp>
#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>

namespace DisplayHardware {

using HalvoraCore::ConflictingTool;
using HalvoraCore::DisplayID;
using HalvoraCore::DisplayMode;
using HalvoraCore::PBPBehavior;

namespace {

// kIOReturnNotFound: what the AV service calls answer for a port with nothing on it.
constexpr std::int32_t notFound = static_cast<std::int32_t>(0xE00002F0u);

std::optional<EDIDKit::EDID> parsed(const EDIDKit::Bytes& bytes) {
    try {
        return EDIDKit::EDID(bytes);
    } catch (...) {
        return std::nullopt;
    }
}

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
        s.monitor = std::move(m);
        slots_.push_back(std::move(s));
    }
}

// --- EDIDs and modes -------------------------------------------------------

std::vector<DisplayMode> RecordedMachine::modesOf(const EDIDKit::Bytes& bytes) {
    std::vector<DisplayMode> result;
    const auto edid = parsed(bytes);
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
    const auto edid = parsed(bytes);
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
    EDIDKit::Bytes b = factoryEDID;
    if (b.size() < 128) return b;
    b[21] = static_cast<std::uint8_t>(b[21] == 99 ? 98 : 99);
    EDIDKit::fixBlockChecksum(b, 0);
    return b;
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
    p.attached = s.id.has_value();
    p.pbp = s.monitor.pbp;
    p.id = s.id;
    p.reportedEDID = reportedEDID(s);
    p.source = source(s);
    p.writer = s.writer;
    p.mode = s.mode;
    p.behavior = s.monitor.behavior;
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

RecordedMachine::Slot* RecordedMachine::attachedSlot(const DisplayID& display) {
    for (auto& s : slots_)
        if (s.id == display) return &s;
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
        if (s.id == display) return s.monitor.name;
    return std::nullopt;
}

// --- events ----------------------------------------------------------------

void RecordedMachine::post(std::function<void(RecordedMachine&)> event) {
    clock_->schedule(0, [weak = weak_from_this(), event = std::move(event)] {
        if (const auto self = weak.lock()) event(*self);
    });
}

void RecordedMachine::configurationEvent(bool isHotplug) {
    post([isHotplug](RecordedMachine& m) {
        const auto observers = m.configurationObservers_;
        for (const auto& o : observers)
            o(isHotplug);
    });
}

void RecordedMachine::comeUp(Slot& s) {
    s.mode = preferredModeOf(reportedEDID(s));
    configurationEvent(true);
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
        if (s.id) writeVirtual(s, toolEDIDFor(factoryEDID(s)), Writer::edidOverrideService);
}

void RecordedMachine::plug(const std::string& name) {
    Slot& s = slot(name);
    if (s.id) return;
    s.id = DisplayID(name + "#" + std::to_string(++plugCount_));
    s.latched = s.monitor.pbp && s.monitor.split ? *s.monitor.split : s.monitor.full;
    comeUp(s);
    if (overrideService_) writeVirtual(s, toolEDIDFor(factoryEDID(s)), Writer::edidOverrideService);
}

void RecordedMachine::unplug(const std::string& name) {
    Slot& s = slot(name);
    if (!s.id) return;
    // The port's AV service goes away with the display, and its virtual EDID with it.
    s.id.reset();
    s.virtualEDID.reset();
    s.writer.reset();
    s.mode.reset();
    configurationEvent(true);
}

void RecordedMachine::setPBP(const std::string& name, bool on) {
    Slot& s = slot(name);
    if (s.monitor.pbp == on) return;
    s.monitor.pbp = on;
    if (!s.id) return;
    switch (s.monitor.behavior) {
    case PBPBehavior::switchesOnToggle: {
        // The monitor re-enumerates; it comes up in the preferred timing when
        // the EDID it reports has changed, and in its mode otherwise.
        const bool overridden = s.virtualEDID.has_value();
        if (!overridden) s.mode = preferredModeOf(reportedEDID(s));
        configurationEvent(true);
        break;
    }
    case PBPBehavior::latchedAtPlug:
        post([](RecordedMachine& m) {
            const auto observers = m.interruptObservers_;
            for (const auto& o : observers)
                o();
        });
        break;
    case PBPBehavior::fixedMissingSplit:
    case PBPBehavior::fixedWithSplit:
        break;
    }
}

void RecordedMachine::interrupt(const std::string& name) {
    if (!slot(name).id) return;
    post([](RecordedMachine& m) {
        const auto observers = m.interruptObservers_;
        for (const auto& o : observers)
            o();
    });
}

void RecordedMachine::sleep() {
    if (asleep_) return;
    asleep_ = true;
    post([](RecordedMachine& m) {
        const auto observers = m.sleepObservers_;
        for (const auto& o : observers)
            o(true);
    });
}

void RecordedMachine::wake() {
    if (!asleep_) return;
    asleep_ = false;
    post([](RecordedMachine& m) {
        const auto observers = m.sleepObservers_;
        for (const auto& o : observers)
            o(false);
    });
    // Every attached display re-enumerates after wake.
    if (std::any_of(slots_.begin(), slots_.end(), [](const Slot& s) { return s.id.has_value(); }))
        configurationEvent(true);
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

// --- DisplaySystem ---------------------------------------------------------

std::vector<HalvoraCore::ExternalDisplay> RecordedMachine::externalDisplays() {
    std::vector<HalvoraCore::ExternalDisplay> result;
    for (const auto& s : slots_)
        if (s.id) result.push_back({*s.id, reportedEDID(s), s.portName});
    return result;
}

void RecordedMachine::applyEDIDOverride(const EDIDKit::Bytes& edid, const DisplayID& display) {
    Slot* s = attachedSlot(display);
    if (!s) throw IOAVError(IOAVError::applyCall, notFound);
    writeVirtual(*s, edid, Writer::halvora);
}

void RecordedMachine::restoreFactoryEDID(const DisplayID& display) {
    Slot* s = attachedSlot(display);
    if (!s) throw IOAVError(IOAVError::restoreCall, notFound);
    writeVirtual(*s, std::nullopt, std::nullopt);
}

std::vector<DisplayMode> RecordedMachine::modes(const DisplayID& display) {
    const Slot* s = attachedSlot(display);
    return s ? modesOf(reportedEDID(*s)) : std::vector<DisplayMode>{};
}

std::optional<DisplayMode> RecordedMachine::currentMode(const DisplayID& display) {
    const Slot* s = attachedSlot(display);
    return s ? s->mode : std::nullopt;
}

void RecordedMachine::setMode(const DisplayMode& mode, const DisplayID& display) {
    Slot* s = attachedSlot(display);
    if (!s) throw DisplayModeError::switchFailed(-1);
    const auto offered = modesOf(reportedEDID(*s));
    if (std::find(offered.begin(), offered.end(), mode) == offered.end())
        throw DisplayModeError::noSuchMode({static_cast<int>(mode.width),
                                            static_cast<int>(mode.height),
                                            static_cast<double>(mode.refreshHz)});
    if (s->mode == mode) return;
    s->mode = mode;
    configurationEvent(false);
}

void RecordedMachine::observeConfigurationChanges(std::function<void(bool)> callback) {
    configurationObservers_.push_back(std::move(callback));
}

void RecordedMachine::observeDisplayInterrupts(std::function<void()> callback) {
    interruptObservers_.push_back(std::move(callback));
}

void RecordedMachine::observeSleep(std::function<void(bool)> callback) {
    sleepObservers_.push_back(std::move(callback));
}

// --- ConflictProbe ---------------------------------------------------------

HalvoraCore::ConflictSet RecordedMachine::detect() {
    HalvoraCore::ConflictSet tools;
    if (overrideService_) tools.insert(ConflictingTool::edidOverrideService);
    if (betterDisplay_) tools.insert(ConflictingTool::betterDisplay);
    return tools;
}

void RecordedMachine::takeOver(ConflictingTool tool) {
    // The service is stopped; the overrides it wrote stay until someone
    // clears them. BetterDisplay is never stopped.
    if (tool == ConflictingTool::edidOverrideService) overrideService_ = false;
}

} // namespace DisplayHardware
