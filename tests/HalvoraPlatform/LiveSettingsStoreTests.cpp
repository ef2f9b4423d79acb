#include "TemporaryFolder.hpp"
#include "UnprivilegedUser.hpp"

#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPlatform/LiveSettingsStore.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace HalvoraPlatform;
using HalvoraCore::DisplaySettings;
using HalvoraPlatform::SettingsTrouble;
namespace fs = std::filesystem;

namespace {

DisplaySettings record(std::uint32_t serial) {
    DisplaySettings s({8598, 13376, serial}, "DP-1", {3440, 1440}, EDIDKit::Bytes(256, 0x5A),
                      HalvoraCore::DisplayMode{3440, 1440, 60},
                      HalvoraCore::PBPBehavior::latchedAtPlug);
    s.factoryFullEDID = EDIDKit::Bytes(256, 1);
    return s;
}

/// A child process of this copy of the application (it holds the settings
/// folder as its parent does) that saves `records` over and over until it is
/// killed; its process ID (negative when it could not be started).
pid_t startSavingForever(HalvoraPlatform::LiveSettingsStore& store, const std::vector<DisplaySettings>& records) {
    store.holdFolder();
    const pid_t writer = ::fork();
    if (writer == 0) {
        for (;;)
            store.save(records);
    }
    return writer;
}

class LiveSettingsStoreTest : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder folder;
    fs::path url = folder / "Halvora Pro" / "displays.json";
    std::vector<std::string> logged;
    HalvoraPlatform::LiveSettingsStore store{url, [this](const std::string& line) { logged.push_back(line); },
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

TEST_F(LiveSettingsStoreTest, ASaveKeepsThePermissionsTheUserGaveTheFile) {
    store.save({record(1)});
    fs::permissions(url, fs::perms::owner_read | fs::perms::owner_write);
    store.save({record(1), record(2)});
    EXPECT_EQ(fs::status(url).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(store.load(), (std::vector<DisplaySettings>{record(1), record(2)}));
}

TEST_F(LiveSettingsStoreTest, TheFileIsPrettyPrintedWithSortedKeys) {
    store.save({record(1)});
    const std::string text = TestSupport::readFile(url);
    EXPECT_EQ(text.substr(0, 4), "[\n  ");
    const auto position = [&](const char* key) {
        return text.find(std::string("\"") + key + "\"");
    };
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
    EXPECT_TRUE(logged[0].starts_with("Halvora Pro: settings record dropped (record 2: "))
        << logged[0];
    EXPECT_NE(logged[0].find("native"), std::string::npos) << logged[0];
    EXPECT_EQ(
        logged[1],
        "Halvora Pro: settings partly unreadable, moved to displays.unreadable-1790000000.json; "
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
    EXPECT_EQ(
        logged[2],
        "Halvora Pro: settings partly unreadable, moved to displays.unreadable-1790000000.json; "
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

TEST_F(LiveSettingsStoreTest, ASaveThatFailsIsLoggedToldAndNotThrownUntilASaveSucceeds) {
    store.save({record(1)});
    // The file's place is taken by a folder while the application runs.
    fs::remove(url);
    fs::create_directory(url);
    EXPECT_NO_THROW(store.save({record(2)}));
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(logged[0],
              "Halvora Pro: saving settings failed: " + url.string() + ": it is a folder");
    ASSERT_TRUE(store.status()->trouble());
    EXPECT_EQ(store.status()->trouble()->kind, HalvoraPlatform::SettingsTrouble::Kind::saveFailed);
    EXPECT_EQ(store.status()->trouble()->path, url.string());
    EXPECT_EQ(store.status()->trouble()->reason, SettingsTrouble::Reason::folder);
    EXPECT_TRUE(fs::is_directory(url)) << "the folder is not replaced";
    fs::remove(url);
    store.save({record(3)});
    EXPECT_FALSE(store.status()->trouble()) << "a save that succeeds ends the trouble";
    EXPECT_EQ(store.load(), std::vector<DisplaySettings>{record(3)});
}

TEST_F(LiveSettingsStoreTest, AReaderNeverSeesAHalfWrittenFileEvenWhenTheWriterIsKilled) {
    store.save({record(0)});
    std::vector<DisplaySettings> big;
    for (std::uint32_t i = 0; i < 40; ++i)
        big.push_back(record(i)); // about 40 KB of JSON
    for (int round = 0; round < 3; ++round) {
        const pid_t writer = startSavingForever(store, big);
        ASSERT_GE(writer, 0);
        int reads = 0;
        for (int i = 0; i < 60; ++i, ++reads) {
            const std::string text = TestSupport::readFile(url);
            ASSERT_NO_THROW(HalvoraCore::decodeSettingsList(nlohmann::json::parse(text)))
                << "read " << i;
        }
        ::usleep(static_cast<useconds_t>(20000 + round * 7000)); // let several saves happen
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        EXPECT_GT(reads, 0);
        EXPECT_NO_THROW(
            HalvoraCore::decodeSettingsList(nlohmann::json::parse(TestSupport::readFile(url))))
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
    EXPECT_EQ(logged,
              std::vector<std::string>{"Halvora Pro: removed 2 unfinished settings save(s)"});
    EXPECT_FALSE(fs::exists(url.parent_path() / ".displays.json.tmp-123"));
    EXPECT_FALSE(fs::exists(url.parent_path() / ".displays.json.tmp-killed-1"));
    EXPECT_TRUE(fs::exists(url.parent_path() / "displays.unreadable-1.json"));
    EXPECT_TRUE(fs::exists(url.parent_path() / ".other.json.tmp-5"));
}

TEST_F(LiveSettingsStoreTest, WritesKilledHalfWayLeaveNothingBehindOnceTheNextRunLoads) {
    std::vector<DisplaySettings> big;
    for (std::uint32_t i = 0; i < 40; ++i)
        big.push_back(record(i));
    store.save(big);
    for (int round = 0; round < 3; ++round) {
        const pid_t writer = startSavingForever(store, big);
        ASSERT_GE(writer, 0);
        ::usleep(static_cast<useconds_t>(15000 + round * 5000));
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
    }
    EXPECT_EQ(store.load().size(), big.size());
    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(url.parent_path()))
        left.push_back(entry.path().filename());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::string>{".halvora-pro.lock", "displays.json"}))
        << "only displays.json and the folder's lock are left";
}

// --- only a regular file is read or replaced ----------------------------------

namespace {

/// The settings file of three monitors, as text.
std::string threeRecords() {
    return HalvoraCore::encodeSettingsList({record(1), record(2), record(3)}).dump(2);
}

/// A folder the unprivileged user may read and enter but not write to.
void makeReadOnlyForUnprivilegedUser(const fs::path& path) {
    fs::permissions(path, ::geteuid() == 0 ? fs::perms::owner_all | fs::perms::others_read |
                                                 fs::perms::others_exec
                                           : fs::perms::owner_read | fs::perms::owner_exec);
}

/// Runs `check` as the unprivileged user on a store of `url` whose folder that
/// user may read but not write to; what it found (see runAsUnprivilegedUser).
std::optional<std::string> inReadOnlySettingsFolder(
    const TestSupport::TemporaryFolder& folder, const fs::path& url,
    const std::function<std::string(HalvoraPlatform::LiveSettingsStore&, const std::vector<std::string>&)>& check) {
    fs::permissions(folder.path(),
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    makeReadOnlyForUnprivilegedUser(url.parent_path());
    const auto found = TestSupport::runAsUnprivilegedUser([&] {
        std::vector<std::string> lines;
        HalvoraPlatform::LiveSettingsStore mine(url, [&](const std::string& line) { lines.push_back(line); });
        return check(mine, lines);
    });
    fs::permissions(url.parent_path(), fs::perms::owner_all);
    return found;
}

/// What differs from what a check expects, in words ("" when nothing).
std::string expect(bool holds, const std::string& what) {
    return holds ? std::string() : what + "; ";
}

} // namespace

TEST_F(LiveSettingsStoreTest,
       AFileThatCannotBeReadIsLeftAsItIsNothingIsRestoredAndItIsNeverWrittenOver) {
    fs::create_directories(url.parent_path());
    TestSupport::shareWithUnprivilegedUser(folder.path());
    TestSupport::shareWithUnprivilegedUser(url.parent_path());
    TestSupport::writeFile(url, threeRecords());
    fs::permissions(url,
                    fs::perms::owner_read | fs::perms::owner_write); // the user's, not ours to read
    if (::geteuid() != 0) fs::permissions(url, fs::perms::none);
    const auto failure = TestSupport::runAsUnprivilegedUser([&] {
        std::vector<std::string> lines;
        HalvoraPlatform::LiveSettingsStore mine(url, [&](const std::string& line) { lines.push_back(line); });
        std::string found = expect(mine.load().empty(), "settings were restored");
        mine.save({record(9)});
        const auto& trouble = mine.status()->trouble();
        found += expect(trouble && trouble->kind == HalvoraPlatform::SettingsTrouble::Kind::notRestored &&
                            trouble->path == url.string() && trouble->why == "Permission denied",
                        "the user is not told the file was not restored and why");
        found += expect(!mine.isSaving(), "saving is on");
        found +=
            expect(lines.size() == 1 && lines[0].starts_with("Halvora Pro: settings not read (" +
                                                             url.string() + ": Permission denied)"),
                   "the log says " + (lines.empty() ? std::string("nothing") : lines[0]));
        return found;
    });
    fs::permissions(url, fs::perms::owner_read | fs::perms::owner_write);
    if (!failure) GTEST_SKIP() << "this machine cannot run a check as an unprivileged user";
    EXPECT_EQ(*failure, "");
    EXPECT_EQ(TestSupport::readFile(url), threeRecords()) << "the file is as it was";
    EXPECT_EQ(std::distance(fs::directory_iterator(url.parent_path()), fs::directory_iterator()), 2)
        << "nothing was moved aside";
}

TEST_F(LiveSettingsStoreTest, AFolderAtTheSettingsPathIsNeitherMovedNorWrittenOverAndSavingIsOff) {
    fs::create_directories(url / "kept");
    EXPECT_TRUE(store.load().empty());
    store.save({record(1)});
    EXPECT_TRUE(fs::is_directory(url / "kept")) << "the folder is as it was";
    EXPECT_FALSE(fs::exists(url.parent_path() / "displays.unreadable-1790000000.json"));
    ASSERT_TRUE(store.status()->trouble());
    EXPECT_EQ(*store.status()->trouble(),
              (SettingsTrouble{SettingsTrouble::Kind::notRestored, url.string(), "it is a folder",
                               SettingsTrouble::Reason::folder}));
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(logged[0], "Halvora Pro: settings not read (" + url.string() +
                             ": it is a folder); nothing restored, and settings will not be saved "
                             "while Halvora Pro runs");
}

TEST_F(LiveSettingsStoreTest, ADeviceAtTheSettingsPathIsNeverReadWithoutEndMovedOrReplaced) {
    for (const char* device : {"/dev/null", "/dev/zero"}) {
        const bool lockThereBefore = fs::exists(fs::path("/dev") / HalvoraPlatform::SettingsFolderLock::fileName);
        HalvoraPlatform::LiveSettingsStore onDevice(device, [](const std::string&) {});
        EXPECT_TRUE(onDevice.load().empty()) << device;
        onDevice.save({record(1)});
        EXPECT_TRUE(fs::is_character_file(device)) << device << " is still the device";
        ASSERT_TRUE(onDevice.status()->trouble()) << device;
        EXPECT_EQ(onDevice.status()->trouble()->reason, SettingsTrouble::Reason::notRegular)
            << device;
        EXPECT_FALSE(onDevice.isSaving()) << device;
        EXPECT_EQ(fs::exists(fs::path("/dev") / HalvoraPlatform::SettingsFolderLock::fileName), lockThereBefore)
            << "nothing is put beside " << device;
        EXPECT_FALSE(fs::exists(fs::path("/dev/null.unreadable-1790000000.json")));
    }
}

TEST_F(LiveSettingsStoreTest, APipeAtTheSettingsPathIsNotWaitedOnOrReplaced) {
    fs::create_directories(url.parent_path());
    ASSERT_EQ(::mkfifo(url.c_str(), 0600), 0);
    EXPECT_TRUE(store.load().empty()) << "returns at once: nothing writes to the pipe";
    store.save({record(1)});
    EXPECT_TRUE(fs::is_fifo(url));
    ASSERT_TRUE(store.status()->trouble());
    EXPECT_EQ(store.status()->trouble()->kind, HalvoraPlatform::SettingsTrouble::Kind::notRestored);
}

TEST_F(LiveSettingsStoreTest, AFileLargerThanTheLimitIsNeitherReadNorMovedNorReplaced) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, "[]");
    fs::resize_file(url, HalvoraPlatform::LiveSettingsStore::sizeLimit + 1);
    EXPECT_TRUE(store.load().empty());
    store.save({record(1)});
    EXPECT_EQ(fs::file_size(url), HalvoraPlatform::LiveSettingsStore::sizeLimit + 1);
    ASSERT_TRUE(store.status()->trouble());
    EXPECT_EQ(store.status()->trouble()->reason, SettingsTrouble::Reason::tooLarge);
    EXPECT_EQ(store.status()->trouble()->limit, HalvoraPlatform::LiveSettingsStore::sizeLimit);
    EXPECT_FALSE(fs::exists(url.parent_path() / "displays.unreadable-1790000000.json"));
}

TEST_F(LiveSettingsStoreTest, FilesMovedAsideInTheSameSecondEachKeepTheirOwnName) {
    fs::create_directories(url.parent_path());
    std::vector<std::string> corrupt{"first {", "second {", "third {"};
    for (const auto& content : corrupt) {
        HalvoraPlatform::LiveSettingsStore launch(
            url, [](const std::string&) {}, [] { return 1790000000LL; });
        TestSupport::writeFile(url, content);
        EXPECT_TRUE(launch.load().empty());
    }
    const fs::path folderPath = url.parent_path();
    EXPECT_EQ(TestSupport::readFile(folderPath / "displays.unreadable-1790000000.json"), "first {");
    EXPECT_EQ(TestSupport::readFile(folderPath / "displays.unreadable-1790000000-2.json"),
              "second {");
    EXPECT_EQ(TestSupport::readFile(folderPath / "displays.unreadable-1790000000-3.json"),
              "third {");
}

TEST_F(LiveSettingsStoreTest, TheLogNamesTheFileThatWasActuallyMovedAside) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url.parent_path() / "displays.unreadable-1790000000.json", "earlier");
    TestSupport::writeFile(url, "not json");
    EXPECT_TRUE(store.load().empty());
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_TRUE(logged[0].ends_with("), moved to displays.unreadable-1790000000-2.json"))
        << logged[0];
    EXPECT_EQ(TestSupport::readFile(url.parent_path() / "displays.unreadable-1790000000.json"),
              "earlier");
}

TEST_F(LiveSettingsStoreTest, ABareFileNameLivesInTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    HalvoraPlatform::LiveSettingsStore bare("displays.json",
                           [this](const std::string& line) { logged.push_back(line); });
    bare.save({record(4)});
    const auto loaded = bare.load();
    fs::current_path(before);
    EXPECT_EQ(loaded, std::vector<DisplaySettings>{record(4)});
    EXPECT_TRUE(fs::exists(folder / "displays.json"));
    EXPECT_FALSE(bare.status()->trouble());
    EXPECT_TRUE(logged.empty()) << logged.front();
}

TEST_F(LiveSettingsStoreTest, ASecondCopyCannotHoldTheFolderAndLeavesTheFirstCopysSaveAlone) {
    store.save({record(1)});
    const fs::path inProgress = url.parent_path() / ".displays.json.tmp-4242";
    TestSupport::writeFile(inProgress, "[{\"identity\":");
    HalvoraPlatform::LiveSettingsStore second(url, [](const std::string&) {});
    EXPECT_THROW(second.holdFolder(), HalvoraPlatform::SettingsFolderInUse);
    EXPECT_EQ(second.load(), std::vector<DisplaySettings>{record(1)}) << "reading does no harm";
    second.save({record(2)});
    EXPECT_TRUE(fs::exists(inProgress)) << "the first copy's save in progress is not removed";
    EXPECT_EQ(store.load(), std::vector<DisplaySettings>{record(1)})
        << "the second copy saved nothing";
    EXPECT_FALSE(second.isSaving());
    ASSERT_TRUE(second.status()->trouble());
    EXPECT_EQ(second.status()->trouble()->reason, SettingsTrouble::Reason::inUse);
    EXPECT_FALSE(fs::exists(inProgress)) << "the copy that holds the folder cleans up";
}

TEST_F(LiveSettingsStoreTest, AnotherProcessOnTheSameFolderIsToldItIsInUse) {
    store.save({record(1)});
    const pid_t other = ::fork();
    if (other == 0) {
        // A copy of its own: the parent's hold is not inherited by a new open.
        HalvoraPlatform::LiveSettingsStore theirs(url.parent_path() / "other.json", [](const std::string&) {});
        int code = 0;
        try {
            theirs.holdFolder();
        } catch (const HalvoraPlatform::SettingsFolderInUse&) {
            code = 1;
        }
        ::_exit(code);
    }
    int status = 0;
    ::waitpid(other, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1) << "the folder is in use, whatever the file's name";
}

TEST_F(LiveSettingsStoreTest, AReadOnlySettingsFolderRestoresWhatIsThereAndTurnsSavingOffOnce) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, threeRecords());
    const auto failure =
        inReadOnlySettingsFolder(folder, url, [&](HalvoraPlatform::LiveSettingsStore& mine, const auto& lines) {
            std::string found = expect(mine.load().size() == 3, "the settings were not restored");
            for (int i = 0; i < 6; ++i)
                mine.save({record(9)});
            const auto& trouble = mine.status()->trouble();
            found += expect(trouble && trouble->kind == HalvoraPlatform::SettingsTrouble::Kind::savingOff &&
                                trouble->path == url.parent_path().string() &&
                                trouble->why == "Permission denied",
                            "the user is not told saving is off and why");
            found += expect(lines.size() == 1, std::to_string(lines.size()) + " log lines");
            return found;
        });
    if (!failure) GTEST_SKIP() << "this machine cannot run a check as an unprivileged user";
    EXPECT_EQ(*failure, "");
    EXPECT_EQ(TestSupport::readFile(url), threeRecords());
}

