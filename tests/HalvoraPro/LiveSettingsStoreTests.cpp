#include <HalvoraPro/LiveSettingsStore.hpp>

#include <HalvoraCore/SettingsCoding.hpp>

#include "TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace HalvoraPro;
using HalvoraCore::DisplaySettings;
namespace fs = std::filesystem;

namespace {

DisplaySettings record(std::uint32_t serial) {
    DisplaySettings s({8598, 13376, serial}, "DP-1", {3440, 1440}, EDIDKit::Bytes(256, 0x5A),
                      HalvoraCore::DisplayMode{3440, 1440, 60}, HalvoraCore::PBPBehavior::latchedAtPlug);
    s.factoryFullEDID = EDIDKit::Bytes(256, 1);
    return s;
}

/// A child process that saves `records` to `url` over and over until it is
/// killed; its process ID (negative when it could not be started).
pid_t startSavingForever(const fs::path& url, const std::vector<DisplaySettings>& records) {
    const pid_t writer = ::fork();
    if (writer == 0) {
        LiveSettingsStore child(url, [](const std::string&) {});
        for (;;) child.save(records);
    }
    return writer;
}

class LiveSettingsStoreTest : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder folder;
    fs::path url = folder / "Halvora Pro" / "displays.json";
    std::vector<std::string> logged;
    LiveSettingsStore store{url, [this](const std::string& line) { logged.push_back(line); },
                            [] { return 1790000000LL; }};
};

} // namespace

TEST_F(LiveSettingsStoreTest, AMissingFileLoadsAsNoSettingsWithoutALogLine) {
    EXPECT_TRUE(store.load().empty());
    EXPECT_TRUE(logged.empty());
}

TEST_F(LiveSettingsStoreTest, SaveCreatesTheFolderAndLoadReadsItBack) {
    ASSERT_FALSE(fs::exists(url.parent_path()));
    const std::vector<DisplaySettings> settings{record(1), record(2)};
    store.save(settings);
    EXPECT_TRUE(fs::exists(url));
    EXPECT_EQ(store.load(), settings);
    EXPECT_TRUE(logged.empty());
}

TEST_F(LiveSettingsStoreTest, TheFileIsPrettyPrintedWithSortedKeys) {
    store.save({record(1)});
    const std::string text = TestSupport::readFile(url);
    EXPECT_EQ(text.substr(0, 4), "[\n  ");
    const auto position = [&](const char* key) { return text.find(std::string("\"") + key + "\""); };
    EXPECT_LT(position("behavior"), position("factoryFullEDID"));
    EXPECT_LT(position("factoryFullEDID"), position("identity"));
    EXPECT_LT(position("identity"), position("lastMode"));
    EXPECT_LT(position("lastMode"), position("native"));
    EXPECT_LT(position("native"), position("overrideEDID"));
    EXPECT_LT(position("overrideEDID"), position("port"));
}

TEST_F(LiveSettingsStoreTest, ACorruptFileIsMovedAsideLoggedAndReplacedByTheNextSave) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, "[{\"identity\": ");
    EXPECT_TRUE(store.load().empty());
    const fs::path aside = url.parent_path() / "displays.unreadable-1790000000.json";
    EXPECT_TRUE(fs::exists(aside));
    EXPECT_EQ(TestSupport::readFile(aside), "[{\"identity\": ");
    EXPECT_FALSE(fs::exists(url));
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_TRUE(logged[0].starts_with("Halvora Pro: settings unreadable ("));
    EXPECT_TRUE(logged[0].ends_with("), moved to displays.unreadable-1790000000.json"));
    store.save({record(3)});
    EXPECT_EQ(store.load(), std::vector<DisplaySettings>{record(3)});
    EXPECT_TRUE(fs::exists(aside)) << "the unreadable file is kept";
}

