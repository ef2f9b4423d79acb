// The application put together from its platform, on the recorded machine:
// what start-up creates, where the settings live, and the fatal stop without
// a settings folder.

#include "ShellFixture.hpp"

#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraSimulation/SimulatedUserDefaults.hpp>
#include <TemporaryFolder.hpp>

using namespace ShellTests;
using HalvoraCore::SplitController;
using HalvoraPro::Application;
using Source = HalvoraSimulation::RecordedMachine::Source;

namespace {

class ApplicationTest : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder home;
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>();
    HalvoraSimulation::SimulatedMac mac = HalvoraSimulation::SimulatedMac::create(
        {sampleMonitor("ultrawide-34", HalvoraCore::PBPBehavior::latchedAtPlug)}, clock);
    std::shared_ptr<ScriptedShellView> view = std::make_shared<ScriptedShellView>();
    std::vector<std::string> log;
    std::shared_ptr<HalvoraSimulation::SimulatedUserDefaults> defaults =
        std::make_shared<HalvoraSimulation::SimulatedUserDefaults>();

    HalvoraPro::Platform platform(std::optional<std::string> homeFolder) {
        HalvoraPro::Platform p = mac.platform();
        p.homeLookup = {[homeFolder](const char* name) -> std::optional<std::string> {
                            if (std::string(name) == "HOME") return homeFolder;
                            return std::nullopt;
                        },
                        [] { return std::optional<std::string>(); }};
        p.view = view;
        p.defaults = defaults;
        p.loginItemService = std::make_shared<HalvoraSimulation::SimulatedLoginItemService>();
        p.startUpdaterDriver = [] { return std::make_shared<ScriptedUpdaterDriver>(); };
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
              HalvoraPlatform::LiveSettingsStore::defaultURL(platform(home.path().string()).homeLookup));
    EXPECT_EQ(app->store()->url().parent_path().filename(), "Halvora Pro");
    EXPECT_EQ(app->store()->url().filename(), "displays.json");
}

TEST_F(ApplicationTest, AStartedApplicationPutsTheKeptOverrideBackAndItsMenuWorks) {
    keepUltrawideSplit(
        HalvoraPlatform::LiveSettingsStore::defaultURL(platform(home.path().string()).homeLookup));
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
        HalvoraPlatform::LiveSettingsStore::defaultURL(platform(home.path().string()).homeLookup));
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
                 HalvoraPlatform::NoSettingsFolder);
}

TEST_F(ApplicationTest, WithoutAHomeFolderStartingStopsTheProcessWithTheReason) {
    EXPECT_DEATH(Application::startOrStop(platform(std::nullopt), SplitController::Start::normal),
                 "there is no Application Support folder");
}

