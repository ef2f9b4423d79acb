// The live display system over scripted fakes of the raw platform seams.

#include "ScriptedAVServiceRegistry.hpp"
#include "ScriptedCoreGraphics.hpp"
#include "ScriptedPortEventLogs.hpp"
#include "ScriptedReconfigurationEvents.hpp"
#include "ScriptedWorkspace.hpp"

#include <EDIDKit/EDIDBuilder.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <HalvoraPlatform/IOAVError.hpp>
#include <HalvoraPlatform/LiveDisplaySystem.hpp>
#include <HalvoraSimulation/VirtualRunLoop.hpp>
#include <gtest/gtest.h>

using namespace HalvoraPlatform;
using HalvoraCore::DisplayID;
using HalvoraCore::DisplayMode;
using HalvoraCore::SplitError;
using TestDoubles::ScriptedCoreGraphics;
using TestDoubles::ScriptedPortEventLogs;

namespace {

/// An EDID of the given identity (vendor ID as stored, product, serial).
EDIDKit::Bytes edidOf(std::uint16_t product, std::uint32_t serial) {
    EDIDKit::EDIDBuilder b;
    b.manufacturer("HLV").productID(product).serialNumber(serial);
    b.baseTiming(EDIDKit::Timing::cvtReducedBlanking(3440, 1440, 60.0));
    return b.build();
}

class LiveDisplaySystemTest : public ::testing::Test {
protected:
    std::shared_ptr<TestDoubles::ScriptedAVServiceRegistry> registry =
        std::make_shared<TestDoubles::ScriptedAVServiceRegistry>();
    std::shared_ptr<ScriptedCoreGraphics> cg = std::make_shared<ScriptedCoreGraphics>();
    std::shared_ptr<TestDoubles::ScriptedReconfigurationEvents> reconfiguration =
        std::make_shared<TestDoubles::ScriptedReconfigurationEvents>();
    std::shared_ptr<ScriptedPortEventLogs> logs = std::make_shared<ScriptedPortEventLogs>();
    std::shared_ptr<TestDoubles::ScriptedWorkspace> workspace =
        std::make_shared<TestDoubles::ScriptedWorkspace>();
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>();
    std::shared_ptr<HalvoraSimulation::VirtualRunLoop> runLoop =
        std::make_shared<HalvoraSimulation::VirtualRunLoop>(clock);
    std::shared_ptr<HalvoraPlatform::LiveDisplaySystem> system =
        HalvoraPlatform::LiveDisplaySystem::create({registry, cg, reconfiguration, logs, workspace, runLoop});

    /// Observes the interrupts with `handler` and watches for them at once.
    void watch(std::function<void()> handler) {
        system->observeDisplayInterrupts(std::move(handler));
        system->watchInterrupts(true);
    }

    const EDIDKit::Bytes ultrawide = edidOf(0x3440, 77);

    /// A monitor on port `registryID`, and its CoreGraphics display `number`
    /// with a 1:1 3440×1440@60 mode, its 59.94 Hz twin and a scaled variant.
    ScriptedCoreGraphics::Display& attach(std::uint64_t registryID,
                                          ScriptedCoreGraphics::DisplayNumber number,
                                          const EDIDKit::Bytes& edid) {
        registry->add(registryID, edid);
        const EDIDKit::EDID parsed(edid);
        auto& d = cg->add(number, parsed.vendorID(), parsed.productID(), parsed.serialNumber());
        d.modes = {ScriptedCoreGraphics::mode(3440, 1440, 60),
                   ScriptedCoreGraphics::mode(3440, 1440, 59.94),
                   ScriptedCoreGraphics::mode(1720, 720, 60, true),
                   ScriptedCoreGraphics::mode(1720, 1440, 60)};
        d.current = 0;
        return d;
    }
};

} // namespace

TEST_F(LiveDisplaySystemTest, DisplaysAreNamedByTheirPortsRegistryEntryAndCarryTheirPath) {
    attach(4294968123, 2, ultrawide);
    registry->add(5, std::nullopt); // its EDID cannot be read: no display
    registry->add(6, ultrawide).path = std::nullopt;
    const auto displays = system->externalDisplays();
    ASSERT_EQ(displays.size(), 2u);
    EXPECT_EQ(displays[0].id, DisplayID("dcp-4294968123"));
    EXPECT_EQ(displays[0].edid, ultrawide);
    EXPECT_EQ(displays[0].port, "IOService:/AppleARMPE/dcp/DCPAVServiceProxy");
    EXPECT_EQ(displays[1].port, std::nullopt) << "no path, no port name";
}

