#include <HalvoraCore/Base64.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <gtest/gtest.h>

using namespace HalvoraCore;
using nlohmann::json;

namespace {

json minimal() {
    return json::parse(R"({"identity":{"vendorID":8598,"productID":13376,"serialNumber":3421185},
                           "native":{"width":3440,"height":1440}})");
}

DisplaySettings everything() {
    DisplaySettings s({8598, 13376, 3421185}, "DisplayPort 1", {3440, 1440},
                      EDIDKit::Bytes{0, 255, 1, 2}, DisplayMode{3440, 1440, 60},
                      PBPBehavior::latchedAtPlug);
    s.factoryFullEDID = EDIDKit::Bytes{9, 8, 7};
    s.factorySplitEDID = EDIDKit::Bytes{6};
    return s;
}

} // namespace

TEST(SettingsCoding, AFullRecordRoundTrips) {
    const DisplaySettings s = everything();
    EXPECT_EQ(decodeSettings(encodeSettings(s)), s);
    EXPECT_EQ(decodeSettings(json::parse(encodeSettings(s).dump())), s);
}

TEST(SettingsCoding, ARecordWithOnlyRequiredFieldsEncodesToIdentityAndNative) {
    const DisplaySettings s({8598, 13376, 3421185}, std::nullopt, {3440, 1440});
    EXPECT_EQ(encodeSettings(s), minimal());
}

TEST(SettingsCoding, KeysAndValuesAreAsStored) {
    const json j = encodeSettings(everything());
    EXPECT_EQ(j["port"], "DisplayPort 1");
    EXPECT_EQ(j["overrideEDID"], "AP8BAg==");
    EXPECT_EQ(j["lastMode"], (json{{"width", 3440}, {"height", 1440}, {"refreshHz", 60}}));
    EXPECT_EQ(j["behavior"], "latchedAtPlug");
    EXPECT_EQ(j["factoryFullEDID"], "CQgH");
    EXPECT_EQ(j["factorySplitEDID"], "Bg==");
}

TEST(SettingsCoding, ARecordWithoutOptionalKeysDecodesWithEachOfThemAbsent) {
    const DisplaySettings s = decodeSettings(minimal());
    EXPECT_EQ(s.identity, (DisplayIdentity{8598, 13376, 3421185}));
    EXPECT_EQ(s.native, (EDIDKit::Resolution{3440, 1440}));
    EXPECT_EQ(s.port, std::nullopt);
    EXPECT_EQ(s.overrideEDID, std::nullopt);
    EXPECT_EQ(s.lastMode, std::nullopt);
    EXPECT_EQ(s.behavior, std::nullopt);
    EXPECT_EQ(s.factoryFullEDID, std::nullopt);
    EXPECT_EQ(s.factorySplitEDID, std::nullopt);
}

TEST(SettingsCoding, AnUnknownBehaviourANumberOrNullDecodeToNoBehaviourAndTheRestStands) {
    for (const json& value :
         {json("sometimesToggles"), json(3), json(nullptr), json("LatchedAtPlug")}) {
        json j = minimal();
        j["behavior"] = value;
        j["port"] = "DP-2";
        const DisplaySettings s = decodeSettings(j);
        EXPECT_EQ(s.behavior, std::nullopt) << value;
        EXPECT_EQ(s.port, "DP-2") << value;
    }
}

TEST(SettingsCoding, MissingIdentityOrNativeFailsTheRecord) {
    json noIdentity = minimal();
    noIdentity.erase("identity");
    EXPECT_THROW(decodeSettings(noIdentity), SettingsDecodingError);
    json noNative = minimal();
    noNative.erase("native");
    EXPECT_THROW(decodeSettings(noNative), SettingsDecodingError);
}

TEST(SettingsCoding, AMalformedPresentKeyFailsTheRecord) {
    const auto fails = [](const char* key, json value) {
        json j = minimal();
        j[key] = std::move(value);
        EXPECT_THROW(decodeSettings(j), SettingsDecodingError) << key;
    };
    fails("port", 5);
    fails("overrideEDID", "not base64!");
    fails("overrideEDID", 12);
    fails("lastMode", json{{"width", 1}, {"height", 2}});
    fails("factoryFullEDID", "AAA");
    fails("identity", json{{"vendorID", -1}, {"productID", 1}, {"serialNumber", 1}});
    fails("identity", json{{"vendorID", 4294967296}, {"productID", 1}, {"serialNumber", 1}});
    fails("native", json{{"width", "3440"}, {"height", 1440}});
}

