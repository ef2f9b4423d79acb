// Starting with the Option key held: nothing saved is put back, and nothing
// is taken away at quit, until the user picks an action.

#include "ControllerFixture.hpp"

using namespace ControllerTesting;

namespace {

class SafeStartTest : public ControllerTest {
protected:
    void SetUp() override {
        DisplaySettings s = ultrawideSettings();
        s.overrideEDID = ultrawideSplit();
        s.lastMode = qhd60;
        store->stored = {s};
    }
};

} // namespace

TEST_F(SafeStartTest, ASafeStartWritesNothingToADisplayThatLacksItsOverride) {
    attachUltrawide();
    start(SplitController::Start::safe);
    clock->advance(30);
    system->fireConfigurationChange(true); // a plug or a wake
    clock->advance(30);
    EXPECT_TRUE(controller->isSafeStart());
    EXPECT_TRUE(calls().empty());
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(SafeStartTest, QuittingAfterASafeStartLeavesTheDisplaysAsTheyAre) {
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit()); // left by a run that crashed
    start(SplitController::Start::safe);
    clock->advance(5);
    controller->restoreForQuit();
    EXPECT_TRUE(calls().empty());
}

TEST_F(SafeStartTest, ChoosingToRestoreEndsItAndTheNextPassPutsTheOverrideBack) {
    attachUltrawide();
    start(SplitController::Start::safe);
    clock->advance(5);
    changes = 0;
    controller->resumeRestoring();
    EXPECT_FALSE(controller->isSafeStart());
    EXPECT_GT(changes, 0) << "the menu learns that the safe start is over";
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(calls(), (std::vector<std::string>{"applyEDIDOverride dcp-1"}));
}

TEST_F(SafeStartTest, AnyActionOfTheUserEndsIt) {
    attachUltrawide();
    start(SplitController::Start::safe);
    clock->advance(5);
    controller->startIdentification(DisplayID("dcp-1"));
    EXPECT_FALSE(controller->isSafeStart());

    start(SplitController::Start::safe);
    clock->advance(5);
    controller->restoreFactory();
    EXPECT_FALSE(controller->isSafeStart());

    start(SplitController::Start::safe);
    clock->advance(5);
    controller->switchTo(ModeChoice::full, DisplayID("dcp-1"));
    EXPECT_FALSE(controller->isSafeStart());
}

TEST_F(SafeStartTest, AfterTheSafeStartEndsQuitGivesTheFactoryEDIDBackAgain) {
    attachUltrawide();
    system->setOverride("dcp-1", ultrawideSplit());
    start(SplitController::Start::safe);
    clock->advance(5);
    controller->resumeRestoring();
    controller->restoreForQuit();
    EXPECT_EQ(callCount("restoreFactoryEDID dcp-1"), 1);
}

TEST_F(SafeStartTest, ANormalStartIsNotSafe) {
    attachUltrawide();
    start();
    EXPECT_FALSE(controller->isSafeStart());
    clock->advance(SplitController::restoreDebounce);
    EXPECT_EQ(callCount("applyEDIDOverride dcp-1"), 1);
}