TEST_F(LiveSettingsStoreTest, AFileThatDoesNotDecodeAndCannotBeMovedAsideIsLeftAsItIs) {
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, "[{\"identity\": ");
    fs::permissions(url, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
    const auto failure =
        inReadOnlySettingsFolder(folder, url, [&](HalvoraPlatform::LiveSettingsStore& mine, const auto& lines) {
            std::string found = expect(mine.load().empty(), "records came from nowhere");
            mine.save({record(9)});
            found += expect(!mine.isSaving(), "saving is on");
            found +=
                expect(lines.size() == 2 && lines[1].find("left as it is") != std::string::npos,
                       "the log says " + (lines.size() < 2 ? std::string("too little") : lines[1]));
            return found;
        });
    if (!failure) GTEST_SKIP() << "this machine cannot run a check as an unprivileged user";
    EXPECT_EQ(*failure, "");
    EXPECT_EQ(TestSupport::readFile(url), "[{\"identity\": ");
}

TEST_F(LiveSettingsStoreTest, ARecordWhoseSizeNoEDIDCanDescribeIsDroppedAndLogged) {
    nlohmann::json list = HalvoraCore::encodeSettingsList({record(1), record(2)});
    list[1]["native"] = {{"width", -5}, {"height", 0}};
    fs::create_directories(url.parent_path());
    TestSupport::writeFile(url, list.dump());
    EXPECT_EQ(store.load(), std::vector<DisplaySettings>{record(1)});
    ASSERT_EQ(logged.size(), 2u);
    EXPECT_EQ(
        logged[0],
        "Halvora Pro: settings record dropped (record 2: \"native\" -5×0 is not a size an EDID can "
        "describe)");
}

