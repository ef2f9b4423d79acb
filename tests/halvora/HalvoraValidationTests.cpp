// What the halvora command accepts: EDIDs whose blocks hang together (or an
// option saying how to go on), sizes an EDID can state, options as they are
// spelled, and EDID text printed so that it cannot act on the terminal.

#include "HalvoraRun.hpp"
#include "PrintableText.hpp"
#include "SimulatorRun.hpp"
#include "TemporaryFolder.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDBuilder.hpp>
#include <EDIDKit/EDIDIntegrity.hpp>
#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <cstdio>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace HalvoraTesting;
using EDIDKit::Bytes;
using EDIDKit::EDID;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

/// The ultrawide with a wrong checksum in its CTA-861 block.
Bytes withBadExtensionChecksum() {
    return EDID(ultrawide()).withBrokenChecksum(1).bytes();
}

/// The ultrawide claiming `count` extension blocks (its checksums all right).
Bytes claimingExtensions(std::uint8_t count) {
    return EDID(ultrawide()).withExtensionCount(count).bytes();
}

/// The checksum byte of the CTA-861 block.
unsigned extensionChecksum(const Bytes& bytes) {
    return EDID(bytes).storedChecksum(1);
}

std::string hexByte(unsigned value) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02x", value);
    return text;
}

class HalvoraValidation : public ::testing::Test {
protected:
    std::string file(const std::string& name, const Bytes& bytes) {
        const auto path = folder / name;
        TestSupport::writeFile(path, asString(bytes));
        return path.string();
    }
    std::string out() const { return (folder / "out.bin").string(); }
    TestSupport::TemporaryFolder folder;
};

} // namespace

// --- EDIDs whose blocks do not hang together -----------------------------------------------

TEST_F(HalvoraValidation, SplitRefusesAWrongChecksumNamingTheBlockAndWritesNothing) {
    const Bytes bad = withBadExtensionChecksum();
    const std::string in = file("bad.bin", bad);
    const Outcome r = halvora({"split", in, "-o", out()});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(
        r.err,
        "halvora: " + in + ": not rewriting this EDID:\n  block 1 has checksum " +
            hexByte(extensionChecksum(bad)) + " (should be " +
            hexByte(extensionChecksum(ultrawide())) +
            "); the data may be damaged: if you know its content is right, pass --fix-checksums\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(HalvoraValidation, SplitWithFixChecksumsWritesASoundEDIDAndSaysWhatItFixed) {
    const Bytes bad = withBadExtensionChecksum();
    const std::string in = file("bad.bin", bad);
    const Outcome r = halvora({"split", in, "--fix-checksums", "-o", out()});
    ASSERT_EQ(r.status, 0) << r.err;
    const EDID written(asBytes(TestSupport::readFile(out())));
    EXPECT_TRUE(EDIDKit::EDIDIntegrity::of(written).isSound());
    EXPECT_EQ(written, EDID(ultrawide()).addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}));
    EXPECT_THAT(r.err, HasSubstr("halvora: " + in + ": fixed the checksum of block 1 (" +
                                 hexByte(extensionChecksum(bad)) + ", now " +
                                 hexByte(extensionChecksum(ultrawide())) + ")\n"));
    EXPECT_THAT(r.err, HasSubstr("added 1720\u00D71440"));
}

TEST_F(HalvoraValidation, SplitRefusesAnExtensionCountThatDisagreesWithTheBlocks) {
    const std::string in = file("claims.bin", claimingExtensions(255));
    const Outcome r = halvora({"split", in, "-o", out()});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(
        r.err,
        "halvora: " + in +
            ": not rewriting this EDID:\n  the base block specifies 255 extension blocks, but 1 is "
            "present; to write the blocks as they are, pass --accept-extension-count\n");
    EXPECT_FALSE(fs::exists(out()));
    const Outcome accepted = halvora({"split", in, "--accept-extension-count", "-o", out()});
    ASSERT_EQ(accepted.status, 0) << accepted.err;
    EXPECT_TRUE(EDID(asBytes(TestSupport::readFile(out()))).hasTiming({1720, 1440}));
}

