// What the halvora command reads and writes on real files: it writes only to
// a new path, a regular file (through any symbolic links) or standard output,
// checks every write, and reads no input without end.

#include "DescriptorOutput.hpp"
#include "HalvoraRun.hpp"
#include "Process.hpp"
#include "SimulatorRun.hpp"
#include "TemporaryFolder.hpp"

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDText.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace HalvoraTesting;
using EDIDKit::Bytes;
using EDIDKit::EDID;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

EDID splitOfUltrawide() {
    return EDID(ultrawide()).addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440});
}

class HalvoraFiles : public ::testing::Test {
protected:
    std::string input() {
        const auto path = folder / "uw.bin";
        TestSupport::writeFile(path, asString(ultrawide()));
        return path.string();
    }
    Outcome splitTo(const fs::path& out) { return halvora({"split", input(), "-o", out.string()}); }
    TestSupport::TemporaryFolder folder;
};

fs::perms permissionsOf(const fs::path& path) {
    return fs::status(path).permissions() & fs::perms::mask;
}

} // namespace

TEST_F(HalvoraFiles, ASymbolicLinkIsFollowedItsFileReplacedAndTheLinkKept) {
    TestSupport::writeFile(folder / "target.bin", "old");
    fs::create_symlink("target.bin", folder / "link.bin");
    const Outcome r = splitTo(folder / "link.bin");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::is_symlink(folder / "link.bin"));
    EXPECT_EQ(EDID(asBytes(TestSupport::readFile(folder / "target.bin"))), splitOfUltrawide());
}

TEST_F(HalvoraFiles, AChainOfLinksIsFollowedToItsEnd) {
    fs::create_directory(folder / "deeper");
    TestSupport::writeFile(folder / "deeper" / "target.bin", "old");
    fs::create_symlink("deeper/target.bin", folder / "second.bin");
    fs::create_symlink(folder / "second.bin", folder / "first.bin");
    ASSERT_EQ(splitTo(folder / "first.bin").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "first.bin"));
    EXPECT_TRUE(fs::is_symlink(folder / "second.bin"));
    EXPECT_EQ(EDID(asBytes(TestSupport::readFile(folder / "deeper" / "target.bin"))),
              splitOfUltrawide());
}