TEST_F(ApplicationTest, ASecondCopyOnTheSameSettingsFolderDoesNotStart) {
    const auto first =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    EXPECT_THROW(Application::start(platform(home.path().string()), SplitController::Start::normal),
                 HalvoraPlatform::SettingsFolderInUse);
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

// --- start-up order and lifetime ----------------------------------------------

TEST_F(ApplicationTest, TheUpdateFrameworkStartsOnlyOnceTheSchedulerAndTheControllerRun) {
    auto p = platform(home.path().string());
    bool started = false;
    const auto tasksBefore = clock->pendingCount();
    p.startUpdaterDriver = [&] {
        started = true;
        // The controller has handled launch: its restore pass is set on the
        // scheduler, and its first conflict check waits on the background queue.
        EXPECT_GE(clock->pendingCount(), tasksBefore + 2);
        // The menu (which the framework's window could cover) does not exist yet.
        EXPECT_TRUE(view->calls.empty());
        return std::make_shared<ScriptedUpdaterDriver>();
    };
    const auto app = Application::start(std::move(p), SplitController::Start::normal);
    EXPECT_TRUE(started);
    EXPECT_TRUE(app->updater()->isAvailable());
}

TEST_F(ApplicationTest, WithoutAnUpdateFrameworkUpdatesAreOff) {
    auto p = platform(home.path().string());
    p.startUpdaterDriver = nullptr;
    const auto app = Application::start(std::move(p), SplitController::Start::normal);
    EXPECT_FALSE(app->updater()->isAvailable());
}

TEST_F(ApplicationTest, AConflictCheckThatEndsAfterTheApplicationIsGoneDoesNothing) {
    auto app = Application::start(platform(home.path().string()), SplitController::Start::normal);
    app->menu()->buildMenu(); // asks for a check in the background
    app.reset();
    EXPECT_NO_THROW(clock->advance(5));
}

// --- the exception barrier --------------------------------------------------

TEST_F(ApplicationTest, AnExceptionThatReachesASystemEntryIsLoggedAndShownAndTheApplicationGoesOn) {
    const auto app =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    clock->advance(1);
    try {
        throw std::runtime_error("boom");
    } catch (...) {
        app->exceptionEscaped("a timer");
    }
    EXPECT_NE(std::find(log.begin(), log.end(), "Halvora Pro: a timer failed: boom"), log.end());
    ASSERT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(view->alerts.front().alert.title.key, "error.title");
    EXPECT_FALSE(app->menu()->buildMenu().empty());
}

// --- the override service's label ---------------------------------------------

TEST_F(ApplicationTest, TheOverrideServiceIsLookedForUnderTheBuildsLabelByDefault) {
    mac.machine->setTool(HalvoraCore::ConflictingTool::edidOverrideService, true);
    const auto app =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    clock->advance(1);
    EXPECT_EQ(app->overrideServiceLabel(), HalvoraSimulation::RecordedMachine::overrideServiceLabel);
    EXPECT_TRUE(
        app->controller()->conflicts().contains(HalvoraCore::ConflictingTool::edidOverrideService));
}

TEST_F(ApplicationTest, TheUserDefaultNamesTheLabelTheServiceIsFoundUnder) {
    mac.machine->setTool(HalvoraCore::ConflictingTool::edidOverrideService, true);
    auto p = platform(home.path().string());
    p.overrideServiceLabel = "com.example.not-the-one-running";
    defaults->setString(HalvoraPro::UserDefaults::edidOverrideServiceLabel,
                        HalvoraSimulation::RecordedMachine::overrideServiceLabel);
    const auto app = Application::start(std::move(p), SplitController::Start::normal);
    clock->advance(1);
    EXPECT_EQ(app->overrideServiceLabel(), HalvoraSimulation::RecordedMachine::overrideServiceLabel);
    EXPECT_TRUE(
        app->controller()->conflicts().contains(HalvoraCore::ConflictingTool::edidOverrideService));
}

TEST_F(ApplicationTest, AUserDefaultNamingAnotherLabelLeavesTheRunningServiceUnseen) {
    mac.machine->setTool(HalvoraCore::ConflictingTool::edidOverrideService, true);
    defaults->setString(HalvoraPro::UserDefaults::edidOverrideServiceLabel,
                        "org.someone.other-agent");
    const auto app =
        Application::start(platform(home.path().string()), SplitController::Start::normal);
    clock->advance(1);
    EXPECT_EQ(app->overrideServiceLabel(), "org.someone.other-agent");
    EXPECT_FALSE(
        app->controller()->conflicts().contains(HalvoraCore::ConflictingTool::edidOverrideService));
}

// --- timers ---------------------------------------------------------------------

namespace {

/// The application on a machine of `monitors`, with `saved` in its settings file.
class ApplicationTimersTest : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder home;
    std::shared_ptr<HalvoraSimulation::VirtualClock> clock =
        std::make_shared<HalvoraSimulation::VirtualClock>();
    std::shared_ptr<ScriptedShellView> view = std::make_shared<ScriptedShellView>();
    std::optional<HalvoraSimulation::SimulatedMac> mac;
    std::unique_ptr<Application> app;

    void start(std::vector<HalvoraSimulation::RecordedMonitor> monitors,
               bool keptUltrawideSplit = false) {
        mac = HalvoraSimulation::SimulatedMac::create(std::move(monitors), clock);
        HalvoraPro::Platform p = mac->platform();
        p.settingsFile = home.path() / "displays.json";
        if (keptUltrawideSplit) {
            const EDIDKit::EDID full(EDIDKit::sampleMonitor("ultrawide-34")->full);
            HalvoraCore::DisplaySettings kept(HalvoraCore::DisplayIdentity::of(full), "Port 1",
                                              {3440, 1440});
            kept.behavior = HalvoraCore::PBPBehavior::latchedAtPlug;
            kept.overrideEDID =
                full.addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}).bytes();
            TestSupport::writeFile(*p.settingsFile,
                                   HalvoraCore::encodeSettingsList({kept}).dump(2));
        }
        p.view = view;
        p.defaults = std::make_shared<HalvoraSimulation::SimulatedUserDefaults>();
        p.loginItemService = std::make_shared<HalvoraSimulation::SimulatedLoginItemService>();
        p.startUpdaterDriver = [] { return std::make_shared<ScriptedUpdaterDriver>(); };
        p.log = [](const std::string&) {};
        p.localize = [](const HalvoraPro::Text& t) {
            return HalvoraPro::LocalizedStrings::english().resolve(t);
        };
        app = Application::start(std::move(p), SplitController::Start::normal);
        clock->advance(10); // launch settles: the restore pass, the first conflict check
    }
    std::size_t firingsOverAMinute() {
        const auto before = mac->runLoop->timerFirings();
        clock->advance(60);
        return mac->runLoop->timerFirings() - before;
    }
};

} // namespace