TEST_F(LiveSettingsStoreTest, ALinkToTheSettingsIsKeptAndTheFileItPointsToIsReplaced) {
    fs::create_directories(url.parent_path());
    const fs::path real = folder / "dotfiles-displays.json";
    TestSupport::writeFile(real, HalvoraCore::encodeSettingsList({record(1)}).dump());
    fs::create_symlink(real, url);
    EXPECT_EQ(store.load(), std::vector<DisplaySettings>{record(1)});
    store.save({record(2)});
    EXPECT_TRUE(fs::is_symlink(url));
    EXPECT_EQ(HalvoraCore::decodeSettingsList(nlohmann::json::parse(TestSupport::readFile(real))),
              std::vector<DisplaySettings>{record(2)});
    EXPECT_FALSE(store.status()->trouble());
}

TEST_F(LiveSettingsStoreTest, ALinkToNothingYetIsKeptAndTheFileItNamesIsMade) {
    fs::create_directories(url.parent_path());
    fs::create_symlink("elsewhere.json", url);
    EXPECT_TRUE(store.load().empty());
    store.save({record(5)});
    EXPECT_TRUE(fs::is_symlink(url));
    EXPECT_EQ(store.load(), std::vector<DisplaySettings>{record(5)});
    EXPECT_TRUE(fs::is_regular_file(url.parent_path() / "elsewhere.json"));
}