TEST_F(LiveSettingsStoreTest, OneUnreadableRecordCostsNoOtherMonitorItsSettings) {
    nlohmann::json list = HalvoraCore::encodeSettingsList({record(1), record(2), record(3)});
    list[1].erase("native");
    fs::create_directories(url.parent_path());
    const std::string original = list.dump();
    TestSupport::writeFile(url, original);

    EXPECT_EQ(store.load(), (std::vector<DisplaySettings>{record(1), record(3)}));
    const fs::path aside = url.parent_path() / "displays.unreadable-1790000000.json";
    EXPECT_EQ(TestSupport::readFile(aside), original) << "the original is kept as it was";
    ASSERT_EQ(logged.size(), 2u);
    EXPECT_TRUE(logged[0].starts_with("Halvora Pro: settings record dropped (record 2: ")) << logged[0];
    EXPECT_NE(logged[0].find("native"), std::string::npos) << logged[0];
    EXPECT_EQ(logged[1], "Halvora Pro: settings partly unreadable, moved to displays.unreadable-1790000000.json; "
                         "2 of 3 records kept");
    EXPECT_EQ(HalvoraCore::decodeSettingsList(nlohmann::json::parse(TestSupport::readFile(url))),
              (std::vector<DisplaySettings>{record(1), record(3)}))
        << "the readable records are saved afresh";
    logged.clear();
    EXPECT_EQ(store.load(), (std::vector<DisplaySettings>{record(1), record(3)}));
    EXPECT_TRUE(logged.empty()) << "the next launch reads a clean file";
}

TEST_F(LiveSettingsStoreTest, AListOfOnlyUnreadableRecordsLeavesAnEmptyListAndTheOriginalAside) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, "[1, {\"identity\": {}}]");
    EXPECT_TRUE(store.load().empty());
    EXPECT_EQ(TestSupport::readFile(url.parent_path() / "displays.unreadable-1790000000.json"),
              "[1, {\"identity\": {}}]");
    ASSERT_EQ(logged.size(), 3u);
    EXPECT_EQ(logged[2], "Halvora Pro: settings partly unreadable, moved to displays.unreadable-1790000000.json; "
                         "0 of 2 records kept");
}

TEST_F(LiveSettingsStoreTest, AFileThatIsNotAListIsUnreadableAsAWhole) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, "{\"identity\": 1}");
    EXPECT_TRUE(store.load().empty());
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_TRUE(logged[0].starts_with("Halvora Pro: settings unreadable (")) << logged[0];
    EXPECT_FALSE(fs::exists(url));
}

TEST_F(LiveSettingsStoreTest, ASaveThatFailsIsLoggedAndNotThrown) {
    // The folder's place is taken by a file.
    TestSupport::writeFile(folder / "Halvora Pro", "not a folder");
    EXPECT_NO_THROW(store.save({record(1)}));
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_TRUE(logged[0].starts_with("Halvora Pro: saving settings failed: ")) << logged[0];
}

TEST_F(LiveSettingsStoreTest, AReaderNeverSeesAHalfWrittenFileEvenWhenTheWriterIsKilled) {
    store.save({record(0)});
    std::vector<DisplaySettings> big;
    for (std::uint32_t i = 0; i < 40; ++i) big.push_back(record(i)); // about 40 KB of JSON
    for (int round = 0; round < 3; ++round) {
        const pid_t writer = startSavingForever(url, big);
        ASSERT_GE(writer, 0);
        int reads = 0;
        for (int i = 0; i < 60; ++i, ++reads) {
            const std::string text = TestSupport::readFile(url);
            ASSERT_NO_THROW(HalvoraCore::decodeSettingsList(nlohmann::json::parse(text))) << "read " << i;
        }
        ::usleep(static_cast<useconds_t>(20000 + round * 7000)); // let several saves happen
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        EXPECT_GT(reads, 0);
        EXPECT_NO_THROW(HalvoraCore::decodeSettingsList(nlohmann::json::parse(TestSupport::readFile(url))))
            << "after the writer was killed";
    }
    EXPECT_TRUE(logged.empty());
}

TEST_F(LiveSettingsStoreTest, LoadingRemovesWhatSavesKilledHalfWayLeftAndNothingElse) {
    store.save({record(7)});
    TestSupport::writeFile(url.parent_path() / ".displays.json.tmp-123", "[{\"identity\":");
    TestSupport::writeFile(url.parent_path() / ".displays.json.tmp-killed-1", "");
    TestSupport::writeFile(url.parent_path() / "displays.unreadable-1.json", "kept");
    TestSupport::writeFile(url.parent_path() / ".other.json.tmp-5", "not ours");
    const auto loaded = store.load();
    ASSERT_EQ(loaded.size(), 1u);
    EXPECT_EQ(loaded[0].identity.serialNumber, 7u);
    EXPECT_EQ(logged, std::vector<std::string>{"Halvora Pro: removed 2 unfinished settings save(s)"});
    EXPECT_FALSE(fs::exists(url.parent_path() / ".displays.json.tmp-123"));
    EXPECT_FALSE(fs::exists(url.parent_path() / ".displays.json.tmp-killed-1"));
    EXPECT_TRUE(fs::exists(url.parent_path() / "displays.unreadable-1.json"));
    EXPECT_TRUE(fs::exists(url.parent_path() / ".other.json.tmp-5"));
}

