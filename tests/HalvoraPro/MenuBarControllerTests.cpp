#include "ShellFixture.hpp"

#include <gmock/gmock.h>

using namespace ShellTests;
using HalvoraCore::ConflictingTool;
using HalvoraPro::MenuItem;
using HalvoraPro::UserDefaults;
using ::testing::ElementsAre;

namespace {

class MenuTest : public ShellTest {};

TEST_F(MenuTest, AnUnidentifiedDisplayShowsOnlyItsTitleAndIdentify) {
    start();
    const auto menu = shell->buildMenu();
    EXPECT_THAT(keys(menu), ElementsAre("Halvora UW34", "menu.identify", "-", "menu.restoreFactory",
                                        "-", "menu.openAtLogin", "menu.keepOnQuit",
                                        "menu.checkForUpdates", "menu.quit"));
    EXPECT_EQ(menu[0].kind, MenuItem::Kind::title);
    EXPECT_FALSE(menu[0].enabled);
    EXPECT_TRUE(item(menu, "menu.identify").enabled);
}

TEST_F(MenuTest, WithNoExternalDisplaysTheMenuSaysSoBetweenTheConflictRowsAndRestoreFactory) {
    start({});
    machine->setTool(ConflictingTool::betterDisplay, true);
    const auto opened = shell->buildMenu();
    EXPECT_EQ(keys(opened).front(), "menu.noDisplays")
        << "the menu opens before the check has answered";
    clock->advance(0); // the check answers: the open menu shows the conflict
    ASSERT_EQ(view->updatedMenus.size(), 1u);
    const auto& menu = view->updatedMenus.back();
    EXPECT_THAT(keys(menu), ElementsAre("conflict.menu.betterDisplay", "-", "menu.noDisplays", "-",
                                        "menu.restoreFactory", "-", "menu.openAtLogin",
                                        "menu.keepOnQuit", "menu.checkForUpdates", "menu.quit"));
    EXPECT_FALSE(item(menu, "menu.noDisplays").enabled);
}

TEST_F(MenuTest, ADisplayWithoutANameIsCalledUnnamed) {
    auto monitor = sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug);
    monitor.full = EDIDKit::EDID(monitor.full).withoutProductName().bytes();
    start({monitor});
    const auto menu = shell->buildMenu();
    EXPECT_EQ(menu[0].title.key, "menu.unnamedDisplay");
    shell->identify(idOf("ultrawide-34"));
    EXPECT_EQ(view->identification->heading,
              HalvoraPro::Text::localized("identify.heading", {std::string("Unnamed display")}));
}

TEST_F(MenuTest, AMonitorWhoseBehaviourIsUnknownShowsFullAndSplitRatherThanApplyHalves) {
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug)}, {ultrawideSettings()});
    const auto menu = shell->buildMenu();
    EXPECT_THAT(keys(menu),
                ElementsAre("Halvora UW34", "menu.full", "menu.split", "menu.reidentify", "-",
                            "menu.restoreFactory", "-", "menu.openAtLogin", "menu.keepOnQuit",
                            "menu.checkForUpdates", "menu.quit"));
    EXPECT_EQ(item(menu, "menu.full").title.arguments,
              std::vector<HalvoraPro::TextArgument>{std::string("3440×1440")});
    EXPECT_EQ(item(menu, "menu.split").title.arguments,
              std::vector<HalvoraPro::TextArgument>{std::string("1720×1440")});
    EXPECT_TRUE(item(menu, "menu.full").checked);
    EXPECT_FALSE(item(menu, "menu.split").checked);
}

TEST_F(MenuTest, AKnownNonSwitchingMonitorWithoutTheSplitOffersToApplyHalves) {
    const auto saved = ultrawideSettings(PBPBehavior::latchedAtPlug);
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug)}, {saved});
    const auto menu = shell->buildMenu();
    EXPECT_THAT(keys(menu), ElementsAre("Halvora UW34", "menu.applyHalves", "menu.reidentify", "-",
                                        "menu.restoreFactory", "-", "menu.openAtLogin",
                                        "menu.keepOnQuit", "menu.checkForUpdates", "menu.quit"));
    EXPECT_EQ(item(menu, "menu.applyHalves").title.arguments,
              std::vector<HalvoraPro::TextArgument>{std::string("1720×1440")});
}

