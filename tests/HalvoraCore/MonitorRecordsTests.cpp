// The saved records kept in step with the store: the one way a record changes.

#include "PolicyFixture.hpp"

using namespace ControllerTesting;

namespace {

class MonitorRecordsTest : public PolicyTest {
protected:
    /// Edits the record of the attached display `id`, on the records as they are saved now.
    void update(const std::string& id, std::optional<Resolution> creatingWith,
                const std::function<void(DisplaySettings&)>& change) {
        if (!monitors) loadRecords();
        const auto monitor = monitors->monitor(DisplayID(id));
        ASSERT_TRUE(monitor);
        monitors->update(*monitor, creatingWith, change);
    }
};

} // namespace

TEST_F(MonitorRecordsTest, UpdateSettingsForAnUnknownMonitorWithoutANativeDoesNothing) {
    attachUltrawide();
    update("dcp-1", std::nullopt,
           [](DisplaySettings& s) { s.behavior = PBPBehavior::latchedAtPlug; });
    EXPECT_TRUE(store->stored.empty());
    EXPECT_TRUE(store->saves.empty());
}

TEST_F(MonitorRecordsTest, UpdateSettingsCreatesMovesToTheEndAndSavesTheWholeList) {
    DisplaySettings other({1, 2, 3}, std::nullopt, {2560, 1080});
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}, other};
    system->attach("dcp-1", ultrawideFull(), {}, std::nullopt, "USB-C 2");
    update("dcp-1", std::nullopt, [](DisplaySettings&) {});
    ASSERT_EQ(store->saves.size(), 1u) << "saved even when nothing changed";
    ASSERT_EQ(store->stored.size(), 2u);
    EXPECT_EQ(store->stored[0], other);
    EXPECT_EQ(store->stored[1].identity, identityOf(ultrawideFull()));
    EXPECT_EQ(store->stored[1].port, "USB-C 2") << "the port seen now is remembered";

    system->attach("dcp-3", superwideFull());
    update("dcp-3", Resolution{5120, 1440},
           [](DisplaySettings& s) { s.behavior = PBPBehavior::switchesOnToggle; });
    ASSERT_EQ(store->stored.size(), 3u);
    EXPECT_EQ(store->stored[2], (DisplaySettings{identityOf(superwideFull()),
                                                 std::nullopt,
                                                 {5120, 1440},
                                                 std::nullopt,
                                                 std::nullopt,
                                                 PBPBehavior::switchesOnToggle}));
}

TEST_F(MonitorRecordsTest, AnUnknownPortLeavesTheSavedPort) {
    store->stored = {{identityOf(ultrawideFull()), "DP-1", {3440, 1440}}};
    system->attach("dcp-1", ultrawideFull());
    update("dcp-1", std::nullopt, [](DisplaySettings&) {});
    EXPECT_EQ(store->stored[0].port, "DP-1");
}