TEST_F(LiveSettingsStoreTest, WritesKilledHalfWayLeaveNothingBehindOnceTheNextRunLoads) {
    std::vector<DisplaySettings> big;
    for (std::uint32_t i = 0; i < 40; ++i) big.push_back(record(i));
    store.save(big);
    for (int round = 0; round < 3; ++round) {
        const pid_t writer = startSavingForever(url, big);
        ASSERT_GE(writer, 0);
        ::usleep(static_cast<useconds_t>(15000 + round * 5000));
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
    }
    EXPECT_EQ(store.load().size(), big.size());
    EXPECT_EQ(std::distance(fs::directory_iterator(url.parent_path()), fs::directory_iterator()), 1)
        << "only displays.json is left";
}

namespace {

using Lookup = LiveSettingsStore::HomeLookup;

Lookup lookup(std::map<std::string, std::string> environment, std::optional<std::string> accountHome) {
    return {[environment](const char* name) -> std::optional<std::string> {
                if (const auto found = environment.find(name); found != environment.end()) return found->second;
                return std::nullopt;
            },
            [accountHome] { return accountHome; }};
}

} // namespace

TEST(LiveSettingsStoreLocation, LivesInTheUsersDataFolder) {
#if defined(__APPLE__)
    EXPECT_EQ(LiveSettingsStore::defaultURL(lookup({{"HOME", "/Users/ann"}}, "/Users/other")),
              fs::path("/Users/ann/Library/Application Support/Halvora Pro/displays.json"));
#else
    EXPECT_EQ(LiveSettingsStore::defaultURL(lookup({{"HOME", "/home/ann"}, {"XDG_DATA_HOME", "/data/ann"}}, {})),
              fs::path("/data/ann/Halvora Pro/displays.json"));
    EXPECT_EQ(LiveSettingsStore::defaultURL(lookup({{"HOME", "/home/ann"}}, "/home/other")),
              fs::path("/home/ann/.local/share/Halvora Pro/displays.json"));
    EXPECT_EQ(LiveSettingsStore::defaultURL(lookup({{"HOME", "/home/ann"}, {"XDG_DATA_HOME", "relative"}}, {})),
              fs::path("/home/ann/.local/share/Halvora Pro/displays.json"))
        << "a relative data folder is ignored, as the XDG rules say";
#endif
}

TEST(LiveSettingsStoreLocation, WithoutHOMETheAccountsHomeFolderIsUsed) {
    const fs::path url = LiveSettingsStore::defaultURL(lookup({}, "/home/ann"));
    EXPECT_TRUE(url.string().starts_with("/home/ann/")) << url;
}

TEST(LiveSettingsStoreLocation, WithoutAnyHomeFolderThereIsNoLocationAndNoFallback) {
    for (const auto& environment : {std::map<std::string, std::string>{}, {{"HOME", ""}}, {{"HOME", "."}},
                                    {{"HOME", "relative/folder"}, {"XDG_DATA_HOME", "/data"}}}) {
        try {
            LiveSettingsStore::defaultURL(lookup(environment, std::nullopt));
            FAIL() << "a location was made up";
        } catch (const NoSettingsFolder& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with("Halvora Pro: cannot start: ")) << error.what();
        }
    }
}

TEST(LiveSettingsStoreLocationDeathTest, StartingWithoutAHomeFolderIsAFatalStopThatSaysWhy) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(LiveSettingsStore::defaultURLOrStop(lookup({}, std::nullopt), [](const std::string&) {}),
                 "Halvora Pro: cannot start: there is no Application Support folder");
}

TEST(LiveSettingsStoreLocation, TheSystemLookupFindsThisUsersFolder) {
    EXPECT_TRUE(LiveSettingsStore::defaultURL().string().ends_with("Halvora Pro/displays.json"));
}
