// The halvora command run in-process, as a user would run it.

#include "HalvoraRun.hpp"
#include "RewriteReport.hpp"
#include "TemporaryFolder.hpp"

#include <EDIDKit/EDIDBuilder.hpp>
#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

using namespace Halvora;
using namespace HalvoraTesting;
using EDIDKit::Bytes;
using EDIDKit::EDID;

namespace {


class HalvoraCommand : public ::testing::Test {
protected:
    std::string file(const std::string& name, const Bytes& bytes) {
        const auto path = folder / name;
        TestSupport::writeFile(path, asString(bytes));
        return path.string();
    }
    TestSupport::TemporaryFolder folder;
};

} // namespace

TEST_F(HalvoraCommand, NoArgumentsPrintsUsageAndFailsAsBadUsage) {
    const Outcome r = halvora({});
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("usage: halvora COMMAND"), std::string::npos);
}

TEST_F(HalvoraCommand, HelpAndVersionSucceed) {
    EXPECT_EQ(halvora({"--help"}).status, 0);
    EXPECT_NE(halvora({"--version"}).out.find("halvora "), std::string::npos);
    for (const char* command : {"decode", "split", "merge", "cvt"}) {
        const Outcome r = halvora({command, "--help"});
        EXPECT_EQ(r.status, 0) << command;
        EXPECT_NE(r.out.find(std::string("usage: halvora ") + command), std::string::npos)
            << command;
    }
}

TEST_F(HalvoraCommand, UnknownCommandsAndOptionsAreUsageErrors) {
    EXPECT_EQ(halvora({"frobnicate"}).status, 2);
    const Outcome r = halvora({"decode", "--jsn", "x"});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "halvora: unknown option --jsn\n");
    EXPECT_EQ(halvora({"decode"}).status, 2);
    EXPECT_EQ(halvora({"decode", "a", "b"}).status, 2);
    EXPECT_EQ(halvora({"split", "x", "--native"}).status, 2);
}

TEST_F(HalvoraCommand, DecodeJSONHasExactlyTheDocumentedKeys) {
    const Outcome r = halvora({"decode", "--json", file("uw.bin", ultrawide())});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto j = nlohmann::json::parse(r.out);
    std::vector<std::string> keys;
    for (const auto& [key, value] : j.items())
        keys.push_back(key);
    EXPECT_EQ(keys.size(), 14u);
    for (const char* key : {"vendorID", "productID", "serialNumber", "productName", "checksumValid",
                            "badChecksums", "extensionBlocks", "preferredResolution",
                            "monitorPreferredResolution", "nativeResolution", "rangeLimits",
                            "detailedTimings", "displayIDTimings", "nativeResolutionGuess"})
        EXPECT_TRUE(j.contains(key)) << key;
    EXPECT_EQ(j["productName"], "Halvora UW34");
    EXPECT_EQ(j["nativeResolution"], (nlohmann::json{{"width", 3440}, {"height", 1440}}));
    EXPECT_EQ(j["rangeLimits"],
              (nlohmann::json{
                  {"vRateHz", {24, 75}}, {"hRateKHz", {30, 160}}, {"maxPixelClock10kHz", 60000}}));
    EXPECT_EQ(j["detailedTimings"][0], (nlohmann::json{{"pixelClock10kHz", 31975},
                                                       {"width", 3440},
                                                       {"hBlank", 160},
                                                       {"hFrontPorch", 48},
                                                       {"hSync", 32},
                                                       {"height", 1440},
                                                       {"vBlank", 41},
                                                       {"vFrontPorch", 3},
                                                       {"vSync", 10}}));
    EXPECT_EQ(
        j["nativeResolutionGuess"],
        (nlohmann::json{{"kind", "full"}, {"candidates", {{{"width", 3440}, {"height", 1440}}}}}));
    EXPECT_TRUE(j["displayIDTimings"].is_array());
    EXPECT_EQ(j["badChecksums"], nlohmann::json::array());
    EXPECT_EQ(j["extensionBlocks"], (nlohmann::json{{"specified", 1}, {"present", 1}}));
}

TEST_F(HalvoraCommand, DecodeJSONUsesNullForWhatIsAbsent) {
    const Bytes bare = EDIDKit::EDIDBuilder().build();
    const Outcome r = halvora({"decode", "--json", "-"}, asString(bare));
    ASSERT_EQ(r.status, 0) << r.err;
    const auto j = nlohmann::json::parse(r.out);
    for (const char* key : {"productName", "preferredResolution", "monitorPreferredResolution",
                            "nativeResolution", "rangeLimits", "nativeResolutionGuess"})
        EXPECT_TRUE(j[key].is_null()) << key;
}