TEST_F(LiveDisplaySystemTest, AnUnknownDisplayIsNotFoundForEveryCallThatNamesIt) {
    attach(7, 2, ultrawide);
    const DisplayID gone("dcp-8");
    EXPECT_THROW(system->applyEDIDOverride(ultrawide, gone), SplitError);
    EXPECT_THROW(system->restoreFactoryEDID(gone), SplitError);
    try {
        system->setMode({3440, 1440, 60}, gone);
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::displayNotFound());
    }
    EXPECT_TRUE(system->modes(gone).empty());
    EXPECT_EQ(system->currentMode(gone), std::nullopt);
}

TEST_F(LiveDisplaySystemTest, ADisplayThatVanishesBetweenEnumerationAndWriteIsNotFound) {
    attach(7, 2, ultrawide);
    const auto id = system->externalDisplays().front().id;
    registry->remove(7);
    try {
        system->applyEDIDOverride(ultrawide, id);
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::displayNotFound());
    }
    EXPECT_TRUE(registry->calls.empty());
}

TEST_F(LiveDisplaySystemTest, WritesReachThePortAndItsFailuresComeBackAsTheyAre) {
    attach(7, 2, ultrawide);
    const DisplayID id("dcp-7");
    const EDIDKit::Bytes split = edidOf(0x3440, 77);
    system->applyEDIDOverride(split, id);
    system->restoreFactoryEDID(id);
    EXPECT_EQ(registry->calls,
              (std::vector<std::string>{"apply 7 mode 1 (128 bytes)", "restore 7"}));
    registry->port(7).setCode = -536870212;
    try {
        system->applyEDIDOverride(split, id);
        FAIL();
    } catch (const HalvoraPlatform::IOAVError& e) {
        EXPECT_EQ(e.description(), "SetVirtualEDIDMode(apply) failed: 0xE00002BC");
    }
}

TEST_F(LiveDisplaySystemTest, ModesAreTheOneToOneModesRoundedAndEachListedOnce) {
    attach(7, 2, ultrawide);
    EXPECT_EQ(system->modes(DisplayID("dcp-7")),
              (std::vector<DisplayMode>{{3440, 1440, 60}, {1720, 1440, 60}}))
        << "59.94 Hz rounds to the 60 Hz already listed; the scaled 1720×720 is dropped";
    EXPECT_EQ(system->currentMode(DisplayID("dcp-7")), (DisplayMode{3440, 1440, 60}));
    cg->display(2).current = 2; // scaled
    EXPECT_EQ(system->currentMode(DisplayID("dcp-7")), std::nullopt);
}

TEST_F(LiveDisplaySystemTest, SettingAModeConfiguresTheMatchingOneAndReportsFailuresAsSplitErrors) {
    attach(7, 2, ultrawide);
    const DisplayID id("dcp-7");
    system->setMode({1720, 1440, 60}, id);
    EXPECT_EQ(cg->calls, (std::vector<std::string>{"configure 2 1720x1440@60.000000"}));
    try {
        system->setMode({2560, 1440, 60}, id);
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::systemFailure("the display has no 2560x1440@60 mode \u2014 apply "
                                               "an EDID that contains it first"));
    }
    cg->display(2).configureCode = 1001;
    try {
        system->setMode({3440, 1440, 60}, id);
        FAIL();
    } catch (const SplitError& e) {
        EXPECT_EQ(e, SplitError::systemFailure("switching mode failed: 1001"));
    }
}

TEST_F(LiveDisplaySystemTest, EachPortIsPairedWithTheCoreGraphicsDisplayOfItsIdentity) {
    const EDIDKit::Bytes other = edidOf(0x5120, 88);
    cg->add(1, 0x610, 0xA050, 0).builtin = true;
    attach(7, 3, ultrawide);
    attach(8, 2, other);
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-7")), 3u);
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-8")), 2u);
}

TEST_F(LiveDisplaySystemTest, TwoIdenticalMonitorsCannotBeToldApart) {
    attach(7, 2, ultrawide);
    attach(8, 3, ultrawide);
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-7")), std::nullopt);
    EXPECT_TRUE(system->modes(DisplayID("dcp-8")).empty());
    EXPECT_THROW(system->setMode({3440, 1440, 60}, DisplayID("dcp-8")), SplitError);
}

TEST_F(LiveDisplaySystemTest, ALoneDisplayIsUsedEvenWhenItsNumbersDoNotMatch) {
    // CoreGraphics reports the EDID serial 0x01010101 as 0.
    const EDIDKit::Bytes placeholderSerial = edidOf(0x3440, 0x01010101);
    attach(7, 2, placeholderSerial).serial = 0;
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-7")), 2u);
    // With a second monitor attached the fallback no longer applies.
    attach(8, 3, edidOf(0x5120, 88));
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-7")), std::nullopt);
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-8")), 3u);
}

