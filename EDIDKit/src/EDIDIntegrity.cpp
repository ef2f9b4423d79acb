#include "EDIDLayout.hpp"

#include <EDIDKit/EDIDIntegrity.hpp>
#include <cstdio>

namespace EDIDKit {

namespace {

std::string hexByte(std::uint8_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02x", value);
    return text;
}

std::string blocks(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " extension block" : " extension blocks");
}

} // namespace

EDIDIntegrity EDIDIntegrity::of(const EDID& edid) {
    const Bytes& bytes = edid.bytes();
    EDIDIntegrity integrity;
    for (std::size_t block = 0; block < edid.blockCount(); ++block) {
        const std::size_t start = block * Layout::blockSize;
        const std::uint8_t expected = blockChecksum(bytes, start);
        const std::uint8_t stored = bytes[start + Layout::checksumOffset];
        if (stored != expected) integrity.badChecksums.push_back({block, stored, expected});
    }
    integrity.specifiedExtensions = bytes[Layout::extensionCountOffset];
    integrity.presentExtensions = edid.blockCount() - 1;
    return integrity;
}

std::vector<std::string> EDIDIntegrity::checksumProblems() const {
    std::vector<std::string> problems;
    for (const BlockChecksumError& e : badChecksums)
        problems.push_back("block " + std::to_string(e.block) + " has checksum " +
                           hexByte(e.stored) + " (should be " + hexByte(e.expected) + ")");
    return problems;
}

std::string EDIDIntegrity::extensionCountProblem() const {
    if (extensionCountAgrees()) return "";
    return "the base block specifies " + blocks(specifiedExtensions) + ", but " +
           std::to_string(presentExtensions) + (presentExtensions == 1 ? " is" : " are") +
           " present";
}

} // namespace EDIDKit