TEST_F(HalvoraValidation, BothProblemsAreNamedAtOnceAndEachNeedsItsOwnOption) {
    const Bytes bytes = EDID(claimingExtensions(0)).withBrokenChecksum(1).bytes();
    const std::string in = file("both.bin", bytes);
    const Outcome r = halvora({"split", in, "--hex"});
    EXPECT_EQ(r.status, 1);
    EXPECT_THAT(r.err, HasSubstr("block 1 has checksum"));
    EXPECT_THAT(r.err, HasSubstr("the base block specifies 0 extension blocks, but 1 is present"));
    EXPECT_EQ(halvora({"split", in, "--hex", "--fix-checksums"}).status, 1);
    EXPECT_EQ(halvora({"split", in, "--hex", "--accept-extension-count"}).status, 1);
    EXPECT_EQ(halvora({"split", in, "--hex", "--fix-checksums", "--accept-extension-count"}).status,
              0);
}

TEST_F(HalvoraValidation, MergeRefusesEitherInputWithAWrongChecksumNamingThatFile) {
    const Bytes badHalf = EDID(ultrawideHalf()).withBrokenChecksum().bytes();
    const std::string full = file("full.bin", ultrawide());
    const std::string half = file("half.bin", badHalf);
    const Outcome r = halvora({"merge", full, half, "-o", out()});
    EXPECT_EQ(r.status, 1);
    EXPECT_THAT(r.err, HasSubstr("halvora: " + half +
                                 ": not rewriting this EDID:\n  block 0 has checksum"));
    EXPECT_FALSE(fs::exists(out()));
    const Outcome badFull = halvora({"merge", file("badfull.bin", withBadExtensionChecksum()),
                                     file("h.bin", ultrawideHalf()), "--hex"});
    EXPECT_EQ(badFull.status, 1);
    EXPECT_THAT(badFull.err, HasSubstr("badfull.bin: not rewriting this EDID"));
    const Outcome fixed = halvora({"merge", full, half, "--fix-checksums", "-o", out()});
    ASSERT_EQ(fixed.status, 0) << fixed.err;
    EXPECT_TRUE(EDID(asBytes(TestSupport::readFile(out()))).isChecksumValid());
}

TEST_F(HalvoraValidation, DecodeReportsWrongChecksumsAsTheReferenceDecoderWordsThem) {
    const Bytes bad = withBadExtensionChecksum();
    const Outcome text = halvora({"decode", file("bad.bin", bad)});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_THAT(text.out, HasSubstr("Checksums:         INVALID: block 1 has checksum " +
                                    hexByte(extensionChecksum(bad)) + " (should be " +
                                    hexByte(extensionChecksum(ultrawide())) + ")\n"));
    EXPECT_THAT(text.out, HasSubstr("Extension blocks:  1\n"));
    const auto j = nlohmann::json::parse(halvora({"decode", "--json", file("bad.bin", bad)}).out);
    EXPECT_EQ(j["checksumValid"], false);
    EXPECT_EQ(j["badChecksums"],
              (nlohmann::json::array(
                  {{{"block", 1}, {"checksum", bad[255]}, {"shouldBe", ultrawide()[255]}}})));
}

TEST_F(HalvoraValidation, DecodeReportsAnExtensionCountOf255WithOneBlockPresent) {
    const Outcome text = halvora({"decode", file("claims.bin", claimingExtensions(255))});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_THAT(
        text.out,
        HasSubstr("Extension blocks:  INVALID: the base block specifies 255 extension blocks, "
                  "but 1 is present\n"));
    EXPECT_THAT(text.out, HasSubstr("Checksums:         valid\n"));
    const auto j = nlohmann::json::parse(
        halvora({"decode", "--json", file("claims.bin", claimingExtensions(255))}).out);
    EXPECT_EQ(j["extensionBlocks"], (nlohmann::json{{"specified", 255}, {"present", 1}}));
}