TEST_F(MenuTest, ASwitchingMonitorShowsFullAndSplitEvenWithoutTheSplitApplied) {
    const auto saved = ultrawideSettings(PBPBehavior::switchesOnToggle);
    start({sampleMonitor("ultrawide-34", PBPBehavior::switchesOnToggle)}, {saved});
    EXPECT_THAT(keys(shell->buildMenu()),
                ElementsAre("Halvora UW34", "menu.full", "menu.split", "menu.reidentify", "-",
                            "menu.restoreFactory", "-", "menu.openAtLogin", "menu.keepOnQuit",
                            "menu.checkForUpdates", "menu.quit"));
}

TEST_F(MenuTest, WhileAConfirmationIsPendingEveryDisplayItemAndRestoreFactoryAreDisabled) {
    const auto saved = ultrawideSettings(PBPBehavior::latchedAtPlug);
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug),
           sampleMonitor("superwide-49", PBPBehavior::switchesOnToggle)},
          {saved});
    item(shell->buildMenu(), "menu.applyHalves").handler();
    ASSERT_TRUE(controller->pendingConfirmation());
    const auto menu = shell->buildMenu();
    for (const auto& i : menu) {
        if (i.kind != MenuItem::Kind::action) continue;
        const bool alwaysOn = i.title.key == "menu.openAtLogin" ||
                              i.title.key == "menu.keepOnQuit" || i.title.key == "menu.quit" ||
                              i.title.key == "menu.checkForUpdates";
        EXPECT_EQ(i.enabled, alwaysOn) << i.title.key;
    }
}

TEST_F(MenuTest, WhileAPBPObservationRunsRestoreFactoryIsDisabledButDisplayItemsAreNot) {
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug),
           sampleMonitor("superwide-49", PBPBehavior::switchesOnToggle)});
    shell->identify(idOf("ultrawide-34"));
    shell->identification()->confirm();
    ASSERT_TRUE(controller->isObservingPBP());
    const auto menu = shell->buildMenu();
    EXPECT_FALSE(item(menu, "menu.restoreFactory").enabled);
    EXPECT_TRUE(item(menu, "menu.identify").enabled);   // the superwide, not yet identified
    EXPECT_TRUE(item(menu, "menu.reidentify").enabled); // the ultrawide being observed
}

TEST_F(MenuTest, OnlyTheQuitItemHasAKeyEquivalent) {
    start();
    for (const auto& i : shell->buildMenu())
        EXPECT_EQ(i.keyEquivalent, i.title.key == "menu.quit" ? "q" : "") << i.title.key;
}

TEST_F(MenuTest, ApplyingTheSplitPresentsTheConfirmationPanel) {
    const auto saved = ultrawideSettings(PBPBehavior::fixedMissingSplit);
    start({sampleMonitor("ultrawide-34", PBPBehavior::fixedMissingSplit)}, {saved});
    item(shell->buildMenu(), "menu.applyHalves").handler();
    ASSERT_NE(shell->confirmationPanel(), nullptr);
    EXPECT_TRUE(view->orderedIn[HalvoraPro::PanelKind::confirmation]);
    EXPECT_TRUE(shell->confirmationPanel()->isTimerRunning());
    EXPECT_EQ(view->rendered[HalvoraPro::PanelKind::confirmation].countdown,
              HalvoraPro::Text::localized("confirm.countdown", {15LL}));
}

TEST_F(MenuTest, AFailedSwitchShowsTheErrorAlertAndNothingElse) {
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug)}, {ultrawideSettings()});
    // The factory EDID has no 1720×1440 timing, so the display cannot switch to it.
    item(shell->buildMenu(), "menu.split").handler();
    ASSERT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(view->alerts.front().alert.title, HalvoraPro::Text::localized("error.title"));
    EXPECT_EQ(view->alerts.front().alert.message,
              HalvoraPro::Text::localized("error.modeUnavailable", {std::string("1720×1440")}));
    EXPECT_EQ(machine->port("ultrawide-34").mode, (HalvoraCore::DisplayMode{3440, 1440, 60}));
}