TEST_F(HalvoraCommand, DecodeShowsTheBaseBlocksPreferenceAndTheMonitorsOwnApart) {
    // The superwide lists its whole panel in DisplayID, flagged preferred, and
    // a half-size timing first in the base block.
    const Bytes superwide = EDIDKit::sampleMonitor("superwide-49")->full;
    const Outcome text = halvora({"decode", file("sw.bin", superwide)});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("Base preferred:    2560\u00D71440"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("Monitor preferred: 5120\u00D71440"), std::string::npos) << text.out;
    const auto j =
        nlohmann::json::parse(halvora({"decode", "--json", file("sw.bin", superwide)}).out);
    EXPECT_EQ(j["preferredResolution"], (nlohmann::json{{"width", 2560}, {"height", 1440}}));
    EXPECT_EQ(j["monitorPreferredResolution"], (nlohmann::json{{"width", 5120}, {"height", 1440}}));
}

TEST_F(HalvoraCommand, DecodeNativeSizesListsWhatSplitNativeMayTakeOneALine) {
    // A whole panel names itself; a half-only EDID names the panel it is half of.
    EXPECT_EQ(halvora({"decode", "--native-sizes", file("u34.bin", ultrawide())}).out, "3440x1440\n");
    const Outcome half = halvora({"decode", "--native-sizes", file("half.bin", ultrawideHalf())});
    EXPECT_EQ(half.status, 0);
    EXPECT_EQ(half.out, "3440x1440\n");
    // Each size printed is one that split takes as --native.
    const Outcome split = halvora({"split", file("half2.bin", ultrawideHalf()), "--native", "3440x1440", "--hex"});
    EXPECT_EQ(split.status, 0) << split.err;
}

TEST_F(HalvoraCommand, DecodeNativeSizesAndJSONTogetherIsBadUsage) {
    const Outcome r = halvora({"decode", "--json", "--native-sizes", file("u34.bin", ultrawide())});
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("--json and --native-sizes cannot be used together"), std::string::npos);
    EXPECT_EQ(r.out, "");
}

TEST_F(HalvoraCommand, DecodeReadsHexTextFromStandardInput) {
    const Outcome r = halvora({"decode", "-"}, EDIDKit::hexDump(ultrawide()));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("Product name:      Halvora UW34"), std::string::npos);
    EXPECT_NE(r.out.find("Native guess:      full: 3440\u00D71440 is the whole panel"),
              std::string::npos);
}

TEST_F(HalvoraCommand, DecodeShowsDisplayIDTimingsWithTheirPreferredFlag) {
    const Outcome r =
        halvora({"decode", file("sw.bin", EDIDKit::sampleMonitor("superwide-49")->full)});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("DisplayID timings: 1\n  1. 5120\u00D71440 @ 59.98 Hz"), std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("[preferred]"), std::string::npos);
}

TEST_F(HalvoraCommand, ABadLengthIsReportedInWordsAsBadData) {
    const Outcome r = halvora(
        {"decode", file("short.bin", Bytes(ultrawide().begin(), ultrawide().begin() + 200))});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(
        r.err.find(
            "short.bin: not an EDID: the data is 200 bytes long, which is not a whole number of "
            "128-byte EDID blocks"),
        std::string::npos)
        << r.err;
}

TEST_F(HalvoraCommand, AMissingFileIsBadData) {
    const Outcome r = halvora({"decode", (folder / "absent.bin").string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("absent.bin: cannot read: No such file or directory"), std::string::npos)
        << r.err;
}

TEST_F(HalvoraCommand, TextThatIsNotHexIsBadData) {
    const Outcome r = halvora({"decode", "-"}, "hello world\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "halvora: standard input: not an EDID: the text is not a hex dump (unexpected "
                     "'h' on line 1)\n");
}

TEST_F(HalvoraCommand, SplitWritesTheSplitEDIDAndReportsTheAddedTiming) {
    const std::string out = (folder / "split.bin").string();
    const Outcome r = halvora({"split", file("uw.bin", ultrawide()), "-o", out});
    ASSERT_EQ(r.status, 0) << r.err;
    const EDID split(asBytes(TestSupport::readFile(out)));
    EXPECT_EQ(split, EDID(ultrawide()).addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}));
    EXPECT_TRUE(split.hasTiming({1720, 1440}));
    EXPECT_NE(
        r.err.find(
            "halvora: added 1720\u00D71440 @ 59.98 Hz to CTA-861 block 1, byte 43 (a free slot)"),
        std::string::npos)
        << r.err;
}