TEST(SettingsCoding, SizesNoEDIDCanDescribeFailTheRecord) {
    const auto fails = [](const char* key, json value) {
        json j = minimal();
        j[key] = std::move(value);
        EXPECT_THROW(decodeSettings(j), SettingsDecodingError) << key << " " << j[key];
    };
    fails("native", json{{"width", -5}, {"height", 0}});
    fails("native", json{{"width", 3440}, {"height", 0}});
    fails("native", json{{"width", 65537}, {"height", 1440}});
    fails("native", json{{"width", 2147483647}, {"height", 1}});
    fails("lastMode", json{{"width", -1}, {"height", 1440}, {"refreshHz", 60}});
    fails("lastMode", json{{"width", 3440}, {"height", 9223372036854775807LL}, {"refreshHz", 60}});
    fails("lastMode", json{{"width", 3440}, {"height", 1440}, {"refreshHz", -60}});
    try {
        json j = minimal();
        j["native"] = {{"width", -5}, {"height", 0}};
        decodeSettings(j);
    } catch (const SettingsDecodingError& error) {
        EXPECT_STREQ(error.what(), "\"native\" -5×0 is not a size an EDID can describe");
    }
}

TEST(SettingsCoding, TheLargestSizesAnEDIDCanDescribeDecode) {
    json j = minimal();
    j["native"] = {{"width", 65536}, {"height", 1}};
    j["lastMode"] = {{"width", 1}, {"height", 65536}, {"refreshHz", 0}};
    const auto decoded = decodeSettings(j);
    EXPECT_EQ(decoded.native, (EDIDKit::Resolution{65536, 1}));
    EXPECT_EQ(decoded.lastMode, (DisplayMode{1, 65536, 0}));
}

TEST(SettingsCoding, OneFailingRecordFailsTheWholeList) {
    json list = json::array({minimal(), minimal()});
    EXPECT_EQ(decodeSettingsList(list).size(), 2u);
    list[1].erase("native");
    EXPECT_THROW(decodeSettingsList(list), SettingsDecodingError);
    EXPECT_THROW(decodeSettingsList(minimal()), SettingsDecodingError) << "not a list";
}

TEST(SettingsCoding, ReadingRecordByRecordKeepsEveryRecordThatDecodesAndNamesTheOthers) {
    json list = json::array({minimal(), minimal(), "not a record", minimal()});
    list[1].erase("native");
    const ReadableSettings readable = decodeReadableSettings(list);
    EXPECT_EQ(readable.records.size(), 2u);
    ASSERT_EQ(readable.dropped.size(), 2u);
    EXPECT_TRUE(readable.dropped[0].starts_with("record 2: ")) << readable.dropped[0];
    EXPECT_TRUE(readable.dropped[1].starts_with("record 3: ")) << readable.dropped[1];
    EXPECT_THROW(decodeReadableSettings(minimal()), SettingsDecodingError) << "not a list";
}

TEST(Base64, EncodesAsFoundationDoesWithPadding) {
    EXPECT_EQ(base64Encoded({}), "");
    EXPECT_EQ(base64Encoded({'f'}), "Zg==");
    EXPECT_EQ(base64Encoded({'f', 'o'}), "Zm8=");
    EXPECT_EQ(base64Encoded({'f', 'o', 'o'}), "Zm9v");
    EXPECT_EQ(base64Encoded({0xFB, 0xFF}), "+/8=");
}

TEST(Base64, DecodesOnlyStrictStandardBase64) {
    EXPECT_EQ(base64Decoded("Zm9vYg=="), (EDIDKit::Bytes{'f', 'o', 'o', 'b'}));
    EXPECT_EQ(base64Decoded(""), EDIDKit::Bytes{});
    EXPECT_EQ(base64Decoded("Zm9vYg"), std::nullopt) << "padding missing";
    EXPECT_EQ(base64Decoded("Zm=vYg=="), std::nullopt) << "padding inside";
    EXPECT_EQ(base64Decoded("Zm9v\nYg=="), std::nullopt);
    EXPECT_EQ(base64Decoded("Zm9-"), std::nullopt) << "URL alphabet";
}

TEST(Base64, RoundTripsEveryLength) {
    EDIDKit::Bytes bytes;
    for (int n = 0; n < 300; ++n) {
        EXPECT_EQ(base64Decoded(base64Encoded(bytes)), bytes) << n;
        bytes.push_back(static_cast<std::uint8_t>(n * 37));
    }
}