TEST_F(MenuTest, AnErrorReportedByTheControllerLaterEndsInTheErrorAlert) {
    start();
    controller->onError(HalvoraCore::SplitError::displayNotFound());
    ASSERT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(view->alerts.front().alert.message,
              HalvoraPro::Text::localized("error.displayNotFound"));
    EXPECT_GE(view->activations, 1);
}

TEST_F(MenuTest, RestoreFactoryGivesEveryDisplayItsOwnEDIDBack) {
    start();
    identifyAndKeepUltrawide();
    ASSERT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::override);
    item(shell->buildMenu(), "menu.restoreFactory").handler();
    clock->advance(0);
    EXPECT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::factoryFull);
    EXPECT_TRUE(view->alerts.empty());
}

// --- conflicts ---------------------------------------------------------------

TEST_F(MenuTest, BothToolsPresentAtStartUpGiveTwoAlertsTheOverrideServiceFirstAndOnlyOnce) {
    toolsAtStart = {ConflictingTool::betterDisplay, ConflictingTool::edidOverrideService};
    build();
    EXPECT_TRUE(view->alerts.empty()); // alerts come on a later turn of the main loop
    clock->advance(0);
    ASSERT_EQ(view->alerts.size(), 2u);
    EXPECT_EQ(view->alerts[0].alert.message.key, "conflict.edidOverride.body");
    EXPECT_THAT(view->alerts[0].alert.buttons,
                ElementsAre(HalvoraPro::Text::localized("conflict.takeOver"),
                            HalvoraPro::Text::localized("conflict.later")));
    EXPECT_EQ(view->alerts[1].alert.message.key, "conflict.betterDisplay.body");
    EXPECT_THAT(view->alerts[1].alert.buttons,
                ElementsAre(HalvoraPro::Text::localized("conflict.ok")));

    const auto menu = shell->buildMenu();
    EXPECT_EQ(menu[0].title.key, "conflict.menu.edidOverride");
    EXPECT_EQ(menu[1].title.key, "conflict.menu.betterDisplay");
    EXPECT_EQ(menu[2].kind, MenuItem::Kind::separator);
    clock->advance(0);
    EXPECT_EQ(view->alerts.size(), 2u);
}

TEST_F(MenuTest, AToolThatGoesAndComesBackIsNotAlertedAboutAgain) {
    start();
    machine->setTool(ConflictingTool::betterDisplay, true);
    shell->buildMenu();
    clock->advance(0);
    ASSERT_EQ(view->alerts.size(), 1u);
    view->answer(0);
    machine->setTool(ConflictingTool::betterDisplay, false);
    shell->buildMenu();
    machine->setTool(ConflictingTool::betterDisplay, true);
    shell->buildMenu();
    clock->advance(0);
    EXPECT_TRUE(view->alerts.empty());
    EXPECT_TRUE(shell->alertedConflicts().contains(ConflictingTool::betterDisplay));
}

TEST_F(MenuTest, TakeOverIsTheOverrideAlertsFirstButtonAndStopsTheService) {
    start();
    machine->setTool(ConflictingTool::edidOverrideService, true);
    shell->buildMenu();
    clock->advance(0);
    view->answer(0);
    EXPECT_FALSE(machine->hasTool(ConflictingTool::edidOverrideService));
}

TEST_F(MenuTest, LaterLeavesTheServiceRunning) {
    start();
    machine->setTool(ConflictingTool::edidOverrideService, true);
    shell->buildMenu();
    clock->advance(0);
    view->answer(1);
    EXPECT_TRUE(machine->hasTool(ConflictingTool::edidOverrideService));
}

TEST_F(MenuTest, TheConflictRowShowsTheAlertAgainAndBetterDisplayIsNeverTakenOver) {
    start();
    machine->setTool(ConflictingTool::betterDisplay, true);
    shell->buildMenu();
    clock->advance(0);
    view->answer(0);
    ASSERT_FALSE(view->updatedMenus.empty());
    view->updatedMenus.back()[0].handler();
    ASSERT_EQ(view->alerts.size(), 1u);
    view->answer(0);
    EXPECT_TRUE(machine->hasTool(ConflictingTool::betterDisplay));
}

