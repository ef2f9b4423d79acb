// The application's self-test, run here over a scripted screen in place of
// AppKit: the script runs on the real shell, each gesture goes through the
// gestures given, and after every command the screen must show exactly the
// windows the application shows.

#include "CliIO.hpp"
#include "SelfTest.hpp"

#include <MirroredShellView.hpp>
#include <ScriptedScreen.hpp>
#include <ScriptedShellView.hpp>
#include <TemporaryFolder.hpp>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace Halvora;
using HalvoraPro::PanelKind;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

const std::filesystem::path tour = HALVORA_SOURCE_DIR "/scripts/tour.halvora";

/// Gestures that record what was done and then do it on the shell.
class RecordingGestures final : public Gestures {
public:
    std::vector<std::string> done;
    void openMenu(const HalvoraPro::Menu& menu) override {
        done.push_back("open menu of " + std::to_string(menu.size()));
    }
    void chooseMenuItem(std::size_t index, const HalvoraPro::MenuItem& item) override {
        done.push_back("choose item " + std::to_string(index));
        direct_.chooseMenuItem(index, item);
    }
    void pressPanelButton(PanelKind panel, DialogButton button,
                          HalvoraPro::MenuBarController& shell) override {
        done.push_back(std::string(panel == PanelKind::confirmation ? "confirmation " : "prompt ") +
                       (button == DialogButton::defaultButton ? "Return" : "Escape"));
        direct_.pressPanelButton(panel, button, shell);
    }
    void chooseRadio(std::size_t index, HalvoraPro::IdentificationWindow& window) override {
        done.push_back("radio " + std::to_string(index));
        direct_.chooseRadio(index, window);
    }
    void pressWindowButton(DialogButton button, HalvoraPro::IdentificationContent::Action action,
                           HalvoraPro::IdentificationWindow& window) override {
        done.push_back(std::string("window ") +
                       (button == DialogButton::defaultButton ? "Return" : "Escape"));
        direct_.pressWindowButton(button, action, window);
    }
    void closeWindow(HalvoraPro::IdentificationWindow& window) override {
        done.push_back("window close box");
        direct_.closeWindow(window);
    }

private:
    DirectGestures direct_;
};

struct SelfTestRun {
    int status;
    std::string out;
    std::string err;
};

SelfTestRun runSelfTest(const std::string& script,
                        const std::shared_ptr<TestDoubles::ScriptedScreen>& screen,
                        const std::shared_ptr<Gestures>& gestures = nullptr,
                        std::optional<std::filesystem::path> screenshots = std::nullopt) {
    TestSupport::TemporaryFolder folder;
    TestSupport::writeFile(folder / "script.halvora", script);
    SelfTest test{folder / "script.halvora", std::nullopt, std::move(screenshots)};
    std::ostringstream out, err;
    Simulator::RealViews views{screen, gestures, nullptr, [screen] { screen->clear(); }};
    const int status = test.run(views, *screen, out, err);
    return {status, out.str(), err.str()};
}

std::string readScript(const std::filesystem::path& path) {
    return TestSupport::readFile(path);
}

TEST(SelfTest, TheTourRunsToTheEndWhenTheScreenShowsWhatTheApplicationShows) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    TestSupport::TemporaryFolder pictures;
    const auto run = runSelfTest(readScript(tour), screen, nullptr, pictures.path());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_THAT(run.out, HasSubstr("every window appeared"));
    // Each kind of window was pictured, in order, as a numbered file.
    for (const char* kind :
         {"confirmation-panel", "switch-prompt", "identification-window", "alert"})
        EXPECT_TRUE(std::any_of(
            screen->captures.begin(), screen->captures.end(),
            [&](const std::string& name) { return name.find(kind) != std::string::npos; }))
            << kind;
    ASSERT_FALSE(screen->captures.empty());
    EXPECT_EQ(screen->captures.front().substr(0, 4), "001-");
    EXPECT_TRUE(std::filesystem::exists(pictures / screen->captures.back()));
    EXPECT_GT(screen->alertsDrawn, 0);
}

