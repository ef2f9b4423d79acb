#include "Process.hpp"
#include "TemporaryFolder.hpp"
#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

TEST(EDIDBuilder, WhatIsBuiltReadsBack) {
    const EDID edid = EDIDBuilder()
                          .manufacturer("HLV")
                          .productID(0x5120)
                          .serialNumber(77)
                          .screenSizeCM(119, 34)
                          .baseTiming(cvt(3440, 1440))
                          .productName("Halvora Wide")
                          .rangeLimits({48, 75, 30, 160, 60, 0})
                          .ctaExtension({cvt(1920, 1080)})
                          .displayIDExtension({{cvt(2560, 1440), false, {}}})
                          .edid();
    EXPECT_TRUE(edid.isChecksumValid());
    EXPECT_EQ(edid.productID(), 0x5120u);
    EXPECT_EQ(edid.serialNumber(), 77u);
    EXPECT_EQ(edid.productName(), "Halvora Wide");
    EXPECT_EQ(edid.rangeLimits(), (RangeLimits{{48, 75}, {30, 160}, 60000}));
    EXPECT_EQ(edid.detailedTimings(), (std::vector<Timing>{cvt(3440, 1440), cvt(1920, 1080)}));
    EXPECT_EQ(edid.displayIDTimings(), (std::vector<DisplayIDTiming>{{cvt(2560, 1440), false}}));
    EXPECT_EQ(edid.imageSizeMM({3440, 1440}), (ImageSize{1190, 340}));
    EXPECT_EQ(edid.blockCount(), 3u);
}

TEST(EDIDBuilder, RejectsAFifthBaseDescriptor) {
    EDIDBuilder b;
    for (int i = 0; i < 4; ++i) b.productName("X");
    EXPECT_THROW(b.productName("Y"), std::length_error);
}

TEST(EDIDBuilder, RejectsManufacturerIDsThatAreNotThreeLetters) {
    EXPECT_THROW(EDIDBuilder().manufacturer("hlv"), std::invalid_argument);
    EXPECT_THROW(EDIDBuilder().manufacturer("HLVX"), std::invalid_argument);
}

namespace {

std::string conformanceReport(const Bytes& bytes) {
    TestSupport::TemporaryFolder folder;
    TestSupport::writeFile(folder / "built.bin", std::string(bytes.begin(), bytes.end()));
    const auto run = TestSupport::runProcess({"edid-decode", "--check", (folder / "built.bin").string()});
    return run ? run->output : "";
}

} // namespace

TEST(EDIDBuilder, BaseAndCTABlocksPassTheReferenceConformanceCheck) {
    if (!TestSupport::isOnPath("edid-decode"))
        GTEST_SKIP() << "edid-decode is not installed, so built EDIDs were NOT checked";
    const std::string report =
        conformanceReport(ultrawideBuilder().ctaExtension({cvt(1920, 1080)}, EDIDBuilder::videoCapabilityBlock).build());
    EXPECT_EQ(report.find("Failures:"), std::string::npos) << report;
    EXPECT_NE(report.find("EDID conformity: PASS"), std::string::npos) << report;
}

// The first DisplayID section of an EDID is held to the rules of a DisplayID
// base section, which wants a product type; monitors that carry DisplayID
// timings in an extension leave it at 0 and are flagged the same way.
TEST(EDIDBuilder, ADisplayIDExtensionFailsOnlyForTheProductTypeThatRealMonitorsLeaveOut) {
    if (!TestSupport::isOnPath("edid-decode"))
        GTEST_SKIP() << "edid-decode is not installed, so built EDIDs were NOT checked";
    const std::string report = conformanceReport(ultrawideBuilder()
                                                     .ctaExtension({cvt(1920, 1080)}, EDIDBuilder::videoCapabilityBlock)
                                                     .displayIDExtension({{cvt(3440, 1440), true, {}}})
                                                     .build());
    const auto failures = report.substr(report.find("Failures:"));
    EXPECT_EQ(failures.substr(0, failures.find("EDID conformity:")),
              "Failures:\n\nBlock 2, DisplayID Extension Block:\n  DisplayID Base Block has no product type.\n\n")
        << report;
}