TEST_F(MenuTest, AConflictAlertForAToolThatHasGoneIsNotShown) {
    start();
    machine->setTool(ConflictingTool::betterDisplay, true);
    shell->buildMenu();
    machine->setTool(ConflictingTool::betterDisplay, false);
    controller->checkConflicts();
    clock->advance(0);
    EXPECT_TRUE(view->alerts.empty());
}

// --- login item, keep on quit, updates, quit -------------------------------

TEST_F(MenuTest, OpenAtLoginTogglesTheLoginItemAndShowsItsState) {
    start();
    EXPECT_FALSE(item(shell->buildMenu(), "menu.openAtLogin").checked);
    item(shell->buildMenu(), "menu.openAtLogin").handler();
    EXPECT_TRUE(item(shell->buildMenu(), "menu.openAtLogin").checked);
    item(shell->buildMenu(), "menu.openAtLogin").handler();
    EXPECT_FALSE(item(shell->buildMenu(), "menu.openAtLogin").checked);
}

TEST_F(MenuTest, OpenAtLoginAwaitingApprovalIsCheckedAndOpensSystemSettings) {
    start();
    loginService->setStatus(HalvoraPro::LoginItemService::Status::requiresApproval);
    const auto openAtLogin = item(shell->buildMenu(), "menu.openAtLogin");
    EXPECT_TRUE(openAtLogin.checked);
    openAtLogin.handler();
    EXPECT_EQ(loginService->settingsOpened, 1);
    EXPECT_EQ(loginService->status(), HalvoraPro::LoginItemService::Status::requiresApproval);
}

TEST_F(MenuTest, KeepOnQuitWritesTheOppositeOfWhatTheMenuShowed) {
    start();
    const auto first = item(shell->buildMenu(), "menu.keepOnQuit");
    EXPECT_FALSE(first.checked);
    first.handler();
    EXPECT_EQ(defaults->boolValue(UserDefaults::keepSettingsOnQuit), true);
    const auto second = item(shell->buildMenu(), "menu.keepOnQuit");
    EXPECT_TRUE(second.checked);
    second.handler();
    EXPECT_EQ(defaults->boolValue(UserDefaults::keepSettingsOnQuit), false);
}

TEST_F(MenuTest, AnUpdateFoundOutOfFocusShowsInTheMenuUntilTheUserHasLookedAtIt) {
    start();
    EXPECT_TRUE(updater->supportsGentleScheduledUpdateReminders());
    const bool shownByFramework = updater->shouldHandleShowingScheduledUpdate(false);
    EXPECT_FALSE(shownByFramework);
    updater->willHandleShowingUpdate(shownByFramework, "1.4");
    const auto updates = item(shell->buildMenu(), "menu.updateAvailable");
    EXPECT_EQ(updates.title.arguments, std::vector<HalvoraPro::TextArgument>{std::string("1.4")});
    updates.handler();
    EXPECT_EQ(updaterDriver->checks, 1);
    updater->didReceiveUserAttention();
    EXPECT_NO_THROW(item(shell->buildMenu(), "menu.checkForUpdates"));
}

TEST_F(MenuTest, TheUpdatesItemIsEnabledExactlyWhenTheUpdaterCanCheck) {
    start();
    EXPECT_TRUE(item(shell->buildMenu(), "menu.checkForUpdates").enabled);
    updaterDriver->canCheck = false;
    EXPECT_FALSE(item(shell->buildMenu(), "menu.checkForUpdates").enabled);
}

TEST_F(MenuTest, QuittingWithKeepOnQuitAbsentGivesTheFactoryEDIDsBackBeforeTerminating) {
    start();
    identifyAndKeepUltrawide();
    ASSERT_FALSE(defaults->boolValue(UserDefaults::keepSettingsOnQuit));
    item(shell->buildMenu(), "menu.quit").handler();
    EXPECT_TRUE(view->terminated);
    EXPECT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::factoryFull);
    EXPECT_FALSE(store->stored.empty()); // the settings stay for the next launch
}