namespace {

using Lookup = HalvoraPlatform::LiveSettingsStore::HomeLookup;

Lookup lookup(std::map<std::string, std::string> environment,
              std::optional<std::string> accountHome) {
    return {[environment](const char* name) -> std::optional<std::string> {
                if (const auto found = environment.find(name); found != environment.end())
                    return found->second;
                return std::nullopt;
            },
            [accountHome] { return accountHome; }};
}

} // namespace

TEST(LiveSettingsStoreLocation, LivesInTheUsersDataFolder) {
#if defined(__APPLE__)
    EXPECT_EQ(HalvoraPlatform::LiveSettingsStore::defaultURL(lookup({{"HOME", "/Users/ann"}}, "/Users/other")),
              fs::path("/Users/ann/Library/Application Support/Halvora Pro/displays.json"));
#else
    EXPECT_EQ(HalvoraPlatform::LiveSettingsStore::defaultURL(
                  lookup({{"HOME", "/home/ann"}, {"XDG_DATA_HOME", "/data/ann"}}, {})),
              fs::path("/data/ann/Halvora Pro/displays.json"));
    EXPECT_EQ(HalvoraPlatform::LiveSettingsStore::defaultURL(lookup({{"HOME", "/home/ann"}}, "/home/other")),
              fs::path("/home/ann/.local/share/Halvora Pro/displays.json"));
    EXPECT_EQ(HalvoraPlatform::LiveSettingsStore::defaultURL(
                  lookup({{"HOME", "/home/ann"}, {"XDG_DATA_HOME", "relative"}}, {})),
              fs::path("/home/ann/.local/share/Halvora Pro/displays.json"))
        << "a relative data folder is ignored, as the XDG rules say";
#endif
}

