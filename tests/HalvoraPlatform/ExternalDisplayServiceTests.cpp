// The AV services of external display ports, over a scripted registry.

#include "ScriptedAVServiceRegistry.hpp"

#include <HalvoraPlatform/ExternalDisplayService.hpp>
#include <HalvoraPlatform/IOAVError.hpp>
#include <gtest/gtest.h>

using namespace HalvoraPlatform;
using TestDoubles::ScriptedAVServiceRegistry;

namespace {

const EDIDKit::Bytes someEDID(128, 0x11);

class ServiceTest : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedAVServiceRegistry> registry =
        std::make_shared<ScriptedAVServiceRegistry>();
    std::vector<ExternalDisplayService> all() { return ExternalDisplayService::all(registry); }
};

} // namespace

TEST_F(ServiceTest, WithoutExternalMonitorsThereAreNoServices) {
    EXPECT_TRUE(all().empty());
    EXPECT_EQ(registry->lastClass, "DCPAVServiceProxy");
}

TEST_F(ServiceTest, ABuiltInPanelsServiceIsNeverReturned) {
    registry->add(1, someEDID).location = "Embedded";
    registry->add(2, someEDID).location = std::nullopt; // no "Location", or not text
    registry->add(3, someEDID).location = "external";   // exactly "External" only
    registry->add(4, someEDID);
    const auto services = all();
    ASSERT_EQ(services.size(), 1u);
    EXPECT_EQ(services[0].registryID(), 4u);
}

TEST_F(ServiceTest, AnEntryWithoutAnAVServiceIsSkippedAndAFailedMatchingGivesNone) {
    registry->add(1, someEDID).hasService = false;
    registry->add(2, someEDID);
    ASSERT_EQ(all().size(), 1u);
    registry->matchingFails = true;
    EXPECT_TRUE(all().empty());
}

TEST_F(ServiceTest, ThePathIsTheBufferUpToItsFirstZeroRepairedAsUTF8) {
    registry->add(1, someEDID).path = "IOService:/AppleARMPE/dispext0@F1000000/DCPAVServiceProxy";
    registry->add(2, someEDID).path = std::nullopt; // the call failed
    registry->add(3, someEDID).path = std::string("IOService:/bad\xFF") + "x";
    const auto services = all();
    EXPECT_EQ(services[0].registryPath(),
              "IOService:/AppleARMPE/dispext0@F1000000/DCPAVServiceProxy");
    EXPECT_EQ(services[1].registryPath(), "");
    EXPECT_EQ(services[2].registryPath(), "IOService:/bad\xEF\xBF\xBDx");
}

TEST_F(ServiceTest, TheCurrentEDIDIsTheVirtualOneWhileOneIsInstalled) {
    registry->add(1, someEDID);
    const auto service = all().front();
    EXPECT_EQ(service.currentEDID(), someEDID);
    const EDIDKit::Bytes other(256, 0x22);
    service.applyVirtualEDID(other);
    EXPECT_EQ(service.currentEDID(), other);
    service.restoreFactoryEDID();
    EXPECT_EQ(service.currentEDID(), someEDID);
}

TEST_F(ServiceTest, AnEDIDThatCannotBeCopiedIsAbsent) {
    registry->add(1, someEDID).copyCode = -536870212;
    registry->add(2, std::nullopt); // success without data
    for (const auto& service : all())
        EXPECT_EQ(service.currentEDID(), std::nullopt);
}

TEST_F(ServiceTest, ApplyPassesModeOneWithTheBytesAndRestorePassesNothing) {
    registry->add(7, someEDID);
    const auto service = all().front();
    service.restoreFactoryEDID(); // nothing installed: passed on as usual, and a zero return is
                                  // success
    service.applyVirtualEDID(EDIDKit::Bytes(3, 0)); // the bytes go as they are
    service.restoreFactoryEDID();
    EXPECT_EQ(registry->calls,
              (std::vector<std::string>{"restore 7", "apply 7 mode 1 (3 bytes)", "restore 7"}));
}

TEST_F(ServiceTest, FailuresCarryTheCallAndTheRawCode) {
    registry->add(7, someEDID).setCode = -536870212;
    const auto service = all().front();
    try {
        service.applyVirtualEDID(someEDID);
        FAIL();
    } catch (const IOAVError& e) {
        EXPECT_EQ(e, IOAVError(IOAVError::applyCall, -536870212));
        EXPECT_EQ(e.description(), "SetVirtualEDIDMode(apply) failed: 0xE00002BC");
    }
    try {
        service.restoreFactoryEDID();
        FAIL();
    } catch (const IOAVError& e) {
        EXPECT_EQ(e, IOAVError(IOAVError::restoreCall, -536870212));
    }
}

TEST_F(ServiceTest, AServiceWhosePortWentAwayFailsInsteadOfTouchingAnotherOne) {
    registry->add(7, someEDID);
    const auto service = all().front();
    registry->remove(7);
    EXPECT_EQ(service.currentEDID(), std::nullopt);
    EXPECT_THROW(service.applyVirtualEDID(someEDID), IOAVError);
}