TEST_F(HalvoraCommand, SplitOfAHalfRefusesToGuessAndListsTheExactNativeToPass) {
    const std::string in = file("half.bin", ultrawideHalf());
    const std::string out = (folder / "never.bin").string();
    const Outcome r = halvora({"split", in, "-o", out});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("1720\u00D71440 looks like one part of a wider panel"), std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("halvora split " + in + " --native 3440x1440"), std::string::npos)
        << r.err;
    EXPECT_FALSE(std::filesystem::exists(out)) << "nothing is written on refusal";
}

TEST_F(HalvoraCommand, SplitOfAnUncertainNativeListsBothReadings) {
    EDIDKit::EDIDBuilder b;
    b.baseTiming(EDIDKit::Timing::cvtReducedBlanking(2560, 1440, 60)).ctaExtension({});
    const std::string in = file("qhd.bin", b.build());
    const Outcome r = halvora({"split", in, "--hex"});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("--native 2560x1440   (the whole panel is 2560\u00D71440)"),
              std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("--native 5120x1440   (a 5120\u00D71440 panel)"), std::string::npos)
        << r.err;
}

TEST_F(HalvoraCommand, SplitWithNativePromotesAndSaysWhereTheOldPreferredWent) {
    const Outcome r =
        halvora({"split", file("half.bin", ultrawideHalf()), "--native", "3440x1440", "--hex"});
    ASSERT_EQ(r.status, 0) << r.err;
    const EDID split(EDIDKit::bytesFromEDIDInput(asBytes(r.out)));
    EXPECT_EQ(split.preferredResolution(), (EDIDKit::Resolution{3440, 1440}));
    EXPECT_NE(r.err.find(
                  "made 3440\u00D71440 @ 59.97 Hz the preferred timing in place of 1720\u00D71440"),
              std::string::npos)
        << r.err;
    EXPECT_NE(
        r.err.find(
            "moved the previous preferred timing 1720\u00D71440 @ 59.98 Hz to CTA-861 block 1"),
        std::string::npos)
        << r.err;
}

TEST_F(HalvoraCommand, SplitOfAnEDIDThatHasBothTimingsReportsUnchanged) {
    const Outcome r =
        halvora({"split", file("sw.bin", EDIDKit::sampleMonitor("superwide-49")->full), "--hex"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "halvora: unchanged: the EDID already lists every timing needed\n");
    EXPECT_EQ(EDIDKit::bytesFromEDIDInput(asBytes(r.out)),
              EDIDKit::sampleMonitor("superwide-49")->full);
}

TEST_F(HalvoraCommand, SplitThatCannotBeWrittenSaysWhyAndWritesNothing) {
    const Bytes baseOnly = EDID(ultrawide()).withoutExtensions().bytes();
    const std::string out = (folder / "never.bin").string();
    const Outcome r = halvora({"split", file("base.bin", baseOnly), "-o", out});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("cannot write the split EDID: the EDID has no CTA-861 extension block"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(HalvoraCommand, BinaryIsNeverWrittenToATerminal) {
    const Outcome r = halvora({"split", file("uw.bin", ultrawide())}, "", /*terminal=*/true);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("not writing binary EDID data to a terminal"), std::string::npos);
    EXPECT_TRUE(r.out.empty());
}

TEST_F(HalvoraCommand, BinaryGoesToStandardOutputWhenItIsNotATerminal) {
    const Outcome r = halvora({"split", "-"}, asString(ultrawide()));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(EDID(asBytes(r.out)),
              EDID(ultrawide()).addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}));
}

TEST_F(HalvoraCommand, ABadNativeIsAUsageError) {
    const Outcome r = halvora({"split", file("uw.bin", ultrawide()), "--native", "wide", "--hex"});
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("--native takes WIDTHxHEIGHT"), std::string::npos);
    EXPECT_EQ(halvora({"split", file("uw.bin", ultrawide()), "--native", "0x1440", "--hex"}).status,
              2);
    const Outcome tiny =
        halvora({"split", file("uw.bin", ultrawide()), "--native", "14x1", "--hex"});
    EXPECT_EQ(tiny.status, 2);
    EXPECT_EQ(tiny.err, "halvora: --native 14x1 is too small to be split into two halves\n");
}

TEST_F(HalvoraCommand, ASplitWhoseHalfDecodersWouldDropIsRefused) {
    // 240×320 at 60 Hz needs 8 MHz; edid-decode drops a timing under 10 MHz.
    const std::string out = (folder / "never.bin").string();
    const Outcome r =
        halvora({"split", file("uw.bin", ultrawide()), "--native", "480x320", "-o", out});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(
        r.err,
        "halvora: --native 480x320 is too small to be split: its half, 240\u00D7320, would need a "
        "8.00 MHz pixel clock, and EDID decoders drop timings under 10 MHz as invalid\n");
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_EQ(
        halvora({"split", file("uw.bin", ultrawide()), "--native", "640x480", "-o", out}).status, 0)
        << "a 320×480 half needs 14.25 MHz";
}