TEST_F(LiveDisplaySystemTest, APortWithoutAReadableEDIDHasNoCoreGraphicsDisplay) {
    attach(7, 2, ultrawide);
    registry->port(7).edid = EDIDKit::Bytes(100, 0);
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-7")), std::nullopt);
    clock->advance(0);
    registry->port(7).copyCode = 1;
    EXPECT_EQ(system->coreGraphicsDisplay(DisplayID("dcp-7")), std::nullopt);
}

TEST_F(LiveDisplaySystemTest, EachPortsEDIDIsReadOnceATurnOfTheRunLoop) {
    attach(7, 2, ultrawide);
    attach(8, 3, edidOf(0x5120, 88));
    const DisplayID id("dcp-7");
    system->externalDisplays();
    system->modes(id);
    system->currentMode(id);
    system->coreGraphicsDisplay(DisplayID("dcp-8"));
    EXPECT_EQ(registry->copyCalls, 2);
    // The next turn reads afresh: the monitor may have changed by itself.
    clock->advance(0);
    registry->port(7).edid = edidOf(0x3440, 78);
    EXPECT_EQ(system->externalDisplays()[0].edid, edidOf(0x3440, 78));
    EXPECT_EQ(registry->copyCalls, 4);
}

TEST_F(LiveDisplaySystemTest, AWriteMakesTheNextReadOfThatPortFresh) {
    attach(7, 2, ultrawide);
    const DisplayID id("dcp-7");
    system->externalDisplays();
    const EDIDKit::Bytes written = edidOf(0x3440, 99);
    system->applyEDIDOverride(written, id);
    EXPECT_EQ(system->externalDisplays()[0].edid, written);
    system->restoreFactoryEDID(id);
    EXPECT_EQ(system->externalDisplays()[0].edid, ultrawide);
}

TEST_F(LiveDisplaySystemTest, ReconfigurationsArriveLaterOnTheMainThreadWithTheirHotPlugFlag) {
    std::vector<bool> seen;
    system->observeConfigurationChanges([&](bool hotplug) { seen.push_back(hotplug); });
    reconfiguration->fire(2, 0x1);         // the announcement only
    reconfiguration->fire(2, 0x8);         // a mode change
    reconfiguration->fire(2, 0x10 | 0x1);  // begin bit with add: still the announcement
    reconfiguration->fire(2, 0x10);        // added
    reconfiguration->fire(2, 0x20);        // removed
    reconfiguration->fire(2, 0x100 | 0x4); // enabled
    reconfiguration->fire(2, 0x200);       // disabled
    EXPECT_TRUE(seen.empty()) << "never synchronously";
    clock->advance(0);
    EXPECT_EQ(seen, (std::vector<bool>{false, true, true, true, true}));
}

TEST_F(LiveDisplaySystemTest, InterruptsFromBeforeTheWatchAreNeverDelivered) {
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(100),
                                               ScriptedPortEventLogs::irq(120)};
    int calls = 0;
    watch([&] { ++calls; });
    clock->advance(1);
    EXPECT_EQ(calls, 0);
}

TEST_F(LiveDisplaySystemTest, ThreeNewInterruptsBetweenTwoTicksAreThreeCalls) {
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(100)};
    int calls = 0;
    watch([&] { ++calls; });
    clock->advance(0.25);
    const int readsAfterOneTick = logs->reads;
    logs->logs["AppleDCPDPTXRemotePortUFP"].push_back(ScriptedPortEventLogs::irq(130));
    logs->logs["AppleATCDPAltModePort"] = {ScriptedPortEventLogs::irq(140),
                                           ScriptedPortEventLogs::irq(150)};
    clock->advance(0.2);
    EXPECT_EQ(calls, 0) << "read every 0.25 s";
    clock->advance(0.05);
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(logs->reads, readsAfterOneTick + 2) << "both port classes, once a tick";
    clock->advance(1);
    EXPECT_EQ(calls, 3) << "each delivered once";
}

TEST_F(LiveDisplaySystemTest, OnlyFinishedIRQEventsCountAndARepeatedOneCountsOnce) {
    int calls = 0;
    watch([&] { ++calls; });
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::other(10, "Plug"),
                                               ScriptedPortEventLogs::irq(11, "Queued"),
                                               {true, 12, "IRQ", "Done"}, // an empty dictionary
                                               {false, std::nullopt, "IRQ", "Done"},
                                               ScriptedPortEventLogs::irq(13)};
    logs->logs["AppleATCDPAltModePort"] = {
        ScriptedPortEventLogs::irq(13)}; // the same event seen twice
    clock->advance(0.25);
    EXPECT_EQ(calls, 1);
}