TEST_F(MenuTest, QuittingWithKeepOnQuitAbsentGivesEveryFactoryEDIDBackBeforeTheApplicationIsToldToTerminate) {
    using Source = HalvoraSimulation::RecordedMachine::Source;
    auto superwide = ultrawideSettings();
    superwide.identity = HalvoraCore::DisplayIdentity::of(EDIDKit::EDID(EDIDKit::sampleMonitor("superwide-49")->full));
    superwide.native = {5120, 1440};
    superwide.behavior = PBPBehavior::latchedAtPlug;
    // Its own EDID lists the split already: the override kept for it is one
    // that declares another screen size.
    const EDIDKit::EDID superwideEDID(EDIDKit::sampleMonitor("superwide-49")->full);
    superwide.overrideEDID =
        superwideEDID
            .withScreenSizeCM(static_cast<std::uint8_t>(superwideEDID.screenWidthCM() + 1),
                              static_cast<std::uint8_t>(superwideEDID.screenHeightCM()))
            .bytes();
    auto ultrawide = ultrawideSettings(PBPBehavior::latchedAtPlug);
    ultrawide.overrideEDID = EDIDKit::EDID(EDIDKit::sampleMonitor("ultrawide-34")->full)
                                 .addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440})
                                 .bytes();
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug),
           sampleMonitor("superwide-49", PBPBehavior::latchedAtPlug)},
          {ultrawide, superwide});
    clock->advance(10);
    ASSERT_EQ(machine->port("ultrawide-34").source, Source::override);
    ASSERT_EQ(machine->port("superwide-49").source, Source::override);
    std::vector<Source> atTermination;
    view->onTerminate = [&] {
        for (const auto& port : machine->ports())
            atTermination.push_back(port.source);
    };
    item(shell->buildMenu(), "menu.quit").handler();
    EXPECT_EQ(atTermination, (std::vector<Source>{Source::factoryFull, Source::factoryFull}))
        << "both displays had their own EDID back when the application was told to terminate";
}

TEST_F(MenuTest, QuittingWithKeepOnQuitTrueLeavesEveryDisplayAsItIs) {
    start();
    identifyAndKeepUltrawide();
    defaults->setBool(UserDefaults::keepSettingsOnQuit, true);
    const auto before = machine->ports();
    item(shell->buildMenu(), "menu.quit").handler();
    EXPECT_TRUE(view->terminated);
    EXPECT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::override);
    EXPECT_EQ(machine->port("ultrawide-34").mode, before[0].mode);
}

TEST_F(MenuTest, QuittingWithKeepOnQuitTrueStillTakesBackAChangeWaitingForConfirmation) {
    start();
    defaults->setBool(UserDefaults::keepSettingsOnQuit, true);
    shell->identify(idOf("ultrawide-34"));
    shell->identification()->confirm();
    machine->setPBP("ultrawide-34", true);
    clock->advance(20);
    ASSERT_TRUE(controller->pendingConfirmation());
    ASSERT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::override);
    item(shell->buildMenu(), "menu.quit").handler();
    EXPECT_TRUE(view->terminated);
    EXPECT_NE(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::override)
        << "an unconfirmed override never outlives the application";
    EXPECT_FALSE(controller->pendingConfirmation());
}

TEST_F(MenuTest, AnOpenMenuIsUpdatedOnlyWhenTheConflictsItShowsChange) {
    start();
    shell->buildMenu();
    clock->advance(5);
    EXPECT_TRUE(view->updatedMenus.empty()) << "nothing new: the open menu stays as it is";
    shell->menuDidClose();
    machine->setTool(ConflictingTool::edidOverrideService, true);
    controller->checkConflicts(); // a restore pass or a launch asks too
    clock->advance(0);
    EXPECT_TRUE(view->updatedMenus.empty()) << "a closed menu is built afresh when it opens";
    EXPECT_EQ(keys(shell->buildMenu()).front(), "conflict.menu.edidOverride");
}

// --- identification ----------------------------------------------------------