TEST_F(HalvoraCommand, AnOutputFileThatCannotBeWrittenIsBadDataAndLeavesNoTemporaryFile) {
    const std::string out = (folder / "missing-folder" / "split.bin").string();
    const Outcome r = halvora({"split", file("uw.bin", ultrawide()), "-o", out});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("split.bin: cannot write"), std::string::npos) << r.err;
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
        ++files;
    EXPECT_EQ(files, 1u) << "only the input is left";
}

TEST_F(HalvoraCommand, MergeAddsThePictureByPictureTiming) {
    const std::string out = (folder / "merged.bin").string();
    const Outcome r = halvora(
        {"merge", file("full.bin", ultrawide()), file("half.bin", ultrawideHalf()), "-o", out});
    ASSERT_EQ(r.status, 0) << r.err;
    const EDID merged(asBytes(TestSupport::readFile(out)));
    EXPECT_EQ(merged, EDID(ultrawide()).mergingSplitVersion(EDID(ultrawideHalf())));
    EXPECT_TRUE(merged.hasTiming({1720, 1440}));
    EXPECT_EQ(halvora({"merge", "-", "-", "--hex"}).status, 2);
}

TEST_F(HalvoraCommand, CvtPrintsTheTimingAndTheModeline) {
    const Outcome r = halvora({"cvt", "1720", "1440"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("pixel clock      16700 x 10 kHz (167.00 MHz)"), std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("Modeline \"1720x1440R\"  167.00  1720 1768 1800 1880  1440 1443 1453 "
                         "1481 +hsync -vsync"),
              std::string::npos)
        << r.out;
}

TEST_F(HalvoraCommand, CvtJSONHasTheNineFields) {
    const auto j = nlohmann::json::parse(halvora({"cvt", "--json", "1920", "1080", "60"}).out);
    EXPECT_EQ(j["pixelClock10kHz"], 13850);
    EXPECT_EQ(j["vBlank"], 31);
    EXPECT_NEAR(j["refreshHz"].get<double>(), 59.93, 0.01);
}

TEST_F(HalvoraCommand, CvtRejectsBadNumbers) {
    EXPECT_EQ(halvora({"cvt", "0", "1080"}).status, 2);
    EXPECT_EQ(halvora({"cvt", "1920", "tall"}).status, 2);
    EXPECT_EQ(halvora({"cvt", "1920", "1080", "0"}).status, 2);
    EXPECT_EQ(halvora({"cvt", "1920"}).status, 2);
}

TEST(RewriteReport, NoChangeIsSaidPlainly) {
    const EDID edid(ultrawide());
    EXPECT_TRUE(changedSlots(edid, edid).empty());
    EXPECT_EQ(describeRewrite(edid, edid),
              std::vector<std::string>{"unchanged: the EDID already lists every timing needed"});
}

TEST(RewriteReport, AnEvictionNamesTheReplacedTiming) {
    using EDIDKit::Timing;
    const auto cvt = [](int w, int h) { return Timing::cvtReducedBlanking(w, h, 60); };
    EDIDKit::EDIDBuilder b;
    b.baseTiming(cvt(3440, 1440));
    b.ctaExtension({cvt(3440, 1440), cvt(3440, 1440), cvt(640, 480), cvt(3440, 1440),
                    cvt(3440, 1440), cvt(3440, 1440)});
    const EDID before = b.edid();
    const EDID after = before.adding(cvt(1720, 1440), {});
    const auto lines = describeRewrite(before, after);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], "added 1720\u00D71440 @ 59.98 Hz to CTA-861 block 1, byte 40, in place of "
                        "640\u00D7480 @ 59.46 Hz "
                        "(no free slot was left)");
}

TEST_F(HalvoraCommand, AGuessedNativeTooSmallToSplitIsRefused) {
    EDIDKit::EDIDBuilder b;
    b.baseTiming({257, 1, 257, 1, 1, 1, 257, 0, 17})
        .baseTiming({2000, 64, 80, 8, 8, 64, 20, 3, 5})
        .ctaExtension({});
    const std::string out = (folder / "never.bin").string();
    const Outcome r = halvora({"split", file("tiny.bin", b.build()), "-o", out});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find(
                  "the EDID's native resolution 1\u00D71 is too small to be split into two halves"),
              std::string::npos)
        << r.err;
    EXPECT_FALSE(std::filesystem::exists(out));
}
