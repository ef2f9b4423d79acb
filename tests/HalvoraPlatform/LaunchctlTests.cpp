// Running launchctl: the time limit over a scripted spawner, and the POSIX
// spawner against stand-in programs.

#include "ScriptedProcessSpawner.hpp"
#include "TemporaryFolder.hpp"

#include <HalvoraPlatform/Launchctl.hpp>
#include <HalvoraPlatform/PosixProcessSpawner.hpp>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace HalvoraPlatform;
using TestDoubles::ScriptedProcessSpawner;

namespace {

class LaunchctlTest : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedProcessSpawner> spawner = std::make_shared<ScriptedProcessSpawner>();
    HalvoraPlatform::Launchctl launchctl{spawner};
};

} // namespace

TEST_F(LaunchctlTest, ItRunsLaunchctlItselfWithTheArgumentsAndReturnsItsExitCode) {
    spawner->next.push_back({true, 3, {false, 113}});
    EXPECT_EQ(launchctl.run({"print", "gui/501/x"}), 113);
    EXPECT_EQ(spawner->spawned, (std::vector<std::string>{"/bin/launchctl print gui/501/x"}));
    EXPECT_EQ(spawner->polls, 4);
    EXPECT_EQ(spawner->sleptMilliseconds, 15);
    EXPECT_EQ(spawner->kills, 0);
}

TEST_F(LaunchctlTest, EndedByASignalOrNotStartedIsMinusOne) {
    spawner->next.push_back({true, 0, {true, SIGSEGV}});
    spawner->next.push_back({false, 0, {}});
    EXPECT_EQ(launchctl.run({"print"}), -1);
    EXPECT_EQ(launchctl.run({"print"}), -1);
}

TEST_F(LaunchctlTest, AProgramThatDoesNotEndIsKilledAfterSixHundredPollsFiveMillisecondsApart) {
    spawner->next.push_back({true, -1, {}});
    EXPECT_EQ(launchctl.run({"print"}), -1);
    EXPECT_EQ(spawner->polls, 600);
    EXPECT_EQ(spawner->sleptMilliseconds, 599 * 5);
    EXPECT_EQ(spawner->kills, 1);
}

TEST_F(LaunchctlTest, OneEndingOnTheLastPollIsNotKilled) {
    spawner->next.push_back({true, 599, {false, 0}});
    EXPECT_EQ(launchctl.run({"print"}), 0);
    EXPECT_EQ(spawner->kills, 0);
}

namespace {

/// Stand-in programs for launchctl, written as shell scripts.
class PosixLaunchctlTest : public ::testing::Test {
protected:
    TestSupport::TemporaryFolder folder;

    HalvoraPlatform::Launchctl standIn(const std::string& name, const std::string& body) {
        const auto path = folder / name;
        std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return HalvoraPlatform::Launchctl(std::make_shared<HalvoraPlatform::PosixProcessSpawner>(), path.string());
    }
};

} // namespace

TEST_F(PosixLaunchctlTest, TheExitCodeOfTheProgramComesBack) {
    EXPECT_EQ(standIn("ok", "exit 0").run({"print", "gui/0/x"}), 0);
    EXPECT_EQ(standIn("missing", "exit 113").run({"print", "gui/0/x"}), 113);
}

TEST_F(PosixLaunchctlTest, TheArgumentsArriveOneByOneWithoutAShell) {
    const auto marker = (folder / "args").string();
    EXPECT_EQ(
        standIn("args", "printf '%s|' \"$@\" > '" + marker + "'").run({"print", "gui/501/a b;c"}),
        0);
    std::ifstream in(marker);
    std::string written((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(written, "print|gui/501/a b;c|");
}

TEST_F(PosixLaunchctlTest, ItsOutputAndErrorsGoNowhere) {
    EXPECT_EQ(
        standIn("quiet",
                "[ /dev/stdout -ef /dev/null ] && [ /dev/stderr -ef /dev/null ] && exit 0\nexit 9")
            .run({}),
        0);
}

TEST_F(PosixLaunchctlTest, AProgramEndedByASignalOrMissingIsMinusOne) {
    EXPECT_EQ(standIn("killed", "kill -9 $$").run({}), -1);
    EXPECT_EQ(HalvoraPlatform::Launchctl(std::make_shared<HalvoraPlatform::PosixProcessSpawner>(),
                        (folder / "none").string())
                  .run({}),
              -1);
}

TEST_F(PosixLaunchctlTest, AProgramThatHangsIsKilledAndReaped) {
    const auto pidFile = (folder / "pid").string();
    EXPECT_EQ(standIn("hang", "echo $$ > '" + pidFile + "'\nexec sleep 60").run({"print"}), -1);
    std::ifstream in(pidFile);
    int pid = 0;
    in >> pid;
    ASSERT_GT(pid, 0);
    errno = 0;
    EXPECT_EQ(::kill(pid, 0), -1) << "the stand-in is gone";
    EXPECT_EQ(errno, ESRCH) << "and reaped, not left a zombie";
}
