#include "MirroredShellView.hpp"

#include <ScriptedShellView.hpp>
#include <gtest/gtest.h>

using Halvora::MirroredShellView;
using HalvoraPro::PanelKind;
using TestDoubles::ScriptedShellView;

namespace {

struct MirrorFixture : ::testing::Test {
    std::shared_ptr<ScriptedShellView> simulated = std::make_shared<ScriptedShellView>();
    std::shared_ptr<ScriptedShellView> real = std::make_shared<ScriptedShellView>();
    MirroredShellView both{simulated, real};
};

TEST_F(MirrorFixture, BothViewsAreShownEveryPanelAndWindowInTheSameOrder) {
    both.renderPanel(PanelKind::confirmation, {});
    both.fadeInPanel(PanelKind::confirmation, {});
    both.showIdentification({}, {});
    both.closeIdentification();
    both.orderOutPanel(PanelKind::confirmation);
    both.updateOpenMenu({});
    EXPECT_EQ(simulated->calls, real->calls);
    EXPECT_EQ(real->calls.size(), 6u);
}

TEST_F(MirrorFixture, OnlyTheSimulatedViewCompletesAFade) {
    int completed = 0;
    both.fadeOutPanel(PanelKind::switchPrompt, [&] { ++completed; });
    ASSERT_EQ(real->pendingFades.size(), 1u);
    real->pendingFades.front()();
    EXPECT_EQ(completed, 0);
    simulated->pendingFades.front()();
    EXPECT_EQ(completed, 1);
}

TEST_F(MirrorFixture, TheMirrorDrawsEachAlertButOnlyTheSimulatedViewAnswersIt) {
    std::vector<std::size_t> answers;
    both.runAlert({}, [&](std::size_t button) { answers.push_back(button); });
    ASSERT_EQ(real->alerts.size(), 1u);
    real->alerts.front().response(1);
    EXPECT_TRUE(answers.empty());
    simulated->alerts.front().response(0);
    EXPECT_EQ(answers, std::vector<std::size_t>{0});
}

TEST_F(MirrorFixture, QuittingEndsTheSimulatedApplicationNotTheProcessOfTheMirror) {
    both.terminate();
    EXPECT_TRUE(simulated->terminated);
    EXPECT_FALSE(real->terminated);
}

} // namespace