TEST_F(MenuTest, IdentifyingAgainWhileTheWindowIsOpenBringsTheSameWindowForward) {
    start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug),
           sampleMonitor("superwide-49", PBPBehavior::switchesOnToggle)});
    shell->identify(idOf("ultrawide-34"));
    const auto window = shell->identification();
    const int activations = view->activations;
    shell->identify(idOf("superwide-49"));
    EXPECT_EQ(shell->identification(), window);
    EXPECT_GT(view->activations, activations);
    EXPECT_EQ(view->identification->heading,
              HalvoraPro::Text::localized("identify.heading", {std::string("Halvora UW34")}));
}

TEST_F(MenuTest, ClosingTheWindowForgetsItSoTheNextIdentifyOpensANewOne) {
    start();
    shell->identify(idOf("ultrawide-34"));
    const auto first = shell->identification();
    first->close();
    EXPECT_EQ(shell->identification(), nullptr);
    shell->identify(idOf("ultrawide-34"));
    EXPECT_NE(shell->identification(), first);
}

TEST_F(MenuTest, ConfirmingAResolutionTurnsTheLoginItemOnOnce) {
    start();
    shell->identify(idOf("ultrawide-34"));
    shell->identification()->confirm();
    EXPECT_TRUE(loginItem->isEnabled());
    EXPECT_EQ(defaults->boolValue(UserDefaults::loginItemDefaultApplied), true);
}

TEST_F(MenuTest, TheWizardWaitingForConfirmationPresentsThePanel) {
    start();
    shell->identify(idOf("ultrawide-34"));
    shell->identification()->confirm();
    machine->setPBP("ultrawide-34", true);
    clock->advance(20);
    EXPECT_EQ(shell->identification()->wizard().step().kind,
              HalvoraCore::IdentificationWizard::Step::Kind::confirming);
    EXPECT_TRUE(view->orderedIn[HalvoraPro::PanelKind::confirmation]);
    ASSERT_NE(shell->confirmationPanel(), nullptr);
    EXPECT_TRUE(shell->confirmationPanel()->isTimerRunning());
}

TEST_F(MenuTest, KeepingFromThePanelFadesItOutAndStopsItsTicker) {
    start();
    shell->identify(idOf("ultrawide-34"));
    shell->identification()->confirm();
    machine->setPBP("ultrawide-34", true);
    clock->advance(20);
    shell->confirmationPanel()->keep();
    EXPECT_FALSE(shell->confirmationPanel()->isTimerRunning());
    EXPECT_EQ(view->count("fadeOut confirmation"), 1u);
    view->completeFades();
    EXPECT_FALSE(view->orderedIn[HalvoraPro::PanelKind::confirmation]);
    EXPECT_EQ(shell->identification()->wizard().step().kind,
              HalvoraCore::IdentificationWizard::Step::Kind::finished);
}

} // namespace

namespace {

class SafeStartMenuTest : public ShellTest {
protected:
    /// The ultrawide's record with its split override kept.
    static HalvoraCore::DisplaySettings ultrawideKept() {
        auto saved = ultrawideSettings(HalvoraCore::PBPBehavior::latchedAtPlug);
        saved.overrideEDID = EDIDKit::EDID(EDIDKit::sampleMonitor("ultrawide-34")->full)
                                 .addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440})
                                 .bytes();
        return saved;
    }
    void SetUp() override {
        startMode = HalvoraCore::SplitController::Start::safe;
        start({sampleMonitor("ultrawide-34", PBPBehavior::latchedAtPlug)}, {ultrawideKept()});
        clock->advance(10);
    }
};

} // namespace

TEST_F(SafeStartMenuTest, TheMenuSaysTheSavedSettingsWereNotRestoredAndOffersToRestoreThem) {
    ASSERT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::factoryFull);
    const auto menu = shell->buildMenu();
    EXPECT_THAT(keys(menu), ::testing::IsSupersetOf({"menu.safeStart", "menu.resumeRestoring"}));
    EXPECT_EQ(keys(menu).front(), "menu.safeStart");
    EXPECT_EQ(item(menu, "menu.safeStart").kind, MenuItem::Kind::title);
    EXPECT_TRUE(item(menu, "menu.resumeRestoring").enabled);
}