TEST_F(HalvoraFiles, ALinkToAFileNotYetThereCreatesThatFile) {
    fs::create_symlink("made.bin", folder / "link.bin");
    ASSERT_EQ(splitTo(folder / "link.bin").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.bin"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "made.bin")));
    EXPECT_EQ(EDID(asBytes(TestSupport::readFile(folder / "made.bin"))), splitOfUltrawide());
}

TEST_F(HalvoraFiles, ALinkLoopIsRefusedAndWritesNothing) {
    fs::create_symlink("b.bin", folder / "a.bin");
    fs::create_symlink("a.bin", folder / "b.bin");
    const Outcome r = splitTo(folder / "a.bin");
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(r.err, HasSubstr("it is a loop of symbolic links"));
    EXPECT_TRUE(fs::is_symlink(folder / "a.bin"));
}

TEST_F(HalvoraFiles, StandardErrorByNameIsRefusedSoWhatARedirectionWroteIsKept) {
    // On Linux /dev/stderr leads through /proc to the file a shell redirected
    // standard error to; replacing it would lose what was written there.
    if (!fs::is_symlink("/dev/stderr")) GTEST_SKIP() << "/dev/stderr is not a link here";
    const Outcome r = splitTo("/dev/stderr");
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(r.err, HasSubstr("it leads to a device or an open descriptor"));
}

TEST_F(HalvoraFiles, TheShortAndTheLongOutputOptionTogetherAreBadUsage) {
    const Outcome r = halvora({"split", input(), "-o", (folder / "a.bin").string(), "--output",
                               (folder / "b.bin").string()});
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(r.err, HasSubstr("give -o or --output, not both"));
    EXPECT_FALSE(fs::exists(folder / "a.bin"));
    EXPECT_FALSE(fs::exists(folder / "b.bin"));
}

TEST_F(HalvoraFiles, ALinkToADeviceIsRefusedAndLeftAsItWas) {
    fs::create_symlink("/dev/null", folder / "null.bin");
    const Outcome r = splitTo(folder / "null.bin");
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(
        r.err,
        HasSubstr("null.bin: it is a device; the output must be a new or regular file, or - for "
                  "standard output"));
    EXPECT_TRUE(fs::is_symlink(folder / "null.bin"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(HalvoraFiles, AFIFOIsRefusedAndLeftAsItWas) {
    const fs::path fifo = folder / "pipe";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0) << std::strerror(errno);
    const Outcome r = splitTo(fifo);
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(r.err, HasSubstr("it is a FIFO (named pipe)"));
    EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST_F(HalvoraFiles, ASocketIsRefusedAndLeftAsItWas) {
    const fs::path socketPath = folder / "socket";
    const int s = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(s, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socketPath.string().size(), sizeof address.sun_path);
    std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(s, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0)
        << std::strerror(errno);
    const Outcome r = splitTo(socketPath);
    ::close(s);
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(r.err, HasSubstr("it is a socket"));
    EXPECT_TRUE(fs::is_socket(socketPath));
}

TEST_F(HalvoraFiles, AFolderIsRefusedWithOrWithoutItsSlash) {
    fs::create_directory(folder / "out");
    const std::string out = (folder / "out").string();
    const Outcome r = halvora({"split", input(), "-o", out});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "halvora: not writing to " + out +
                         ": it is a folder; the output must be a new or regular file, or - for "
                         "standard output\n");
    const Outcome slash = halvora({"split", input(), "-o", out + "/"});
    EXPECT_EQ(slash.status, 2);
    EXPECT_EQ(
        slash.err,
        "halvora: not writing to " + out +
            "/: it names a folder; the output must be a new or regular file, or - for standard "
            "output\n");
    EXPECT_TRUE(fs::is_empty(folder / "out"));
}

TEST_F(HalvoraFiles, APathEndingInASlashIsRefusedBeforeAnythingIsRead) {
    const std::string out = (folder / "new").string() + "/";
    const Outcome r = halvora({"merge", "absent-full.bin", "absent-split.bin", "-o", out});
    EXPECT_EQ(r.status, 2);
    EXPECT_THAT(r.err, HasSubstr("it names a folder"));
    EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(HalvoraFiles, AReplacedFileKeepsItsPermissions) {
    for (const fs::perms perms :
         {fs::perms::owner_read | fs::perms::owner_write,
          fs::perms::owner_all | fs::perms::group_read | fs::perms::others_exec}) {
        const fs::path out = folder / "kept.bin";
        TestSupport::writeFile(out, "old");
        fs::permissions(out, perms);
        ASSERT_EQ(splitTo(out).status, 0);
        EXPECT_EQ(permissionsOf(out), perms);
        EXPECT_EQ(EDID(asBytes(TestSupport::readFile(out))), splitOfUltrawide());
    }
}

TEST_F(HalvoraFiles, AFileReachedThroughALinkKeepsItsPermissions) {
    TestSupport::writeFile(folder / "target.bin", "old");
    fs::permissions(folder / "target.bin", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("target.bin", folder / "link.bin");
    ASSERT_EQ(splitTo(folder / "link.bin").status, 0);
    EXPECT_EQ(permissionsOf(folder / "target.bin"), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(HalvoraFiles, DashWritesToStandardOutput) {
    const Outcome r = halvora({"split", input(), "-o", "-"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(EDID(asBytes(r.out)), splitOfUltrawide());
}

namespace {

/// `halvora ARGS` with standard output on a descriptor, through the stream
/// buffer the program uses.
Outcome halvoraWritingTo(int descriptor, std::vector<std::string> args) {
    std::istringstream in;
    std::ostringstream err;
    int status = 0;
    {
        Halvora::DescriptorOutput buffer(descriptor);
        std::ostream out(&buffer);
        Halvora::CliIO io{in, out, err, false, false, [&] { return buffer.failure(); }};
        status = Halvora::runHalvora(args, io);
    }
    return {status, "", err.str()};
}

} // namespace

TEST_F(HalvoraFiles, AFullDeviceOnStandardOutputFailsWithTheReason) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (full < 0) GTEST_SKIP() << "this machine has no /dev/full";
    const std::string in = input();
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"decode", in},
                                               {"decode", "--json", in},
                                               {"split", in},
                                               {"split", in, "--hex"},
                                               {"cvt", "1720", "1440"}}) {
        const Outcome r = halvoraWritingTo(full, args);
        EXPECT_EQ(r.status, 1) << args.front();
        EXPECT_TRUE(
            r.err.ends_with("halvora: cannot write to standard output: No space left on device\n"))
            << args.front() << ": " << r.err;
    }
    ::close(full);
}

TEST_F(HalvoraFiles, TheProgramReportsAFullStandardOutput) {
    const fs::path program = HALVORA_PROGRAM;
    const auto run = TestSupport::runProcess(
        {"/bin/sh", "-c", "\"$0\" decode \"$1\" > /dev/full", program.string(), input()});
    ASSERT_TRUE(run);
    EXPECT_EQ(run->exitStatus, 1);
    EXPECT_EQ(run->errors, "halvora: cannot write to standard output: No space left on device\n");
}

TEST_F(HalvoraFiles, EverythingWrittenThroughTheDescriptorArrives) {
    const fs::path out = folder / "out.txt";
    const int descriptor = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ASSERT_GE(descriptor, 0);
    std::string expected;
    for (int i = 0; i < 20000; ++i)
        expected += "line " + std::to_string(i) + "\n";
    {
        Halvora::DescriptorOutput buffer(descriptor);
        std::ostream stream(&buffer);
        stream << expected.substr(0, 1000) << std::flush << expected.substr(1000);
        EXPECT_TRUE(stream);
        EXPECT_EQ(buffer.failure(), "");
    }
    ::close(descriptor);
    EXPECT_EQ(TestSupport::readFile(out), expected);
}

TEST_F(HalvoraFiles, AnEndlessDeviceAsInputIsRefusedWithoutBeingRead) {
    if (!fs::exists("/dev/zero")) GTEST_SKIP() << "this machine has no /dev/zero";
    const Outcome r = halvora({"decode", "/dev/zero"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "halvora: /dev/zero: cannot read: it is not a regular file\n");
}

TEST_F(HalvoraFiles, AFileOverOneMebibyteIsNotAnEDID) {
    const auto big = folder / "big.bin";
    TestSupport::writeFile(big, std::string((1 << 20) + 1, '\0'));
    const Outcome r = halvora({"decode", big.string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "halvora: " + big.string() + ": not an EDID: more than 1 MiB of data\n");
}

TEST_F(HalvoraFiles, AFolderAsInputSaysSo) {
    const Outcome r = halvora({"decode", folder.path().string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "halvora: " + folder.path().string() + ": cannot read: it is a folder\n");
}

namespace {

std::string rigWithFull(const std::string& full) {
    return R"({"monitors":[{"name":"u34","full":")" + full + R"(","behavior":"latchedAtPlug"}]})";
}

} // namespace

TEST_F(HalvoraFiles, AnEndlessDeviceAsARigsEDIDStopsAtTheLimit) {
    if (!fs::exists("/dev/zero")) GTEST_SKIP() << "this machine has no /dev/zero";
    TestSupport::writeFile(folder / "rig.json", rigWithFull("/dev/zero"));
    const auto run =
        SimulatorTesting::simulate({"--rig", (folder / "rig.json").string()}, "state\n");
    EXPECT_EQ(run.status, 1);
    // Refused without being read: it is not a regular file.
    EXPECT_THAT(run.err, HasSubstr("cannot read /dev/zero: it is not a regular file"));
}

TEST_F(HalvoraFiles, AFolderAsARigsEDIDSaysSo) {
    fs::create_directory(folder / "edids");
    TestSupport::writeFile(folder / "rig.json", rigWithFull("edids"));
    const auto run =
        SimulatorTesting::simulate({"--rig", (folder / "rig.json").string()}, "state\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("edids: it is a folder"));
}
