#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/IOAVError.hpp>
#include <HalvoraSimulation/RecordedMachine.hpp>
#include <HalvoraSimulation/SimulatedMac.hpp>
#include <gtest/gtest.h>

using HalvoraSimulation::RecordedMachine;
using HalvoraSimulation::RecordedMonitor;
using HalvoraSimulation::VirtualClock;
using HalvoraCore::ConflictingTool;
using HalvoraCore::DisplayMode;
using HalvoraCore::PBPBehavior;
using Source = RecordedMachine::Source;

namespace {

RecordedMonitor ultrawide(PBPBehavior behavior, bool attached = true, bool pbp = false) {
    const auto* s = EDIDKit::sampleMonitor("ultrawide-34");
    return {"u34", s->full, s->pictureByPicture, behavior, attached, pbp, std::nullopt};
}

class RecordedMachineTest : public ::testing::Test {
protected:
    void make(std::vector<RecordedMonitor> monitors) {
        const auto mac = HalvoraSimulation::SimulatedMac::create(std::move(monitors), clock);
        machine = mac.machine;
        // The machine is seen as the application sees it: through the live
        // display system and conflict probe.
        system = mac.makeDisplaySystem();
        probe = mac.makeLiveConflictProbe();
        system->observeConfigurationChanges(
            [this](bool hotplug) { events.push_back(hotplug ? "hotplug" : "reconfigure"); });
        system->observeDisplayInterrupts([this] { events.push_back("interrupt"); });
        system->watchInterrupts(true);
        system->observeSleep([this](bool asleep) { events.push_back(asleep ? "sleep" : "wake"); });
        clock->advance(0);
        events.clear();
    }
    HalvoraCore::DisplayID id() const { return *machine->port("u34").id; }
    EDIDKit::Bytes splitOverride() const {
        return EDIDKit::EDID(EDIDKit::sampleMonitor("ultrawide-34")->full)
            .addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440})
            .bytes();
    }

    std::shared_ptr<VirtualClock> clock = std::make_shared<VirtualClock>();
    std::shared_ptr<RecordedMachine> machine;
    std::shared_ptr<HalvoraPlatform::LiveDisplaySystem> system;
    std::shared_ptr<HalvoraPlatform::LiveConflictProbe> probe;
    std::vector<std::string> events;
};

TEST_F(RecordedMachineTest, AnAttachedMonitorReportsItsFullEDIDAndComesUpInThePreferredMode) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    const auto displays = system->externalDisplays();
    ASSERT_EQ(displays.size(), 1u);
    EXPECT_EQ(displays[0].edid, EDIDKit::sampleMonitor("ultrawide-34")->full);
    EXPECT_EQ(displays[0].port, "Port 1");
    EXPECT_EQ(system->currentMode(id()), (DisplayMode{3440, 1440, 60}));
    EXPECT_EQ(machine->port("u34").source, Source::factoryFull);
}

TEST_F(RecordedMachineTest, ModesAreTheReportedEDIDsTimingsAtWholeHertz) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    const auto before = system->modes(id());
    EXPECT_EQ(std::count(before.begin(), before.end(), DisplayMode{1720, 1440, 60}), 0);
    system->applyEDIDOverride(splitOverride(), id());
    const auto after = system->modes(id());
    EXPECT_EQ(std::count(after.begin(), after.end(), DisplayMode{1720, 1440, 60}), 1);
    EXPECT_EQ(std::count(after.begin(), after.end(), DisplayMode{3440, 1440, 60}), 1);
}

TEST_F(RecordedMachineTest, AnEDIDChangeReEnumeratesWithAHotplugEventAndThePreferredMode) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    system->applyEDIDOverride(splitOverride(), id());
    EXPECT_TRUE(events.empty()); // delivered on the next turn of the clock
    clock->advance(0);
    EXPECT_EQ(events, std::vector<std::string>{"hotplug"});
    EXPECT_EQ(machine->port("u34").source, Source::override);
    EXPECT_EQ(machine->port("u34").writer, RecordedMachine::Writer::halvora);
    EXPECT_EQ(system->currentMode(id()), (DisplayMode{3440, 1440, 60}));
}

TEST_F(RecordedMachineTest, WritingTheSameEDIDAgainChangesNothing) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    system->restoreFactoryEDID(id());
    clock->advance(0);
    EXPECT_TRUE(events.empty());
}

