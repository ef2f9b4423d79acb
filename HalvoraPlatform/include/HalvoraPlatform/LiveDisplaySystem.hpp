#pragma once

#include <HalvoraCore/DisplaySystem.hpp>
#include <HalvoraPlatform/DisplayModes.hpp>
#include <HalvoraPlatform/ExternalDisplayService.hpp>
#include <HalvoraPlatform/seams/AVServiceRegistry.hpp>
#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <HalvoraPlatform/seams/MainRunLoop.hpp>
#include <HalvoraPlatform/seams/PortEventLogs.hpp>
#include <HalvoraPlatform/seams/WorkspaceNotifications.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// The display system of a Mac: external ports' AV services as the core's
/// displays ("dcp-" and the registry entry ID), each paired with its
/// CoreGraphics display for modes; virtual EDIDs written and cleared; and the
/// three event streams (reconfiguration, port interrupts polled from the
/// ports' EventLogs while the core wants them, sleep and wake), all delivered
/// on the main thread. Every platform call goes through the raw seams, so all
/// of this runs anywhere.
class LiveDisplaySystem final : public HalvoraCore::DisplaySystem,
                                public std::enable_shared_from_this<LiveDisplaySystem> {
public:
    /// The raw platform calls the system is built on.
    struct Platform {
        std::shared_ptr<HalvoraPlatform::AVServiceRegistry> registry;
        std::shared_ptr<HalvoraPlatform::CoreGraphicsDisplays> coreGraphics;
        std::shared_ptr<HalvoraPlatform::ReconfigurationEvents> reconfiguration;
        std::shared_ptr<HalvoraPlatform::PortEventLogs> eventLogs;
        std::shared_ptr<HalvoraPlatform::WorkspaceNotifications> workspace;
        std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop;
    };

    /// The registry classes of display ports whose EventLogs carry interrupts, in reading order.
    static inline const std::vector<std::string> portClasses{"AppleDCPDPTXRemotePortUFP",
                                                             "AppleATCDPAltModePort"};
    /// How often the EventLogs are read for new interrupts, in seconds.
    static constexpr double interruptPollInterval = 0.25;
    /// How late the poll may fire, so that the system can wake the processor
    /// for it together with other work: a tenth of the interval.
    static constexpr double interruptPollTolerance = interruptPollInterval / 10;
    /// CGDisplayChangeSummaryFlags: the announcement before a change, and the
    /// bits that make a change a hot-plug (added, removed, enabled, disabled).
    static constexpr std::uint32_t beginConfigurationFlag = 0x1;
    static constexpr std::uint32_t hotplugFlags = 0x10 | 0x20 | 0x100 | 0x200;

    static std::shared_ptr<LiveDisplaySystem> create(Platform platform);
    ~LiveDisplaySystem() override;

    /// A CoreGraphics mode as the core sees it: 1:1 modes only, the rate
    /// rounded to whole hertz; nothing for a scaled (HiDPI) mode.
    static std::optional<HalvoraCore::DisplayMode>
    converted(const HalvoraPlatform::CoreGraphicsDisplays::Mode& mode);

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
    void observeConfigurationChanges(std::function<void(bool isHotplug)> handler) override;
    void observeDisplayInterrupts(std::function<void()> handler) override;
    /// Starts the EventLog poll, or stops it: no timer runs while nothing
    /// could act on an interrupt.
    void watchInterrupts(bool wanted) override;
    bool isPollingInterrupts() const { return interruptPoll_ != nullptr; }
    /// The AV service calls this system lacks: no EDID can be read or written.
    std::vector<std::string> missingPlatformCalls() const {
        return platform_.registry->missingCalls();
    }
    void observeSleep(std::function<void(bool asleep)> handler) override;

    /// The CoreGraphics display of an attached port: the one whose vendor,
    /// model and serial numbers are the EDID's; with none or several alike,
    /// the only external display when there is exactly one of each.
    std::optional<HalvoraPlatform::CoreGraphicsDisplays::DisplayNumber>
    coreGraphicsDisplay(const HalvoraCore::DisplayID& display);
    /// The time stamps of the port interrupts in the EventLogs now: events
    /// whose payload's "Action" is "IRQ" and "QueueOp" is "Done".
    std::vector<std::uint64_t> interruptTimes();

private:
    explicit LiveDisplaySystem(Platform platform);

    /// The EDID a port presents, read once per turn of the main run loop: the
    /// menu, the restore pass and every lookup in between share one read per
    /// monitor. A write to the port, or the end of the turn, forgets it.
    std::optional<EDIDKit::Bytes>
    presentedEDID(const HalvoraPlatform::ExternalDisplayService& service);
    void forgetPresentedEDIDs();

    /// The service of an attached display from a fresh enumeration. Throws
    /// SplitError::displayNotFound.
    HalvoraPlatform::ExternalDisplayService service(const HalvoraCore::DisplayID& display);
    void startInterruptPoll();
    void stopInterruptPoll();
    void pollInterrupts();

    Platform platform_;
    HalvoraPlatform::DisplayModes modes_;
    std::map<std::uint64_t, std::optional<EDIDKit::Bytes>> presentedThisTurn_;
    bool forgetScheduled_ = false;
    std::function<void()> interruptHandler_;
    bool interruptsWanted_ = false;
    std::shared_ptr<HalvoraPlatform::MainRunLoop::Timer> interruptPoll_;
    std::uint64_t lastInterruptTime_ = 0;
};

} // namespace HalvoraPlatform