TEST_F(HalvoraValidation, AMebibyteOfBlocksIsNotAnEDID) {
    Bytes huge = ultrawide();
    while (huge.size() < (1u << 20))
        huge.insert(huge.end(), ultrawide().begin(), ultrawide().end());
    huge.resize(1u << 20);
    const std::string in = file("huge.bin", huge);
    for (const char* command : {"decode", "split"}) {
        const Outcome r = halvora({command, in, "-o", out()});
        const Outcome shown = std::string(command) == "decode" ? halvora({command, in}) : r;
        EXPECT_EQ(shown.status, 1) << command;
        EXPECT_EQ(shown.err, "halvora: " + in +
                                 ": not an EDID: the data is 1048576 bytes long, more than the 256 "
                                 "blocks of 128 bytes an EDID can have\n")
            << command;
    }
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(HalvoraValidation, TwoHundredFiftySixBlocksAreTheMost) {
    Bytes bytes = claimingExtensions(255);
    bytes.resize(256 * 128);
    EXPECT_EQ(halvora({"decode", file("256.bin", bytes)}).status, 0);
    bytes.resize(257 * 128);
    EXPECT_EQ(halvora({"decode", file("257.bin", bytes)}).status, 1);
}

// --- sizes ------------------------------------------------------------------------------------

TEST_F(HalvoraValidation, ANativeSizeBeyondWhatAnEDIDCanStateIsAUsageErrorNotTheFilesFault) {
    const std::string in = file("uw.bin", ultrawide());
    for (const char* native : {"2147483647x1", "99999999x1", "1x65537", "3440x-1440"}) {
        const Outcome r = halvora({"split", in, "--native", native, "-o", out()});
        EXPECT_EQ(r.status, 2) << native;
        EXPECT_EQ(
            r.err,
            std::string(
                "halvora: --native takes WIDTHxHEIGHT, each a whole number from 1 to 65536, for "
                "example --native 3440x1440 (not '") +
                native + "')\n")
            << native;
    }
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(HalvoraValidation, ANativeWhoseHalfNoDescriptorHoldsIsAUsageError) {
    const Outcome r =
        halvora({"split", file("uw.bin", ultrawide()), "--native", "9000x1440", "-o", out()});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "halvora: --native 9000x1440 is too large to be split: its half, "
                     "4496\u00D71440, does not fit an "
                     "EDID detailed timing descriptor (at most 4095 pixels wide and 4095 high, and "
                     "a pixel clock "
                     "under 655.36 MHz)\n");
    EXPECT_FALSE(fs::exists(out()));
    EXPECT_EQ(
        halvora({"split", file("uw.bin", ultrawide()), "--native", "65536x65536", "--hex"}).status,
        2);
}

TEST_F(HalvoraValidation, CvtOfASizeTooSmallForAnyClockIsAUsageError) {
    const Outcome r = halvora({"cvt", "1", "1"});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "halvora: 1\u00D71 at 60 Hz is too small for a CVT timing: its pixel clock "
                     "rounds down to 0 MHz\n");
    EXPECT_TRUE(r.out.empty());
}

TEST_F(HalvoraValidation, CvtOfANegativeSizeSaysWhatIsWrongWithIt) {
    const Outcome r = halvora({"cvt", "-1720", "1440"});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "halvora: WIDTH must be a whole number from 1 to 65536, the most an EDID can "
                     "state (not '-1720')\n");
    EXPECT_THAT(halvora({"cvt", "1720", "-1440"}).err, HasSubstr("HEIGHT must be a whole number"));
    EXPECT_THAT(halvora({"cvt", "1720", "1440", "-60"}).err,
                HasSubstr("REFRESH must be a rate in Hz"));
    EXPECT_THAT(halvora({"cvt", "2147483648", "1440"}).err, HasSubstr("(not '2147483648')"));
}