TEST(LiveSettingsStoreLocation, WithoutHOMETheAccountsHomeFolderIsUsed) {
    const fs::path url = HalvoraPlatform::LiveSettingsStore::defaultURL(lookup({}, "/home/ann"));
    EXPECT_TRUE(url.string().starts_with("/home/ann/")) << url;
}

TEST(LiveSettingsStoreLocation, WithoutAnyHomeFolderThereIsNoLocationAndNoFallback) {
    for (const auto& environment : {std::map<std::string, std::string>{},
                                    {{"HOME", ""}},
                                    {{"HOME", "."}},
                                    {{"HOME", "relative/folder"}, {"XDG_DATA_HOME", "/data"}}}) {
        try {
            HalvoraPlatform::LiveSettingsStore::defaultURL(lookup(environment, std::nullopt));
            FAIL() << "a location was made up";
        } catch (const HalvoraPlatform::NoSettingsFolder& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with("Halvora Pro: cannot start: "))
                << error.what();
        }
    }
}

TEST(LiveSettingsStoreLocationDeathTest, StartingWithoutAHomeFolderIsAFatalStopThatSaysWhy) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        HalvoraPlatform::LiveSettingsStore::defaultURLOrStop(lookup({}, std::nullopt), [](const std::string&) {}),
        "Halvora Pro: cannot start: there is no Application Support folder");
}

TEST(LiveSettingsStoreLocation, TheSystemLookupFindsThisUsersFolder) {
    EXPECT_TRUE(HalvoraPlatform::LiveSettingsStore::defaultURL().string().ends_with("Halvora Pro/displays.json"));
}