TEST_F(SafeStartMenuTest, RestoringFromTheMenuPutsTheOverrideBackAndTheRowsGo) {
    item(shell->buildMenu(), "menu.resumeRestoring").handler();
    clock->advance(5);
    EXPECT_EQ(machine->port("ultrawide-34").source,
              HalvoraSimulation::RecordedMachine::Source::override);
    const auto menu = keys(shell->buildMenu());
    EXPECT_EQ(std::count(menu.begin(), menu.end(), "menu.safeStart"), 0);
    EXPECT_EQ(std::count(menu.begin(), menu.end(), "menu.resumeRestoring"), 0);
}

TEST_F(SafeStartMenuTest, QuittingBeforeAnyActionLeavesTheDisplaysAsTheyAre) {
    machine->setPBP("ultrawide-34", true); // nothing the user picked in the menu
    clock->advance(5);
    const auto before = machine->ports();
    item(shell->buildMenu(), "menu.quit").handler();
    EXPECT_TRUE(view->terminated);
    EXPECT_EQ(machine->port("ultrawide-34").reportedEDID, before[0].reportedEDID);
}

TEST_F(SafeStartMenuTest, AnotherActionFromTheMenuEndsTheSafeStartToo) {
    item(shell->buildMenu(), "menu.reidentify").handler();
    EXPECT_FALSE(controller->isSafeStart());
    const auto menu = keys(shell->buildMenu());
    EXPECT_EQ(std::count(menu.begin(), menu.end(), "menu.safeStart"), 0);
}

TEST_F(MenuTest, ABuildWithoutTheUpdateFrameworkSaysUpdatesAreOffInAnItemThatCannotBeChosen) {
    build();
    auto unavailable = std::make_shared<HalvoraPro::Updater>(
        std::make_shared<HalvoraPro::UnavailableUpdaterDriver>());
    shell = HalvoraPro::MenuBarController::create(
        {controller, unavailable, loginItem, defaults, clock, view,
         [](const HalvoraPro::Text& t) {
             return HalvoraPro::LocalizedStrings::english().resolve(t);
         },
         settingsStatus});
    unavailable->willHandleShowingUpdate(false, "9.9"); // nothing can find one, but even so
    const auto menu = shell->buildMenu();
    const auto& updates = item(menu, "menu.updatesUnavailable");
    EXPECT_FALSE(updates.enabled);
    const auto rows = keys(menu);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), "menu.checkForUpdates"), 0);
}

TEST_F(MenuTest, ASystemWithoutTheDisplayPortCallsSaysSoAtTheTopOfTheMenu) {
    start();
    shell->setMissingPlatformCalls({"IOAVServiceCopyEDID", "IOAVServiceSetVirtualEDIDMode"});
    const auto menu = shell->buildMenu();
    ASSERT_GE(menu.size(), 2u);
    EXPECT_EQ(menu[0].title,
              HalvoraPro::Text::localized(
                  "menu.platformCallsMissing",
                  {std::string("IOAVServiceCopyEDID, IOAVServiceSetVirtualEDIDMode")}));
    EXPECT_FALSE(menu[0].enabled);
    EXPECT_EQ(menu[1].kind, HalvoraPro::MenuItem::Kind::separator);
    EXPECT_EQ(menu.back().title.key, "menu.quit") << "the application still runs and quits";
}

TEST_F(MenuTest, ASystemWithEveryCallHasNoSuchRow) {
    start();
    for (const auto& item : shell->buildMenu())
        EXPECT_NE(item.title.key, "menu.platformCallsMissing");
}

// --- the settings file's trouble ------------------------------------------------

namespace {

HalvoraPlatform::SettingsTrouble saveFailure(const std::string& why) {
    return {HalvoraPlatform::SettingsTrouble::Kind::saveFailed, "/Users/ann/Halvora Pro/displays.json",
            why, HalvoraPlatform::SettingsTrouble::Reason::other};
}

} // namespace