TEST(SelfTest, APanelThatNeverReachesTheScreenFailsTheRun) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    screen->neverShown.insert(PanelKind::confirmation);
    const auto run = runSelfTest(readScript(tour), screen);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(
        run.err,
        HasSubstr("the confirmation panel is shown by the application but not on the screen"));
    EXPECT_THAT(run.out, HasSubstr("the screen disagreed"));
}

TEST(SelfTest, AWindowLeftOnTheScreenAfterTheApplicationClosedItFailsTheRun) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    screen->keepsClosedWindow = true;
    const auto run = runSelfTest("menu\nclick 2\nwindow close\n", screen);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("line 3: the identification window is on the screen but the "
                                   "application does not show it"));
}

TEST(SelfTest, ACommandThatCannotBeCarriedOutStopsTheRun) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    const auto run = runSelfTest("state\nkeep\nmenu\n", screen);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("line 2: the command could not be carried out"));
    EXPECT_THAT(run.out, ::testing::Not(HasSubstr("The menu opens")));
}

TEST(SelfTest, ThePanelsButtonsAndMenuItemsArePressedThroughTheGesturesGiven) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    const auto gestures = std::make_shared<RecordingGestures>();
    // The tour's first identification, down to keeping the split it applies.
    const auto run = runSelfTest("menu\nclick 2\nwindow choose 1\nwindow confirm\n"
                                 "pbp ultrawide-34 on\nwait 16\nwait 4\nkeep\n",
                                 screen, gestures);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(gestures->done, Contains(::testing::StartsWith("open menu of ")));
    EXPECT_THAT(gestures->done, Contains("choose item 1"));
    EXPECT_THAT(gestures->done, Contains("radio 0"));
    EXPECT_THAT(gestures->done, Contains("window Return"));
    EXPECT_THAT(gestures->done, Contains("confirmation Return"));
    // And they took effect: the change was kept.
    EXPECT_THAT(run.out, HasSubstr("You press Keep"));
}

TEST(SelfTest, EveryWindowIsCheckedAfterEveryCommandOnceTheViewsHaveSettled) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    const auto run = runSelfTest("state\n# a comment\n\nwait 1\n", screen);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(screen->settled, 3); // at launch and after each of the two commands
}

TEST(SelfTest, AnUnreadableScriptIsBadUsage) {
    const auto screen = std::make_shared<TestDoubles::ScriptedScreen>();
    SelfTest test{"/no/such/script.halvora", std::nullopt, std::nullopt};
    std::ostringstream out, err;
    EXPECT_EQ(test.run({screen, nullptr, nullptr, nullptr}, *screen, out, err), 2);
    EXPECT_THAT(err.str(), HasSubstr("cannot read /no/such/script.halvora"));
}

TEST(SelfTest, ArgumentsNameTheScriptTheRigAndTheScreenshotFolder) {
    const auto test = SelfTest::parse(
        {"--simulate", "tour.halvora", "--rig", "rig.json", "--screenshots", "shots"});
    ASSERT_TRUE(test);
    EXPECT_EQ(test->script, "tour.halvora");
    EXPECT_EQ(test->rig, std::filesystem::path("rig.json"));
    EXPECT_EQ(test->screenshots, std::filesystem::path("shots"));
    EXPECT_FALSE(SelfTest::parse({"--help"}));
    EXPECT_THAT(SelfTest::help(), HasSubstr("--screenshots DIR"));
}

TEST(SelfTest, WithoutAScriptOrWithAStrayWordTheArgumentsAreRefused) {
    for (const auto& words : std::vector<std::vector<std::string>>{{},
                                                                   {"--rig", "rig.json"},
                                                                   {"--simulate", "a", "extra"},
                                                                   {"--simulate"},
                                                                   {"--verbose"}}) {
        try {
            SelfTest::parse(words);
            ADD_FAILURE() << "accepted " << ::testing::PrintToString(words);
        } catch (const CliError& error) {
            EXPECT_EQ(error.status(), exitBadUsage);
        }
    }
}

} // namespace