TEST_F(RecordedMachineTest, AModeSwitchIsANonHotplugEventAndOnlyOfferedModesAreAccepted) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    try {
        system->setMode({1720, 1440, 60}, id());
        FAIL() << "the mode is not offered";
    } catch (const HalvoraCore::SplitError& e) {
        EXPECT_EQ(e, HalvoraCore::SplitError::wrapping(
                         HalvoraPlatform::DisplayModeError::noSuchMode({1720, 1440, 60})));
    }
    system->applyEDIDOverride(splitOverride(), id());
    clock->advance(0);
    events.clear();
    system->setMode({1720, 1440, 60}, id());
    clock->advance(0);
    EXPECT_EQ(events, std::vector<std::string>{"reconfigure"});
    EXPECT_EQ(system->currentMode(id()), (DisplayMode{1720, 1440, 60}));
}

TEST_F(RecordedMachineTest, ASwitchingMonitorReportsItsSplitEDIDWhilePBPIsOnAndReEnumerates) {
    make({ultrawide(PBPBehavior::switchesOnToggle)});
    machine->setPBP("u34", true);
    clock->advance(0);
    EXPECT_EQ(events, std::vector<std::string>{"hotplug"});
    EXPECT_EQ(machine->port("u34").source, Source::factorySplit);
    EXPECT_EQ(system->currentMode(id()), (DisplayMode{1720, 1440, 60}));
    machine->setPBP("u34", false);
    EXPECT_EQ(machine->port("u34").source, Source::factoryFull);
}

TEST_F(RecordedMachineTest, ALatchingMonitorKeepsWhatItReportedAtPlugAndOnlyInterrupts) {
    make({ultrawide(PBPBehavior::latchedAtPlug)});
    machine->setPBP("u34", true);
    clock->advance(HalvoraPlatform::LiveDisplaySystem::interruptPollInterval); // read from the port's EventLog
    EXPECT_EQ(events, std::vector<std::string>{"interrupt"});
    EXPECT_EQ(machine->port("u34").source, Source::factoryFull);
    machine->unplug("u34");
    machine->plug("u34");
    EXPECT_EQ(machine->port("u34").source, Source::factorySplit);
}

TEST_F(RecordedMachineTest, AFixedMonitorIsSilentWhenToggled) {
    make({ultrawide(PBPBehavior::fixedWithSplit)});
    machine->setPBP("u34", true);
    clock->advance(0);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(machine->port("u34").source, Source::factoryFull);
}

TEST_F(RecordedMachineTest, UnpluggingDropsTheVirtualEDIDAndPluggingGivesANewDisplayID) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    const auto first = id();
    system->applyEDIDOverride(splitOverride(), first);
    machine->unplug("u34");
    EXPECT_TRUE(system->externalDisplays().empty());
    for (const auto& write : std::vector<std::function<void()>>{
             [&] { system->applyEDIDOverride(splitOverride(), first); }, [&] { system->restoreFactoryEDID(first); }}) {
        try {
            write();
            FAIL() << "written to a port that is gone";
        } catch (const HalvoraCore::SplitError& e) {
            EXPECT_EQ(e, HalvoraCore::SplitError::displayNotFound());
        }
    }
    EXPECT_FALSE(system->currentMode(first));
    machine->plug("u34");
    EXPECT_NE(id(), first);
    EXPECT_EQ(machine->port("u34").source, Source::factoryFull);
}

TEST_F(RecordedMachineTest, WakeIsFollowedByAReEnumeration) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    machine->sleep();
    machine->sleep();
    machine->wake();
    clock->advance(0);
    EXPECT_EQ(events, (std::vector<std::string>{"sleep", "wake", "hotplug"}));
}

TEST_F(RecordedMachineTest, TheOverrideServiceWritesItsOwnEDIDsAndCanBeTakenOver) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    EXPECT_TRUE(probe->detect().empty());
    machine->setTool(ConflictingTool::edidOverrideService, true);
    EXPECT_EQ(probe->detect(), HalvoraCore::ConflictSet{ConflictingTool::edidOverrideService});
    EXPECT_EQ(machine->port("u34").writer, RecordedMachine::Writer::edidOverrideService);
    const auto toolEDID = machine->port("u34").reportedEDID;
    EXPECT_NE(toolEDID, EDIDKit::sampleMonitor("ultrawide-34")->full);
    EXPECT_NO_THROW(EDIDKit::EDID{toolEDID});
    probe->takeOver(ConflictingTool::edidOverrideService);
    EXPECT_TRUE(probe->detect().empty());
    EXPECT_EQ(machine->port("u34").writer,
              RecordedMachine::Writer::edidOverrideService); // left for others to clear
}

