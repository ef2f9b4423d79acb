// The split EDID written for every wide panel of the corpus is checked with
// the reference decoder's conformance check: it must add no failure that the
// monitor's own EDID did not already have.

#include "Corpus.hpp"

#include "Process.hpp"
#include "TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <cctype>
#include <sstream>

using namespace CorpusSupport;
using EDIDKit::EDID;
using EDIDKit::Resolution;

namespace {

/// edid-decode --check failures as (block, message without its numbers) with
/// a count: each detail line of a failure counts on its own, so an output that
/// repeats a failure or adds a detail to one shows as new.
using Failures = std::map<std::pair<std::string, std::string>, int>;

/// The message with every number (decimal, with an optional fraction, or
/// 0x-prefixed hex) replaced by "#": descriptor numbers shift when a rewrite
/// adds a descriptor.
std::string shape(const std::string& message) {
    std::string out;
    const auto digit = [&](std::size_t i) { return i < message.size() && std::isdigit(static_cast<unsigned char>(message[i])); };
    for (std::size_t i = 0; i < message.size();) {
        if (message.compare(i, 2, "0x") == 0 && i + 2 < message.size() &&
            std::isxdigit(static_cast<unsigned char>(message[i + 2]))) {
            i += 2;
            while (i < message.size() && std::isxdigit(static_cast<unsigned char>(message[i]))) ++i;
            out += '#';
        } else if (digit(i)) {
            while (digit(i)) ++i;
            if (i + 1 < message.size() && message[i] == '.' && digit(i + 1))
                for (++i; digit(i); ++i) {
                }
            out += '#';
        } else {
            out += message[i++];
        }
    }
    return out;
}

/// "Block 1, CTA-861 Extension Block:" or "EDID:" names the block that the
/// failures below it belong to.
std::optional<std::string> blockName(const std::string& line) {
    if (line == "EDID:" || (line.starts_with("Block ") && line.ends_with(":") && line.find(", ") != std::string::npos))
        return line.substr(0, line.size() - 1);
    return std::nullopt;
}

std::optional<Failures> conformanceFailures(const std::filesystem::path& file) {
    const auto run = TestSupport::runProcess({"edid-decode", "--check", file.string()});
    if (!run || run->output.find("EDID conformity:") == std::string::npos) return std::nullopt;
    Failures failures;
    const auto start = run->output.find("\nFailures:\n");
    if (start == std::string::npos) return failures;
    const auto end = run->output.find("\nEDID conformity:", start);
    std::istringstream section(run->output.substr(start + 11, end - start - 11));
    std::string block = "?";
    std::vector<std::string> message;
    const auto flush = [&] {
        for (std::size_t i = 0; i < message.size(); ++i)
            ++failures[{block, shape(i == 0 ? message[0] : message[0] + " / " + message[i])}];
        message.clear();
    };
    for (std::string line; std::getline(section, line);) {
        if (line.find_first_not_of(" \t") == std::string::npos) continue;
        if (const auto name = blockName(line)) {
            flush();
            block = *name;
        } else if (line.starts_with("  ") && !line.starts_with("   ")) {
            flush();
            message.push_back(line.substr(2));
        } else if (!message.empty()) {
            message.push_back(line.substr(line.find_first_not_of(" \t")));
        }
    }
    flush();
    return failures;
}

bool isWidePanel(Resolution r) {
    const auto& table = Resolution::commonNatives();
    return std::find(table.begin(), table.end(), r) != table.end();
}

} // namespace

TEST(CorpusSplitConformance, SplitEDIDsOfWidePanelsAddNoEdidDecodeFailure) {
    if (!TestSupport::isOnPath("edid-decode"))
        GTEST_SKIP() << "edid-decode is not installed, so split EDIDs were NOT checked for conformance "
                        "(Debian: apt-get install edid-decode; 'make test' installs it)";
    ASSERT_GE(corpus().size(), 300u) << "the EDID corpus is missing or incomplete at " << corpusFolder();
    TestSupport::TemporaryFolder folder;
    int written = 0;
    int unchanged = 0;
    std::map<std::string, int> refused;
    for (const CorpusEDID& c : corpus()) {
        const EDID edid(c.bytes);
        const auto native = edid.nativeResolution();
        if (!native || !isWidePanel(*native)) continue;
        std::optional<EDID> split;
        try {
            split = edid.addingSplit(EDIDKit::SplitLayout::halves, *native);
        } catch (const EDIDKit::EDIDError& error) {
            ++refused[error.description()];
            continue;
        }
        if (*split == edid) {
            ++unchanged;
            continue;
        }
        ++written;
        const auto input = folder / (c.id + ".bin");
        const auto output = folder / (c.id + ".split.bin");
        TestSupport::writeFile(input, std::string(c.bytes.begin(), c.bytes.end()));
        TestSupport::writeFile(output, std::string(split->bytes().begin(), split->bytes().end()));
        const auto before = conformanceFailures(input);
        const auto after = conformanceFailures(output);
        ASSERT_TRUE(before && after) << c.id << ": edid-decode --check gave no verdict";
        for (const auto& [key, count] : *after) {
            const auto was = before->find(key);
            EXPECT_LE(count, was == before->end() ? 0 : was->second)
                << c.id << ": the split EDID adds the failure '" << key.second << "' in " << key.first;
        }
    }
    std::ostringstream summary;
    summary << written << " split EDIDs checked, " << unchanged << " already had both timings";
    for (const auto& [reason, count] : refused) summary << "; " << count << " refused: " << reason;
    RecordProperty("summary", summary.str());
    std::cout << "[          ] " << summary.str() << "\n";
    EXPECT_GT(written, 100) << "too few wide panels were rewritten to mean anything";
}