TEST_F(LiveDisplaySystemTest, ALogThatWrapsDeliversOnlyWhatIsNew) {
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(100),
                                               ScriptedPortEventLogs::irq(110)};
    int calls = 0;
    watch([&] { ++calls; });
    // The ring buffer dropped its oldest entries and gained newer ones.
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(110),
                                               ScriptedPortEventLogs::irq(120)};
    clock->advance(0.25);
    EXPECT_EQ(calls, 1);
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(120)};
    clock->advance(0.25);
    EXPECT_EQ(calls, 1);
}

TEST_F(LiveDisplaySystemTest, ObservingInterruptsAgainReplacesThePoll) {
    int first = 0, second = 0;
    watch([&] { ++first; });
    system->observeDisplayInterrupts([&] { ++second; });
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(5)};
    clock->advance(0.25);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST_F(LiveDisplaySystemTest, APollOutlivingItsSystemDoesNothing) {
    int calls = 0;
    watch([&] { ++calls; });
    system.reset();
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(5)};
    clock->advance(1);
    EXPECT_EQ(calls, 0);
}

TEST_F(LiveDisplaySystemTest, NoPollRunsUntilTheInterruptsAreWanted) {
    int calls = 0;
    system->observeDisplayInterrupts([&] { ++calls; });
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(5)};
    clock->advance(10);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(logs->reads, 0) << "no EventLog is read";
    EXPECT_TRUE(runLoop->timers().empty());
    EXPECT_EQ(runLoop->timerFirings(), 0u);
    EXPECT_FALSE(system->isPollingInterrupts());
}

TEST_F(LiveDisplaySystemTest, ThePollMayFireATenthOfItsIntervalLate) {
    watch([] {});
    EXPECT_EQ(runLoop->timers(),
              (std::vector<HalvoraSimulation::VirtualRunLoop::TimerSetting>{{0.25, true, 0.025}}));
}

TEST_F(LiveDisplaySystemTest,
       WantingTheInterruptsBeforeObservingThemStartsThePollWithTheObservation) {
    int calls = 0;
    system->watchInterrupts(true);
    EXPECT_TRUE(runLoop->timers().empty()) << "nothing to deliver to yet";
    system->observeDisplayInterrupts([&] { ++calls; });
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(5)};
    clock->advance(0.25);
    EXPECT_EQ(calls, 1);
}

TEST_F(LiveDisplaySystemTest, AnEndedWatchStopsThePollAndWhatHappenedMeanwhileIsNeverDelivered) {
    int calls = 0;
    watch([&] { ++calls; });
    system->watchInterrupts(false);
    EXPECT_TRUE(runLoop->timers().empty());
    EXPECT_FALSE(system->isPollingInterrupts());
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(5)};
    clock->advance(5);
    system->watchInterrupts(true);
    clock->advance(0.25);
    EXPECT_EQ(calls, 0) << "the interrupt came while nobody watched";
    logs->logs["AppleDCPDPTXRemotePortUFP"].push_back(ScriptedPortEventLogs::irq(6));
    clock->advance(0.25);
    EXPECT_EQ(calls, 1);
}

TEST_F(LiveDisplaySystemTest, AHandlerThatEndsTheWatchStopsThePollFromInsideIt) {
    int calls = 0;
    watch([&] {
        ++calls;
        system->watchInterrupts(false);
    });
    logs->logs["AppleDCPDPTXRemotePortUFP"] = {ScriptedPortEventLogs::irq(5),
                                               ScriptedPortEventLogs::irq(6)};
    clock->advance(0.25);
    EXPECT_EQ(calls, 2) << "both interrupts of the tick are delivered";
    const auto firings = runLoop->timerFirings();
    clock->advance(5);
    EXPECT_EQ(runLoop->timerFirings(), firings);
}

TEST_F(LiveDisplaySystemTest, SleepAndWakeNotificationsBecomeAsleepAndAwake) {
    using Event = HalvoraPlatform::WorkspaceNotifications::Event;
    std::vector<bool> seen;
    system->observeSleep([&](bool asleep) { seen.push_back(asleep); });
    for (const auto e :
         {Event::willSleep, Event::screensDidSleep, Event::didWake, Event::screensDidWake})
        workspace->post(e);
    EXPECT_EQ(seen, (std::vector<bool>{true, true, false, false}));
}

TEST_F(LiveDisplaySystemTest, TheCallsTheSystemLacksAreTheRegistrys) {
    EXPECT_TRUE(system->missingPlatformCalls().empty());
    registry->missing = {"IOAVServiceSetVirtualEDIDMode"};
    EXPECT_EQ(system->missingPlatformCalls(),
              (std::vector<std::string>{"IOAVServiceSetVirtualEDIDMode"}));
}
