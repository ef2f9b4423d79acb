// The application put together from its platform, on the recorded machine:
// what start-up creates, where the settings live, and the fatal stop without
// a settings folder.

#include "ShellFixture.hpp"

#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraPro/SimulatedUserDefaults.hpp>
#include <TemporaryFolder.hpp>

using namespace ShellTests;
using HalvoraCore::SplitController;
using HalvoraPro::Application;
using Source = DisplayHardware::RecordedMachine::Source;

namespace {

class ApplicationTest : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder home;
    std::shared_ptr<DisplayHardware::VirtualClock> clock =
        std::make_shared<DisplayHardware::VirtualClock>();
    HalvoraPro::SimulatedMac mac = HalvoraPro::SimulatedMac::create(
        {sampleMonitor("ultrawide-34", HalvoraCore::PBPBehavior::latchedAtPlug)}, clock);
    std::shared_ptr<ScriptedShellView> view = std::make_shared<ScriptedShellView>();
    std::vector<std::string> log;

    HalvoraPro::Platform platform(std::optional<std::string> homeFolder) {
        HalvoraPro::Platform p = mac.platform();
        p.homeLookup = {[homeFolder](const char* name) -> std::optional<std::string> {
                            if (std::string(name) == "HOME") return homeFolder;
                            return std::nullopt;
                        },
                        [] { return std::optional<std::string>(); }};
        p.view = view;
        p.defaults = std::make_shared<HalvoraPro::SimulatedUserDefaults>();
        p.loginItemService = std::make_shared<HalvoraPro::SimulatedLoginItemService>();
        p.updaterDriver = std::make_shared<ScriptedUpdaterDriver>();
        p.log = [this](const std::string& line) { log.push_back(line); };
        p.localize = [](const HalvoraPro::Text& t) {
            return HalvoraPro::LocalizedStrings::english().resolve(t);
        };
        return p;
    }

    /// Keeps the ultrawide's split override in the settings file under `home`.
    void keepUltrawideSplit(const std::filesystem::path& settingsFile) {
        const EDIDKit::EDID full(EDIDKit::sampleMonitor("ultrawide-34")->full);
        HalvoraCore::DisplaySettings kept(HalvoraCore::DisplayIdentity::of(full), "Port 1",
                                          {3440, 1440});
        kept.overrideEDID = full.addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}).bytes();
        std::filesystem::create_directories(settingsFile.parent_path());
        TestSupport::writeFile(settingsFile, HalvoraCore::encodeSettingsList({kept}).dump(2));
    }
};

} // namespace

TEST_F(ApplicationTest, TheSettingsLiveInTheHalvoraProFolderOfTheUsersDataFolder) {
    const auto app =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    EXPECT_EQ(app->store()->url(),
              HalvoraPro::LiveSettingsStore::defaultURL(platform(home.path().string()).homeLookup));
    EXPECT_EQ(app->store()->url().parent_path().filename(), "Halvora Pro");
    EXPECT_EQ(app->store()->url().filename(), "displays.json");
}

TEST_F(ApplicationTest, AStartedApplicationPutsTheKeptOverrideBackAndItsMenuWorks) {
    keepUltrawideSplit(
        HalvoraPro::LiveSettingsStore::defaultURL(platform(home.path().string()).homeLookup));
    const auto again =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    clock->advance(4);
    EXPECT_EQ(mac.machine->port("ultrawide-34").source, Source::override);
    const auto menu = again->menu()->buildMenu();
    ASSERT_FALSE(menu.empty());
    EXPECT_EQ(menu.front().title.verbatim, "Halvora UW34");
    EXPECT_EQ(menu.back().title.key, "menu.quit");
    // Quitting goes through the menu's rule: the factory EDID comes back.
    again->menu()->quit();
    EXPECT_TRUE(view->terminated);
    EXPECT_EQ(mac.machine->port("ultrawide-34").source, Source::factoryFull);
}

TEST_F(ApplicationTest, ASafeStartReachesTheController) {
    keepUltrawideSplit(
        HalvoraPro::LiveSettingsStore::defaultURL(platform(home.path().string()).homeLookup));
    const auto app =
        Application::start(platform(home.path().string()), SplitController::Start::safe);
    clock->advance(10);
    EXPECT_TRUE(app->controller()->isSafeStart());
    EXPECT_EQ(mac.machine->port("ultrawide-34").source, Source::factoryFull);
}

TEST_F(ApplicationTest, AConflictingToolRunningAtStartUpIsAlertedAbout) {
    mac.machine->setTool(HalvoraCore::ConflictingTool::betterDisplay, true);
    const auto app =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    clock->advance(1);
    ASSERT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(view->alerts.front().alert.message.key, "conflict.betterDisplay.body");
}

TEST_F(ApplicationTest, WithoutAHomeFolderThereIsNoSettingsFolderAndStartThrows) {
    EXPECT_THROW(Application::start(platform(std::nullopt), SplitController::Start::normal),
                 HalvoraPro::NoSettingsFolder);
}

TEST_F(ApplicationTest, WithoutAHomeFolderStartingStopsTheProcessWithTheReason) {
    EXPECT_DEATH(Application::startOrStop(platform(std::nullopt), SplitController::Start::normal),
                 "there is no Application Support folder");
}

TEST_F(ApplicationTest, ASecondCopyOnTheSameSettingsFolderDoesNotStart) {
    const auto first =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    EXPECT_THROW(Application::start(platform(home.path().string()), SplitController::Start::normal),
                 HalvoraPro::SettingsFolderInUse);
    EXPECT_TRUE(first->store()->isSaving()) << "the first copy goes on as before";
}

TEST_F(ApplicationTest, ASecondCopySaysSoAndExits) {
    const auto first =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    // Forked where it stands, the child meets the folder its parent holds.
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(
        Application::startOrStop(platform(home.path().string()), SplitController::Start::normal),
        ::testing::ExitedWithCode(0),
        "another copy of Halvora Pro is using this folder; this copy quits");
}

TEST_F(ApplicationTest, ASettingsPathThatIsAFolderStartsWithNothingRestoredSavingOffAndOneAlert) {
    const std::filesystem::path folder = home / "displays.json";
    std::filesystem::create_directories(folder / "inside");
    auto p = platform(home.path().string());
    p.settingsFile = folder;
    const auto app = Application::start(std::move(p), SplitController::Start::normal);
    clock->advance(5);
    ASSERT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(view->alerts.front().alert.title.key, "settings.notRestored.title");
    EXPECT_EQ(view->alerts.front().alert.message.arguments.front(),
              HalvoraPro::TextArgument(folder.string()));
    EXPECT_EQ(app->menu()->buildMenu().front().title.key, "settings.menu.notRestored");
    EXPECT_FALSE(app->store()->isSaving());
    EXPECT_TRUE(std::filesystem::is_directory(folder / "inside"));
}

TEST(ApplicationStart, TheOptionKeyHeldAtLaunchMakesASafeStart) {
    EXPECT_EQ(Application::startFor(true), SplitController::Start::safe);
    EXPECT_EQ(Application::startFor(false), SplitController::Start::normal);
}
