#include "TestEDIDs.hpp"

#include <gtest/gtest.h>

using namespace EDIDKit;
using namespace EDIDKit::testing;

namespace {

EDIDError constructionError(Bytes bytes) {
    try {
        EDID e(std::move(bytes));
    } catch (const EDIDError& error) {
        return error;
    }
    ADD_FAILURE() << "construction succeeded";
    return EDIDError::noPreferredTiming();
}

} // namespace

TEST(EDIDConstruction, LengthsThatAreNotWholeBlocksAreRejected) {
    EXPECT_EQ(constructionError(Bytes(127, 0)), EDIDError::invalidLength(127));
    EXPECT_EQ(constructionError(Bytes(200, 0)), EDIDError::invalidLength(200));
    EXPECT_EQ(constructionError(Bytes{}), EDIDError::invalidLength(0));
}

TEST(EDIDConstruction, MoreThan256BlocksAreRejected) {
    // The base block's one-byte count announces at most 255 extensions.
    Bytes bytes = ultrawide().bytes();
    bytes.resize(256 * 128);
    EXPECT_EQ(EDID(bytes).blockCount(), 256u);
    bytes.resize(257 * 128);
    EXPECT_EQ(constructionError(bytes), EDIDError::invalidLength(257 * 128));
    bytes.resize(8192 * 128);
    EXPECT_EQ(constructionError(bytes), EDIDError::invalidLength(1 << 20));
}

TEST(EDIDError, TooManyBlocksAreDescribedAsSuch) {
    EXPECT_EQ(
        EDIDError::invalidLength(257 * 128).description(),
        "the data is 32896 bytes long, more than the 256 blocks of 128 bytes an EDID can have");
}

TEST(EDIDConstruction, LengthIsCheckedBeforeTheHeader) {
    Bytes bytes = ultrawide().bytes();
    bytes.resize(200);
    EXPECT_EQ(constructionError(bytes), EDIDError::invalidLength(200));
}

TEST(EDIDConstruction, WrongHeaderIsRejected) {
    Bytes bytes = ultrawide().bytes();
    bytes.resize(128);
    bytes[7] = 0xFF;
    EXPECT_EQ(constructionError(bytes), EDIDError::invalidHeader());
}

TEST(EDIDConstruction, ChecksumsAreNotVerifiedOnConstruction) {
    Bytes bytes = ultrawide().bytes();
    bytes[127] ^= 0x55;
    const EDID edid(bytes);
    EXPECT_FALSE(edid.isChecksumValid());
    EXPECT_EQ(edid.data(), bytes);
}

TEST(EDIDChecksum, ABadExtensionChecksumMakesTheWholeEDIDInvalid) {
    Bytes bytes = ultrawide().bytes();
    EXPECT_TRUE(EDID(bytes).isChecksumValid());
    bytes[255] ^= 1;
    EXPECT_FALSE(EDID(bytes).isChecksumValid());
}

TEST(EDIDError, DescriptionsSayWhatIsWrongInWords) {
    EXPECT_EQ(EDIDError::invalidLength(200).description(),
              "the data is 200 bytes long, which is not a whole number of 128-byte EDID blocks");
    EXPECT_EQ(EDIDError::timingTooLarge(5120, 2880).description(),
              "a 5120\u00D72880 timing does not fit in an 18-byte detailed timing descriptor");
    EXPECT_STREQ(EDIDError::invalidHeader().what(),
                 EDIDError::invalidHeader().description().c_str());
}

TEST(EDIDError, ErrorsCompareByCaseAndPayload) {
    EXPECT_EQ(EDIDError::outOfRange(1720, 1440), EDIDError::outOfRange(1720, 1440));
    EXPECT_NE(EDIDError::outOfRange(1720, 1440), EDIDError::timingTooLarge(1720, 1440));
    EXPECT_NE(EDIDError::invalidLength(127), EDIDError::invalidLength(200));
    EXPECT_EQ(EDIDError::outOfRange(1720, 1440).width(), 1720);
    EXPECT_EQ(EDIDError::outOfRange(1720, 1440).height(), 1440);
    EXPECT_EQ(EDIDError::invalidLength(127).length(), 127);
}
