#include "ShellFixture.hpp"

#include <HalvoraPro/Alert.hpp>
#include <HalvoraPro/ConfirmationPanel.hpp>
#include <HalvoraPro/IdentificationWindow.hpp>
#include <HalvoraPro/LocalizedStrings.hpp>
#include <HalvoraPro/SwitchPromptPanel.hpp>
#include <TemporaryFolder.hpp>
#include <gmock/gmock.h>
#include <set>

using namespace ShellTests;
using HalvoraPro::formatText;
using HalvoraPro::LocalizedStrings;
using HalvoraPro::StringsFormatError;
using HalvoraPro::Text;
using HalvoraPro::TextFormatError;

namespace {

TEST(StringsTable, ReadsKeysValuesCommentsAndEscapes) {
    const auto table = LocalizedStrings::parse("/* a comment\n over lines */\n"
                                               "\"a\" = \"one\";  // trailing comment\n"
                                               "\"b.c\"=\"say \\\"hi\\\"\\n\\\\ done\";\n"
                                               "\n\"empty\" = \"\";\n");
    EXPECT_EQ(table.lookup("a"), "one");
    EXPECT_EQ(table.lookup("b.c"), "say \"hi\"\n\\ done");
    EXPECT_EQ(table.lookup("empty"), "");
    EXPECT_FALSE(table.lookup("missing"));
}

TEST(StringsTable, AByteOrderMarkIsIgnored) {
    EXPECT_EQ(LocalizedStrings::parse("\xEF\xBB\xBF\"k\" = \"v\";").lookup("k"), "v");
}

TEST(StringsTable, BrokenTablesNameTheLine) {
    const auto lineOf = [](const char* text) {
        try {
            LocalizedStrings::parse(text);
        } catch (const StringsFormatError& e) {
            return e.line();
        }
        return 0;
    };
    EXPECT_EQ(lineOf("\"a\" = \"1\";\n\"b\" = \"2\"\n"), 3);  // missing semicolon at the end
    EXPECT_EQ(lineOf("\"a\" = \"1\";\n\n\"a\" = \"2\";"), 3); // defined twice
    EXPECT_EQ(lineOf("\"a\" \"1\";"), 1);                     // no equals sign
    EXPECT_EQ(lineOf("\"a\" = \"unclosed;\n"), 2);
    EXPECT_EQ(lineOf("/* never closed\n\n"), 1);
    EXPECT_EQ(lineOf("a = \"1\";"), 1);       // key without quotes
    EXPECT_EQ(lineOf("\"a\" = \"\\q\";"), 1); // unknown escape
}

TEST(StringsTable, LoadingAMissingFileSaysWhich) {
    try {
        LocalizedStrings::load("/nonexistent/Localizable.strings");
        FAIL();
    } catch (const std::runtime_error& e) {
        EXPECT_THAT(e.what(), ::testing::HasSubstr("/nonexistent/Localizable.strings"));
    }
}

TEST(StringsTable, TheBuiltInTableIsTheOneInResources) {
    const auto file = LocalizedStrings::load(HALVORA_STRINGS_FILE);
    EXPECT_EQ(file.entries(), LocalizedStrings::english().entries());
}

TEST(TextFormat, FillsStringsAndIntegersInOrder) {
    EXPECT_EQ(formatText("%@ at %d Hz, 100%%", {std::string("1720×1440"), 60LL}),
              "1720×1440 at 60 Hz, 100%");
    EXPECT_EQ(formatText("plain", {}), "plain");
}

TEST(TextFormat, RefusesArgumentsThatDoNotFit) {
    EXPECT_THROW(formatText("%@", {}), TextFormatError);
    EXPECT_THROW(formatText("%@", {1LL}), TextFormatError);
    EXPECT_THROW(formatText("%d", {std::string("x")}), TextFormatError);
    EXPECT_THROW(formatText("none", {std::string("x")}), TextFormatError);
    EXPECT_THROW(formatText("%s", {std::string("x")}), TextFormatError);
    EXPECT_THROW(formatText("ends with %", {}), TextFormatError);
}

TEST(TextFormat, ResolvingShowsLiteralsAsTheyAreAndAMissingKeyAsItself) {
    const auto table = LocalizedStrings::parse("\"k\" = \"Hello %@\";");
    EXPECT_EQ(table.resolve(Text::localized("k", {std::string("you")})), "Hello you");
    EXPECT_EQ(table.resolve(Text::literal("Dell U3423WE")), "Dell U3423WE");
    EXPECT_EQ(table.resolve(Text::localized("nope")), "nope");
}

// --- every text the application can show is in the English table ------------

class EnglishTableTest : public ShellTest {
protected:
    void add(const Text& t) {
        if (!t.verbatim) produced.push_back(t);
    }
    void addMenu(const HalvoraPro::Menu& menu) {
        for (const auto& item : menu)
            if (item.kind != HalvoraPro::MenuItem::Kind::separator) add(item.title);
    }
    void addPanel(const HalvoraPro::PanelContent& c) {
        for (const auto& t : {c.title, c.message, c.cancelButton, c.defaultButton})
            add(t);
        if (c.countdown) add(*c.countdown);
    }
    void addAlert(const HalvoraPro::Alert& a) {
        add(a.title);
        add(a.message);
        for (const auto& b : a.buttons)
            add(b);
    }
    std::vector<Text> produced;
};

TEST_F(EnglishTableTest, EveryTextTheShellProducesIsThereWithMatchingPlaceholders) {
    using HalvoraCore::IdentificationWizard;
    using HalvoraCore::SplitError;
    using Step = IdentificationWizard::Step;

    // The menu in its states: unidentified, known, with offers and conflicts,
    // an update waiting, and with no displays.
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug),
           sampleMonitor("superwide-49", PBPBehavior::switchesOnToggle)});
    machine->setTool(HalvoraCore::ConflictingTool::edidOverrideService, true);
    machine->setTool(HalvoraCore::ConflictingTool::betterDisplay, true);
    addMenu(shell->buildMenu());
    updater->willHandleShowingUpdate(false, "9.9");
    addMenu(shell->buildMenu());
    identifyAndKeepUltrawide();
    addMenu(shell->buildMenu());
    item(shell->buildMenu(), "menu.restoreFactory").handler();
    addMenu(shell->buildMenu());
    machine->unplug("ultrawide-34");
    machine->unplug("superwide-49");
    clock->advance(0);
    addMenu(shell->buildMenu());
    // Started with the Option key held, in a build without the update framework.
    startMode = HalvoraCore::SplitController::Start::safe;
    start();
    updater = std::make_shared<HalvoraPro::Updater>(
        std::make_shared<HalvoraPro::UnavailableUpdaterDriver>());
    shell = HalvoraPro::MenuBarController::create(
        {controller, updater, loginItem, defaults, clock, view,
         [](const Text& t) { return LocalizedStrings::english().resolve(t); }, settingsStatus});
    addMenu(shell->buildMenu());
    // On a system that lacks the display port calls.
    shell->setMissingPlatformCalls({"IOAVServiceCopyEDID"});
    addMenu(shell->buildMenu());
    add(Text::localized("menu.unnamedDisplay"));

    for (const auto tool : {HalvoraCore::ConflictingTool::edidOverrideService,
                            HalvoraCore::ConflictingTool::betterDisplay}) {
        addAlert(HalvoraPro::conflictAlert(tool));
        add(HalvoraPro::conflictMenuTitle(tool));
    }
    const SplitError errors[] = {
        SplitError::cannotAddSplit(EDIDKit::EDIDError::timingTooLarge(9000, 1440)),
        SplitError::cannotAddSplit(EDIDKit::EDIDError::outOfRange(7680, 2160)),
        SplitError::cannotAddSplit(EDIDKit::EDIDError::noCTAExtension()),
        SplitError::cannotAddSplit(EDIDKit::EDIDError::noFreeDescriptorSlot()),
        SplitError::cannotAddSplit(EDIDKit::EDIDError::invalidHeader()),
        SplitError::modeUnavailable({1720, 1440}),
        SplitError::systemFailure("IOAV failed"),
        SplitError::hardware(HalvoraCore::DisplayOperation::writeOverride, "IOAV failed"),
        SplitError::displayNotFound(),
        SplitError::notIdentified(),
        SplitError::confirmationPending(),
        SplitError::unreadableEDID(),
        SplitError::overrideNotTaken("U34"),
        SplitError::overrideNotTaken("")};
    for (const auto& e : errors)
        addAlert(HalvoraPro::errorAlert(e));
    using Trouble = HalvoraPlatform::SettingsTrouble;
    for (const auto kind :
         {Trouble::Kind::notRestored, Trouble::Kind::savingOff, Trouble::Kind::saveFailed}) {
        addAlert(HalvoraPro::settingsTroubleAlert(
            {kind, "/tmp/displays.json", "why", Trouble::Reason::other}, "why"));
        add(HalvoraPro::settingsTroubleMenuTitle(kind));
    }
    addAlert(HalvoraPro::settingsInUseAlert("/tmp"));
    for (const auto reason : {Trouble::Reason::folder, Trouble::Reason::notRegular, Trouble::Reason::tooLarge,
                              Trouble::Reason::inUse})
        add(HalvoraPro::settingsTroubleReason(
            {Trouble::Kind::notRestored, "/tmp/displays.json", "why", reason, 8u << 20}));

    addPanel(HalvoraPro::ConfirmationPanel::content(7.5, 15));
    addPanel(HalvoraPro::SwitchPromptPanel::content(HalvoraCore::ModeChoice::split, {1720, 1440}));
    addPanel(HalvoraPro::SwitchPromptPanel::content(HalvoraCore::ModeChoice::full, {3440, 1440}));

    const std::optional<EDIDKit::Resolution> split{EDIDKit::Resolution{1720, 1440}};
    std::vector<Step> steps = {Step::confirming(PBPBehavior::latchedAtPlug),
                               Step::reverted(PBPBehavior::latchedAtPlug), Step::replugGuidance(),
                               Step::displayUnavailable(), Step::togglePBP()};
    for (auto kind :
         {EDIDKit::NativeResolutionGuess::Kind::full, EDIDKit::NativeResolutionGuess::Kind::split,
          EDIDKit::NativeResolutionGuess::Kind::uncertain})
        steps.push_back(Step::chooseNative({kind, {{3440, 1440}}}));
    for (auto b : {PBPBehavior::switchesOnToggle, PBPBehavior::latchedAtPlug,
                   PBPBehavior::fixedMissingSplit, PBPBehavior::fixedWithSplit})
        steps.push_back(Step::finished(b));
    for (const auto& step : steps) {
        const auto c = HalvoraPro::IdentificationWindow::content(step, "UW34", split);
        add(c.windowTitle);
        add(c.heading);
        for (const auto& r : c.rows)
            add(r);
        for (const auto& r : c.radios)
            add(r.label);
        add(c.primary.title);
        if (c.secondary) add(c.secondary->title);
    }

    const auto& table = LocalizedStrings::english();
    std::set<std::string> used;
    for (const auto& text : produced) {
        used.insert(text.key);
        const auto format = table.lookup(text.key);
        ASSERT_TRUE(format) << "missing from Localizable.strings: " << text.key;
        EXPECT_NO_THROW(formatText(*format, text.arguments)) << text.key;
        EXPECT_FALSE(format->empty()) << text.key;
    }
    // And the table holds nothing the application never shows.
    for (const auto& [key, value] : table.entries())
        EXPECT_TRUE(used.contains(key)) << "never shown: " << key;
}

} // namespace
