#include <HalvoraCore/SplitError.hpp>

#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/IOAVError.hpp>

#include <gtest/gtest.h>

using namespace HalvoraCore;
using EDIDKit::EDIDError;

TEST(SplitError, WrappingASplitErrorKeepsIt) {
    EXPECT_EQ(SplitError::wrapping(SplitError::displayNotFound()), SplitError::displayNotFound());
    EXPECT_EQ(SplitError::wrapping(SplitError::modeUnavailable({1720, 1440})),
              SplitError::modeUnavailable({1720, 1440}));
}

TEST(SplitError, WrappingADisplayModeErrorGivesASystemFailureWithItsDescription) {
    const auto error = HalvoraPlatform::DisplayModeError::noSuchMode({1720, 1440, 60});
    EXPECT_EQ(
        SplitError::wrapping(error),
        SplitError::systemFailure("the display has no 1720x1440@60 mode \u2014 apply an EDID that contains it first"));
    EXPECT_EQ(SplitError::wrapping(HalvoraPlatform::DisplayModeError::switchFailed(1001)),
              SplitError::systemFailure("switching mode failed: 1001"));
}

TEST(SplitError, WrappingAnIOAVErrorGivesASystemFailureWithItsDescription) {
    EXPECT_EQ(SplitError::wrapping(HalvoraPlatform::IOAVError(HalvoraPlatform::IOAVError::applyCall, -536870212)),
              SplitError::systemFailure("SetVirtualEDIDMode(apply) failed: 0xE00002BC"));
}

TEST(SplitError, WrappingTheCurrentExceptionHandlesAnyThrownValue) {
    try {
        throw SplitError::notIdentified();
    } catch (...) {
        EXPECT_EQ(SplitError::wrappingCurrentException(), SplitError::notIdentified());
    }
    try {
        throw std::runtime_error("disk full");
    } catch (...) {
        EXPECT_EQ(SplitError::wrappingCurrentException(), SplitError::systemFailure("disk full"));
    }
    try {
        throw 42;
    } catch (...) {
        EXPECT_EQ(SplitError::wrappingCurrentException(), SplitError::systemFailure("unknown error"));
    }
}

TEST(SplitError, EqualityIsByCaseAndPayload) {
    EXPECT_EQ(SplitError::systemFailure("a"), SplitError::systemFailure("a"));
    EXPECT_NE(SplitError::systemFailure("a"), SplitError::systemFailure("b"));
    EXPECT_NE(SplitError::cannotAddSplit(EDIDError::noCTAExtension()),
              SplitError::cannotAddSplit(EDIDError::noFreeDescriptorSlot()));
    EXPECT_NE(SplitError::displayNotFound(), SplitError::notIdentified());
}

TEST(SplitErrorMessage, EachCaseHasItsKeyAndResolutionArgument) {
    EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::timingTooLarge(5120, 1440))),
              (ErrorMessage{"error.nativeMissing", "5120\u00D71440"}));
    EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::outOfRange(3440, 1440))),
              (ErrorMessage{"error.outOfRange", "3440\u00D71440"}));
    EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::noCTAExtension())), (ErrorMessage{"error.noRoom", {}}));
    EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::noFreeDescriptorSlot())), (ErrorMessage{"error.noRoom", {}}));
    EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::noPreferredTiming())),
              (ErrorMessage{"error.cannotAddSplit", {}}));
    EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::invalidHeader())), (ErrorMessage{"error.cannotAddSplit", {}}));
    EXPECT_EQ(errorMessage(SplitError::modeUnavailable({1720, 1440})), (ErrorMessage{"error.modeUnavailable", "1720\u00D71440"}));
    EXPECT_EQ(errorMessage(SplitError::displayNotFound()), (ErrorMessage{"error.displayNotFound", {}}));
    EXPECT_EQ(errorMessage(SplitError::notIdentified()), (ErrorMessage{"error.notIdentified", {}}));
    EXPECT_EQ(errorMessage(SplitError::confirmationPending()), (ErrorMessage{"error.confirmationPending", {}}));
    EXPECT_EQ(errorMessage(SplitError::unreadableEDID()), (ErrorMessage{"error.unreadableEDID", {}}));
    EXPECT_EQ(errorMessage(SplitError::overrideNotTaken("U34")), (ErrorMessage{"error.overrideNotTaken", "U34"}));
    EXPECT_EQ(errorMessage(SplitError::hardware(DisplayOperation::setMode, "switching mode failed: 1")),
              (ErrorMessage{"error.systemFailure", {}}));
}

TEST(SplitErrorMessage, AnOverrideNotTakenByAnUnnamedDisplayHasItsOwnKey) {
    EXPECT_EQ(errorMessage(SplitError::overrideNotTaken("")), (ErrorMessage{"error.overrideNotTaken.unnamed", {}}));
}

TEST(SplitErrorMessage, TwoSystemFailuresWithDifferentTextsShowTheSameMessage) {
    EXPECT_EQ(errorMessage(SplitError::systemFailure("one")), errorMessage(SplitError::systemFailure("two")));
    EXPECT_EQ(errorMessage(SplitError::systemFailure("one")), (ErrorMessage{"error.systemFailure", {}}));
}

TEST(SplitErrorMessage, InvalidLengthShowsCannotAddSplitWhateverTheLength) {
    for (int n : {0, 127, 200})
        EXPECT_EQ(errorMessage(SplitError::cannotAddSplit(EDIDError::invalidLength(n))),
                  (ErrorMessage{"error.cannotAddSplit", {}}));
}

TEST(SplitError, ADisplayCallsFailureBecomesAHardwareErrorNamingTheOperation) {
    try {
        throw HalvoraPlatform::IOAVError(HalvoraPlatform::IOAVError::restoreCall, -536870212);
    } catch (...) {
        EXPECT_EQ(SplitError::hardwareFailureOfCurrentException(DisplayOperation::restoreFactory),
                  SplitError::hardware(DisplayOperation::restoreFactory,
                                       "SetVirtualEDIDMode(restore) failed: 0xE00002BC"));
    }
    try {
        throw SplitError::systemFailure("switching mode failed: 1001"); // as the live display system says it
    } catch (...) {
        const auto error = SplitError::hardwareFailureOfCurrentException(DisplayOperation::setMode);
        ASSERT_NE(error.hardwareFailure(), nullptr);
        EXPECT_EQ(error.hardwareFailure()->operation, DisplayOperation::setMode);
        EXPECT_EQ(error.hardwareFailure()->detail, "switching mode failed: 1001");
    }
    try {
        throw SplitError::displayNotFound();
    } catch (...) {
        EXPECT_EQ(SplitError::hardwareFailureOfCurrentException(DisplayOperation::writeOverride),
                  SplitError::displayNotFound());
    }
    try {
        throw 42;
    } catch (...) {
        EXPECT_EQ(SplitError::hardwareFailureOfCurrentException(DisplayOperation::writeOverride),
                  SplitError::hardware(DisplayOperation::writeOverride, "unknown error"));
    }
}
