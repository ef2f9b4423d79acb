#include <EDIDKit/EDIDText.hpp>

#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

Bytes read(const std::string& text) {
    return bytesFromEDIDInput(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace

TEST(EDIDText, BinaryDataIsReturnedAsItIs) {
    const Bytes bytes = ultrawide().bytes();
    EXPECT_EQ(bytesFromEDIDInput(bytes), bytes);
}

TEST(EDIDText, BinaryThatIsNotAnEDIDIsLeftForTheEDIDToJudge) {
    const Bytes junk{0x01, 0x02, 0xFE};
    EXPECT_EQ(bytesFromEDIDInput(junk), junk);
}

TEST(EDIDText, HexDumpRoundTrips) {
    const Bytes bytes = ultrawide().bytes();
    const std::string dump = hexDump(bytes);
    EXPECT_EQ(dump.substr(0, 24), "00 ff ff ff ff ff ff 00 ");
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 16);
    EXPECT_EQ(read(dump), bytes);
}

TEST(EDIDText, XxdPlainDumpIsRead) {
    EXPECT_EQ(read("00ffffffffffff00\n10ac\n"), (Bytes{0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0x10, 0xAC}));
}

TEST(EDIDText, BytesWithPrefixesAndCommasAreRead) {
    EXPECT_EQ(read("0x00, 0xFF,0x10\r\n\t0XaC"), (Bytes{0x00, 0xFF, 0x10, 0xAC}));
}

TEST(EDIDText, TheHexBlockOfAnEdidDecodeReportIsRead) {
    const std::string report = "edid-decode (hex):\n\n00 ff ff ff ff ff ff 00 10 ac 3a 41 4c 32 4c 42\n"
                               "\n----------------\n\nBlock 0, Base EDID:\n  EDID Structure Version & "
                               "Revision: 1.4\n";
    EXPECT_EQ(read(report).size(), 16u);
}

TEST(EDIDText, TextThatIsNotHexIsRejectedWithItsLine) {
    try {
        read("00 ff\nhello\n");
        FAIL() << "accepted";
    } catch (const EDIDTextError& error) {
        EXPECT_STREQ(error.what(), "the text is not a hex dump (unexpected 'h' on line 2)");
    }
}

TEST(EDIDText, AnOddNumberOfDigitsIsRejected) {
    EXPECT_THROW(read("00 f ff"), EDIDTextError);
    EXPECT_THROW(read("0x0"), EDIDTextError);
}

TEST(EDIDText, TextWithoutBytesIsRejected) {
    EXPECT_THROW(read(" \n\n"), EDIDTextError);
}

TEST(PrintableText, ControlCharactersAreEscapedAsJSONEscapesThem) {
    EXPECT_EQ(printableText("DELL U2518D"), "DELL U2518D");
    EXPECT_EQ(printableText(std::string("A\0B", 3)), "A\\u0000B");
    EXPECT_EQ(printableText("\x1b[31mred"), "\\u001b[31mred");
    EXPECT_EQ(printableText("a\tb\nc\rd\be\ff"), "a\\tb\\nc\\rd\\be\\ff");
    EXPECT_EQ(printableText("back\\slash \"quoted\""), "back\\\\slash \"quoted\"");
    EXPECT_EQ(printableText("\x7f"), "\\u007f");
    EXPECT_EQ(printableText("\xc2\x9b"
                            "2J"),
              "\\u009b2J")
        << "C1 controls such as CSI are escaped too";
    EXPECT_EQ(printableText("3440\u00D71440 \u00A0\u2026"), "3440\u00D71440 \u00A0\u2026");
}