TEST(SettingsTroubleWords, EachReasonTheStoreReportsIsToldInTheUsersWords) {
    using Trouble = HalvoraPlatform::SettingsTrouble;
    const auto words = [](Trouble::Reason reason, std::size_t limit = 0) {
        return HalvoraPro::settingsTroubleReason(
            {Trouble::Kind::notRestored, "/tmp/displays.json", "the system's words", reason, limit});
    };
    EXPECT_EQ(words(Trouble::Reason::folder), HalvoraPro::Text::localized("settings.reason.folder"));
    EXPECT_EQ(words(Trouble::Reason::notRegular), HalvoraPro::Text::localized("settings.reason.notRegular"));
    EXPECT_EQ(words(Trouble::Reason::tooLarge, 8u << 20),
              HalvoraPro::Text::localized("settings.reason.tooLarge", {std::string("8 MiB")}));
    EXPECT_EQ(words(Trouble::Reason::inUse), HalvoraPro::Text::localized("settings.reason.inUse"));
    EXPECT_EQ(words(Trouble::Reason::other), HalvoraPro::Text::literal("the system's words"))
        << "what the store cannot name is told in the system's own words";
}

TEST_F(MenuTest,
       AFailedSaveIsAlertedOnceWithThePathAndTheReasonAndStaysInTheMenuUntilASaveSucceeds) {
    start();
    settingsStatus->report(saveFailure("No space left on device"));
    clock->advance(0);
    ASSERT_EQ(view->alerts.size(), 1u);
    const auto& alert = view->alerts.front().alert;
    EXPECT_EQ(alert.title.key, "settings.saveFailed.title");
    EXPECT_EQ(alert.message,
              HalvoraPro::Text::localized("settings.saveFailed.body",
                                          {std::string("/Users/ann/Halvora Pro/displays.json"),
                                           std::string("No space left on device")}));
    EXPECT_EQ(keys(shell->buildMenu()).front(), "settings.menu.saveFailed");
    shell->menuDidClose();

    // Failing again, for whatever reason, is not news.
    settingsStatus->report(saveFailure("Permission denied"));
    clock->advance(0);
    EXPECT_EQ(view->alerts.size(), 1u);
    // The row brings the alert back, with the latest reason.
    item(shell->buildMenu(), "settings.menu.saveFailed").handler();
    shell->menuDidClose();
    ASSERT_EQ(view->alerts.size(), 2u);
    EXPECT_EQ(view->alerts.back().alert.message.arguments.back(),
              HalvoraPro::TextArgument("Permission denied"));

    settingsStatus->report(std::nullopt);
    const auto rows = keys(shell->buildMenu());
    shell->menuDidClose();
    EXPECT_EQ(std::count(rows.begin(), rows.end(), "settings.menu.saveFailed"), 0);
    EXPECT_NE(rows.front(), "-") << "no separator is left on top";

    // A failure after a success is told again.
    settingsStatus->report(saveFailure("Permission denied"));
    clock->advance(0);
    EXPECT_EQ(view->alerts.size(), 3u);
}

TEST_F(MenuTest, SettingsThatCouldNotBeUsedAtLaunchAreAlertedOnceAfterTheLaunch) {
    settingsStatus->report(HalvoraPlatform::SettingsTrouble{
        HalvoraPlatform::SettingsTrouble::Kind::notRestored, "/tmp/displays.json", "it is a folder",
        HalvoraPlatform::SettingsTrouble::Reason::folder});
    build();
    EXPECT_TRUE(view->alerts.empty()) << "not while the application is still starting";
    clock->advance(0);
    ASSERT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(
        view->alerts.front().alert.message,
        HalvoraPro::Text::localized("settings.notRestored.body", {std::string("/tmp/displays.json"),
                                                                  std::string("it is a folder")}));
    clock->advance(60);
    EXPECT_EQ(view->alerts.size(), 1u);
    EXPECT_EQ(keys(shell->buildMenu()).front(), "settings.menu.notRestored");
}

TEST_F(MenuTest, TheOpenMenuShowsASaveThatFailsWhileItIsOpen) {
    start();
    shell->buildMenu();
    settingsStatus->report(saveFailure("Read-only file system"));
    ASSERT_EQ(view->updatedMenus.size(), 1u);
    EXPECT_EQ(keys(view->updatedMenus.back()).front(), "settings.menu.saveFailed");
}