TEST_F(HalvoraValidation, CvtOfASizeOnlyDisplayIDCanStateSaysItDoesNotFitADescriptor) {
    const Outcome r = halvora({"cvt", "5120", "1440"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_THAT(r.out, HasSubstr("fits an EDID detailed timing descriptor: no"));
    EXPECT_EQ(halvora({"cvt", "65536", "65536", "1000"}).status, 0);
}

// --- options -----------------------------------------------------------------------------------

TEST_F(HalvoraValidation, AFlagGivenAValueSaysItTakesNone) {
    const Outcome r = halvora({"split", file("uw.bin", ultrawide()), "--hex=1"});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "halvora: --hex takes no value (not '--hex=1')\n");
    EXPECT_EQ(halvora({"decode", "--json=yes", "x"}).err,
              "halvora: --json takes no value (not '--json=yes')\n");
}

TEST_F(HalvoraValidation, HelpNamesTheOptionsForDamagedEDIDs) {
    for (const char* command : {"split", "merge"}) {
        const Outcome r = halvora({command, "--help"});
        EXPECT_THAT(r.out, HasSubstr("--fix-checksums")) << command;
        EXPECT_THAT(r.out, HasSubstr("--accept-extension-count")) << command;
    }
}

TEST(SimulateStrict, TheReasonACommandFailedIsOnStandardErrorToo) {
    const auto run = SimulatorTesting::simulate({"--strict"}, "state\nplug nobody\nstate\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "halvora: line 2: no monitor is named 'nobody'\n");
}

// --- EDID text ---------------------------------------------------------------------------------

TEST(PrintableText, JSONEscapesDELAndTheC1ControlsTooAndParsesBackTheSame) {
    const nlohmann::json value = {{"name", "A\x1b[2J\x7f\xc2\x9bZ\\ 3440\u00D71440"}};
    const std::string text = Halvora::printableJSON(value);
    EXPECT_EQ(text, R"({"name":"A\u001b[2J\u007f\u009bZ\\ 3440)"
                    "\u00D7"
                    R"(1440"})");
    EXPECT_EQ(nlohmann::json::parse(text), value);
}

namespace {

/// The ultrawide with this product name (its first 13 bytes).
Bytes namedUltrawide(const std::string& name) {
    const EDID named = EDID(ultrawide()).withProductName(name);
    EXPECT_NE(named, EDID(ultrawide())) << "the ultrawide has no product name descriptor";
    return named.bytes();
}

bool hasControlCharacterOtherThanNewline(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if ((c < 0x20 && c != '\n') || c == 0x7F) return true;
        if (c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
            static_cast<unsigned char>(text[i + 1]) <= 0x9F)
            return true;
    }
    return false;
}

} // namespace

TEST_F(HalvoraValidation, AProductNameWithTerminalEscapesIsPrintedEscaped) {
    const std::string name = std::string("\x1b]0;pwn\x07\x1b[2J") + std::string(1, '\0');
    ASSERT_EQ(name.size(), 13u);
    const std::string in = file("escapes.bin", namedUltrawide(name));
    const Outcome text = halvora({"decode", in});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_FALSE(hasControlCharacterOtherThanNewline(text.out)) << text.out;
    EXPECT_THAT(text.out, HasSubstr("Product name:      \\u001b]0;pwn\\u0007\\u001b[2J\\u0000\n"));
    const Outcome json = halvora({"decode", "--json", in});
    EXPECT_FALSE(hasControlCharacterOtherThanNewline(json.out));
    EXPECT_EQ(nlohmann::json::parse(json.out)["productName"], name)
        << "JSON keeps the name exactly, escaped";
}

TEST_F(HalvoraValidation, TheSimulatorPrintsAMonitorsNameEscapedToo) {
    const std::string name = "\x1b[2JEvil";
    TestSupport::writeFile(folder / "evil.bin", asString(namedUltrawide(name)));
    TestSupport::writeFile(
        folder / "rig.json",
        R"({"monitors":[{"name":"evil","full":"evil.bin","behavior":"latchedAtPlug"}]})");
    const auto run = SimulatorTesting::simulate({"--rig", (folder / "rig.json").string()},
                                                "menu\nclick 1\nstate\n");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("\\u001b[2JEvil"));
    EXPECT_FALSE(hasControlCharacterOtherThanNewline(run.out)) << run.out;
}

TEST(HalvoraCorpusText, NoCorpusEDIDPrintsAControlCharacter) {
    const fs::path corpus = HALVORA_EDID_CORPUS;
    ASSERT_TRUE(fs::is_directory(corpus)) << "the EDID corpus is missing: " << corpus;
    std::size_t decoded = 0;
    for (const auto& entry : fs::directory_iterator(corpus)) {
        if (entry.path().extension() != ".bin") continue;
        const Outcome r = halvora({"decode", entry.path().string()});
        ASSERT_EQ(r.status, 0) << entry.path() << ": " << r.err;
        EXPECT_FALSE(hasControlCharacterOtherThanNewline(r.out)) << entry.path();
        ++decoded;
    }
    EXPECT_EQ(decoded, 400u);
}
