#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>

#include "TemporaryFolder.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;

namespace {

EDID fullOf(const std::string& name) { return EDID(sampleMonitor(name)->full); }
EDID pbpOf(const std::string& name) { return EDID(*sampleMonitor(name)->pictureByPicture); }

} // namespace

TEST(SampleMonitors, ShippedFilesAreWhatTheCodeBuilds) {
    const std::filesystem::path folder = std::filesystem::path(HALVORA_RESOURCES_DIR) / "samples";
    for (const SampleMonitor& m : sampleMonitors()) {
        EXPECT_EQ(TestSupport::readFile(folder / (m.name + ".bin")), std::string(m.full.begin(), m.full.end()))
            << m.name << ".bin is stale: run 'make samples'";
        ASSERT_TRUE(m.pictureByPicture);
        EXPECT_EQ(TestSupport::readFile(folder / (m.name + "-pbp.bin")),
                  std::string(m.pictureByPicture->begin(), m.pictureByPicture->end()))
            << m.name << "-pbp.bin is stale: run 'make samples'";
    }
}

TEST(SampleMonitors, EveryEDIDIsValid) {
    for (const SampleMonitor& m : sampleMonitors()) {
        EXPECT_TRUE(EDID(m.full).isChecksumValid()) << m.name;
        EXPECT_TRUE(EDID(*m.pictureByPicture).isChecksumValid()) << m.name;
    }
}

TEST(SampleMonitors, TheUltrawideLacksItsHalfAndReportsItInPictureByPicture) {
    EXPECT_EQ(fullOf("ultrawide-34").nativeResolution(), (Resolution{3440, 1440}));
    EXPECT_FALSE(fullOf("ultrawide-34").hasTiming({1720, 1440}));
    EXPECT_EQ(pbpOf("ultrawide-34").preferredResolution(), (Resolution{1720, 1440}));
    EXPECT_EQ(pbpOf("ultrawide-34").nativeResolutionGuess()->kind, NativeResolutionGuess::Kind::split);
}

TEST(SampleMonitors, TheSuperwideHasItsNativeInDisplayIDAndItsHalfPreferredInPictureByPicture) {
    EXPECT_EQ(fullOf("superwide-49").nativeResolution(), (Resolution{5120, 1440}));
    EXPECT_EQ(fullOf("superwide-49").preferredResolution(), (Resolution{2560, 1440}));
    EXPECT_EQ(pbpOf("superwide-49").preferredResolution(), (Resolution{2560, 1440}));
}

TEST(SampleMonitors, SamplesHaveDistinctIdentities) {
    EXPECT_NE(fullOf("ultrawide-34").productID(), fullOf("superwide-49").productID());
    EXPECT_EQ(fullOf("ultrawide-34").productID(), pbpOf("ultrawide-34").productID());
    EXPECT_EQ(sampleMonitor("nonexistent"), nullptr);
}
