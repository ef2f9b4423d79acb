#include <EDIDKit/EDID.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/LiveDisplaySystem.hpp>
#include <algorithm>
#include <cmath>
#include <set>
#include <unordered_set>

namespace HalvoraPlatform {

using HalvoraPlatform::CoreGraphicsDisplays;
using HalvoraPlatform::ExternalDisplayService;
using HalvoraCore::DisplayID;
using HalvoraCore::DisplayMode;
using HalvoraCore::SplitError;

LiveDisplaySystem::LiveDisplaySystem(Platform platform)
    : platform_(std::move(platform)), modes_(platform_.coreGraphics) {}

std::shared_ptr<LiveDisplaySystem> LiveDisplaySystem::create(Platform platform) {
    return std::shared_ptr<LiveDisplaySystem>(new LiveDisplaySystem(std::move(platform)));
}

LiveDisplaySystem::~LiveDisplaySystem() {
    stopInterruptPoll();
}

std::optional<DisplayMode> LiveDisplaySystem::converted(const CoreGraphicsDisplays::Mode& mode) {
    if (mode.pixelWidth != mode.width || !std::isfinite(mode.refreshRate)) return std::nullopt;
    return DisplayMode{static_cast<std::int64_t>(mode.width),
                       static_cast<std::int64_t>(mode.height),
                       static_cast<std::int64_t>(std::llround(mode.refreshRate))};
}

std::optional<EDIDKit::Bytes>
LiveDisplaySystem::presentedEDID(const ExternalDisplayService& service) {
    if (const auto known = presentedThisTurn_.find(service.registryID());
        known != presentedThisTurn_.end())
        return known->second;
    auto edid = service.currentEDID();
    presentedThisTurn_[service.registryID()] = edid;
    if (!forgetScheduled_) {
        forgetScheduled_ = true;
        platform_.runLoop->dispatchAsync([weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->forgetPresentedEDIDs();
        });
    }
    return edid;
}

void LiveDisplaySystem::forgetPresentedEDIDs() {
    presentedThisTurn_.clear();
    forgetScheduled_ = false;
}

std::vector<HalvoraCore::ExternalDisplay> LiveDisplaySystem::externalDisplays() {
    std::vector<HalvoraCore::ExternalDisplay> displays;
    for (const auto& s : ExternalDisplayService::all(platform_.registry)) {
        auto edid = presentedEDID(s);
        if (!edid) continue; // a port whose EDID cannot be read is no display
        displays.push_back(
            {ExternalDisplayService::displayID(s.registryID()), std::move(*edid),
             s.registryPath().empty() ? std::nullopt : std::optional(s.registryPath())});
    }
    return displays;
}

ExternalDisplayService LiveDisplaySystem::service(const DisplayID& display) {
    for (auto& s : ExternalDisplayService::all(platform_.registry))
        if (ExternalDisplayService::displayID(s.registryID()) == display) return s;
    throw SplitError::displayNotFound();
}

std::optional<CoreGraphicsDisplays::DisplayNumber>
LiveDisplaySystem::coreGraphicsDisplay(const DisplayID& display) {
    std::optional<EDIDKit::Bytes> bytes;
    try {
        bytes = presentedEDID(service(display));
    } catch (const SplitError&) {
        return std::nullopt;
    }
    if (!bytes) return std::nullopt;
    const auto edid = EDIDKit::EDID::tryParse(*bytes);
    if (!edid) return std::nullopt;
    auto& cg = *platform_.coreGraphics;
    const auto external = modes_.externalDisplays();
    std::vector<CoreGraphicsDisplays::DisplayNumber> matches;
    for (const auto d : external)
        if (cg.vendorNumber(d) == edid->vendorID() && cg.modelNumber(d) == edid->productID() &&
            cg.serialNumber(d) == edid->serialNumber())
            matches.push_back(d);
    if (matches.size() == 1) return matches.front();
    // Two identical monitors, or numbers that do not match the EDID (CoreGraphics
    // reports the serial 0x01010101 as 0): only a lone display can be told.
    if (external.size() == 1 && externalDisplays().size() == 1) return external.front();
    return std::nullopt;
}

void LiveDisplaySystem::applyEDIDOverride(const EDIDKit::Bytes& edid, const DisplayID& display) {
    const auto port = service(display);
    presentedThisTurn_.erase(port.registryID()); // even a failed write may have changed it
    port.applyVirtualEDID(edid);
}

void LiveDisplaySystem::restoreFactoryEDID(const DisplayID& display) {
    const auto port = service(display);
    presentedThisTurn_.erase(port.registryID());
    port.restoreFactoryEDID();
}

std::vector<DisplayMode> LiveDisplaySystem::modes(const DisplayID& display) {
    const auto cg = coreGraphicsDisplay(display);
    if (!cg) return {};
    std::vector<DisplayMode> result;
    std::unordered_set<DisplayMode> seen;
    for (const auto& m : modes_.list(*cg))
        if (const auto mode = converted(m); mode && seen.insert(*mode).second)
            result.push_back(*mode);
    return result;
}

std::optional<DisplayMode> LiveDisplaySystem::currentMode(const DisplayID& display) {
    const auto cg = coreGraphicsDisplay(display);
    if (!cg) return std::nullopt;
    const auto mode = modes_.current(*cg);
    return mode ? converted(*mode) : std::nullopt;
}

void LiveDisplaySystem::setMode(const DisplayMode& mode, const DisplayID& display) {
    const auto cg = coreGraphicsDisplay(display);
    if (!cg) throw SplitError::displayNotFound();
    try {
        modes_.set({static_cast<int>(mode.width), static_cast<int>(mode.height),
                    static_cast<double>(mode.refreshHz)},
                   *cg);
    } catch (const HalvoraPlatform::DisplayModeError& error) {
        throw SplitError::wrapping(error);
    }
}

void LiveDisplaySystem::observeConfigurationChanges(std::function<void(bool isHotplug)> handler) {
    platform_.reconfiguration->registerCallback(
        [runLoop = platform_.runLoop,
         handler = std::move(handler)](CoreGraphicsDisplays::DisplayNumber, std::uint32_t flags) {
            if (flags & beginConfigurationFlag)
                return; // the announcement; the change itself follows
            const bool hotplug = (flags & hotplugFlags) != 0;
            runLoop->dispatchAsync([handler, hotplug] { handler(hotplug); });
        });
}

std::vector<std::uint64_t> LiveDisplaySystem::interruptTimes() {
    std::vector<std::uint64_t> times;
    for (const auto& portClass : portClasses)
        for (const auto& event : platform_.eventLogs->events(portClass))
            if (!event.empty && event.time && event.action == "IRQ" && event.queueOp == "Done")
                times.push_back(*event.time);
    return times;
}

void LiveDisplaySystem::observeDisplayInterrupts(std::function<void()> handler) {
    interruptHandler_ = std::move(handler);
    stopInterruptPoll();
    if (interruptsWanted_) startInterruptPoll();
}

void LiveDisplaySystem::watchInterrupts(bool wanted) {
    if (wanted == interruptsWanted_) return;
    interruptsWanted_ = wanted;
    if (!wanted)
        stopInterruptPoll();
    else if (interruptHandler_)
        startInterruptPoll();
}

void LiveDisplaySystem::startInterruptPoll() {
    // Interrupts from before the watch began are never delivered.
    const auto now = interruptTimes();
    lastInterruptTime_ = now.empty() ? 0 : *std::max_element(now.begin(), now.end());
    interruptPoll_ = platform_.runLoop->addTimer(
        interruptPollInterval, true,
        [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->pollInterrupts();
        },
        interruptPollTolerance);
}

void LiveDisplaySystem::stopInterruptPoll() {
    if (interruptPoll_) interruptPoll_->invalidate();
    interruptPoll_.reset();
}

void LiveDisplaySystem::pollInterrupts() {
    // One call per new time stamp: an event that two ports (or a log read
    // twice) show is one interrupt.
    std::set<std::uint64_t> fresh;
    for (const auto t : interruptTimes())
        if (t > lastInterruptTime_) fresh.insert(t);
    if (fresh.empty()) return;
    lastInterruptTime_ = *fresh.rbegin();
    // The handler may stop the watch (and with it this poll): hold it.
    const auto handler = interruptHandler_;
    for (std::size_t i = 0; i < fresh.size(); ++i)
        handler();
}

void LiveDisplaySystem::observeSleep(std::function<void(bool asleep)> handler) {
    using Event = HalvoraPlatform::WorkspaceNotifications::Event;
    platform_.workspace->observe([handler = std::move(handler)](Event event) {
        handler(event == Event::willSleep || event == Event::screensDidSleep);
    });
}

} // namespace HalvoraPlatform