TEST_F(ApplicationTimersTest, WithNoExternalDisplayNoTimerIsSet) {
    start({});
    EXPECT_TRUE(mac->runLoop->timers().empty());
    EXPECT_EQ(firingsOverAMinute(), 0u);
    EXPECT_FALSE(app->displaySystem()->isPollingInterrupts());
}

TEST_F(ApplicationTimersTest, AnUnidentifiedMonitorSetsNoTimer) {
    start({sampleMonitor("ultrawide-34", HalvoraCore::PBPBehavior::latchedAtPlug)});
    EXPECT_TRUE(mac->runLoop->timers().empty());
    EXPECT_EQ(firingsOverAMinute(), 0u);
}

TEST_F(ApplicationTimersTest,
       ALatchingMonitorWithItsSplitIsPolledFourTimesASecondWithATenthsTolerance) {
    start({sampleMonitor("ultrawide-34", HalvoraCore::PBPBehavior::latchedAtPlug)}, true);
    ASSERT_EQ(mac->machine->port("ultrawide-34").source, Source::override);
    EXPECT_EQ(mac->runLoop->timers(),
              (std::vector<HalvoraSimulation::VirtualRunLoop::TimerSetting>{{0.25, true, 0.025}}));
    EXPECT_EQ(firingsOverAMinute(), 240u);
}

TEST_F(ApplicationTimersTest, UnpluggingTheLastPolledMonitorStopsThePoll) {
    start({sampleMonitor("ultrawide-34", HalvoraCore::PBPBehavior::latchedAtPlug)}, true);
    ASSERT_TRUE(app->displaySystem()->isPollingInterrupts());
    mac->machine->unplug("ultrawide-34");
    clock->advance(10);
    EXPECT_FALSE(app->displaySystem()->isPollingInterrupts());
    EXPECT_TRUE(mac->runLoop->timers().empty());
    EXPECT_EQ(firingsOverAMinute(), 0u);
}

TEST_F(ApplicationTimersTest, AMonitorThatSwitchesItsEDIDByItselfNeedsNoPoll) {
    start({sampleMonitor("superwide-49", HalvoraCore::PBPBehavior::switchesOnToggle)});
    EXPECT_TRUE(mac->runLoop->timers().empty());
}

TEST_F(ApplicationTimersTest, WhilePBPIsObservedThePollRunsAndItStopsWhenTheWindowCloses) {
    start({sampleMonitor("ultrawide-34", HalvoraCore::PBPBehavior::latchedAtPlug)});
    app->menu()->identify(*mac->machine->port("ultrawide-34").id);
    app->menu()->identification()->confirm();
    ASSERT_TRUE(app->controller()->isObservingPBP());
    EXPECT_TRUE(app->displaySystem()->isPollingInterrupts());
    app->menu()->identification()->close();
    EXPECT_FALSE(app->displaySystem()->isPollingInterrupts());
    clock->advance(10);
    EXPECT_EQ(firingsOverAMinute(), 0u);
}