TEST_F(RecordedMachineTest, BetterDisplayIsReportedButNeverStopped) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    machine->setTool(ConflictingTool::betterDisplay, true);
    probe->takeOver(ConflictingTool::betterDisplay);
    EXPECT_EQ(probe->detect(), HalvoraCore::ConflictSet{ConflictingTool::betterDisplay});
}

TEST_F(RecordedMachineTest, AMonitorCanStartUnpluggedAndInPBP) {
    make({ultrawide(PBPBehavior::latchedAtPlug, false, true)});
    EXPECT_TRUE(system->externalDisplays().empty());
    machine->plug("u34");
    EXPECT_EQ(machine->port("u34").source, Source::factorySplit);
    EXPECT_EQ(machine->port("u34").mode, (DisplayMode{1720, 1440, 60}));
}

TEST_F(RecordedMachineTest, UnknownAndDuplicateNamesAreRefused) {
    make({ultrawide(PBPBehavior::latchedAtPlug)});
    EXPECT_THROW(machine->plug("nope"), std::invalid_argument);
    EXPECT_THROW(
        RecordedMachine::create(
            {ultrawide(PBPBehavior::latchedAtPlug), ultrawide(PBPBehavior::latchedAtPlug)}, clock),
        std::invalid_argument);
}

TEST_F(RecordedMachineTest, EventsOfAMachineThatIsGoneDoNothing) {
    make({ultrawide(PBPBehavior::fixedMissingSplit)});
    machine->unplug("u34");
    machine->interrupt("u34");
    machine.reset(); // with the application that held it
    system.reset();
    probe.reset();
    EXPECT_NO_THROW(clock->advance(1));
    EXPECT_TRUE(events.empty());
}

} // namespace

TEST_F(RecordedMachineTest, APortThatAltersWritesReportsTheAlteredEDIDAndReEnumeratesOnEveryWrite) {
    RecordedMonitor monitor = ultrawide(PBPBehavior::fixedMissingSplit);
    monitor.alterOnWrite = HalvoraSimulation::WriteAlteration::extensions;
    make({monitor});
    for (int write = 0; write < 2; ++write) {
        system->applyEDIDOverride(splitOverride(), id());
        clock->advance(0);
    }
    EXPECT_EQ(events, (std::vector<std::string>{"hotplug", "hotplug"})) << "the same bytes re-enumerate too";
    const auto reported = system->externalDisplays().at(0).edid;
    EXPECT_EQ(reported,
              HalvoraSimulation::alteredWrite(splitOverride(), HalvoraSimulation::WriteAlteration::extensions));
    EXPECT_EQ(reported.size(), 128u);
    EXPECT_EQ(machine->port("u34").writer, RecordedMachine::Writer::halvora);
    // Taking the override away gives the monitor's own EDID back, unaltered.
    system->restoreFactoryEDID(id());
    EXPECT_EQ(system->externalDisplays().at(0).edid, EDIDKit::sampleMonitor("ultrawide-34")->full);
}

TEST(WriteAlteration, EachAlterationChangesOnlyWhatItNames) {
    using HalvoraSimulation::WriteAlteration;
    const EDIDKit::Bytes written = EDIDKit::EDID(EDIDKit::sampleMonitor("ultrawide-34")->full)
                                       .addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440})
                                       .bytes();
    const auto serial = HalvoraSimulation::alteredWrite(written, WriteAlteration::serial);
    EXPECT_NE(EDIDKit::EDID(serial).serialNumber(), EDIDKit::EDID(written).serialNumber());
    EXPECT_TRUE(EDIDKit::EDID(serial).isChecksumValid());
    const auto checksum = HalvoraSimulation::alteredWrite(written, WriteAlteration::checksum);
    EXPECT_FALSE(EDIDKit::EDID(checksum).isChecksumValid());
    EXPECT_EQ(EDIDKit::EDID(checksum).fixingChecksums(), EDIDKit::EDID(written))
        << "only the checksum differs";
    for (const auto a : {WriteAlteration::serial, WriteAlteration::checksum, WriteAlteration::extensions})
        EXPECT_EQ(HalvoraSimulation::writeAlteration(HalvoraSimulation::writeAlterationName(a)), a);
    EXPECT_EQ(HalvoraSimulation::writeAlteration("week"), std::nullopt);
}
