// The other override service's launchd label: the build's, unless the user
// default "edidOverrideServiceLabel" names another.

#include <HalvoraPro/OverrideServiceLabel.hpp>
#include <gtest/gtest.h>

using HalvoraPro::OverrideServiceLabel;

namespace {

class OverrideServiceLabelTest : public ::testing::Test {
protected:
    std::vector<std::string> log;
    HalvoraPlatform::LogSink sink = [this](const std::string& line) { log.push_back(line); };
};

} // namespace

TEST_F(OverrideServiceLabelTest, WithoutTheUserDefaultTheBuildsLabelIsLookedFor) {
    EXPECT_EQ(OverrideServiceLabel::choose("com.example.edid-override", std::nullopt, sink),
              "com.example.edid-override");
    EXPECT_EQ(OverrideServiceLabel::choose("", std::nullopt, sink), "")
        << "a build that names none looks for none";
    EXPECT_TRUE(log.empty());
}

TEST_F(OverrideServiceLabelTest, TheUserDefaultOverridesTheBuildsLabel) {
    EXPECT_EQ(OverrideServiceLabel::choose("com.example.edid-override",
                                           std::string("org.someone.edid_agent"), sink),
              "org.someone.edid_agent");
    EXPECT_EQ(OverrideServiceLabel::choose("", std::string("org.someone.edid-agent"), sink),
              "org.someone.edid-agent")
        << "a user names the service a build left out";
    EXPECT_TRUE(log.empty());
}

TEST_F(OverrideServiceLabelTest, SpacesAroundTheUserDefaultAreDropped) {
    EXPECT_EQ(OverrideServiceLabel::choose("a.b", std::string("  org.someone.agent\n"), sink),
              "org.someone.agent");
}

TEST_F(OverrideServiceLabelTest, AnEmptyUserDefaultTurnsTheDetectionOff) {
    EXPECT_EQ(OverrideServiceLabel::choose("com.example.edid-override", std::string(""), sink), "");
    EXPECT_EQ(OverrideServiceLabel::choose("com.example.edid-override", std::string("   "), sink),
              "");
}

TEST_F(OverrideServiceLabelTest, AUserDefaultThatCannotBeALaunchdLabelIsIgnoredWithALogLine) {
    EXPECT_EQ(OverrideServiceLabel::choose("com.example.edid-override",
                                           std::string("gui/501/com.evil"), sink),
              "com.example.edid-override");
    EXPECT_EQ(
        OverrideServiceLabel::choose("com.example.edid-override", std::string("two words"), sink),
        "com.example.edid-override");
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log.front(),
              "Halvora Pro: the user default edidOverrideServiceLabel (\"gui/501/com.evil\") is no "
              "launchd label; looking for \"com.example.edid-override\"");
}

TEST_F(OverrideServiceLabelTest, ALabelIsLettersDigitsDotsDashesAndUnderscores) {
    EXPECT_TRUE(OverrideServiceLabel::isValid("com.Example-2.edid_override"));
    EXPECT_TRUE(OverrideServiceLabel::isValid(""));
    EXPECT_FALSE(OverrideServiceLabel::isValid("com.example/agent"));
    EXPECT_FALSE(OverrideServiceLabel::isValid("com example"));
    EXPECT_FALSE(OverrideServiceLabel::isValid("com.exämple"));
    EXPECT_FALSE(OverrideServiceLabel::isValid("com.example;rm"));
}
