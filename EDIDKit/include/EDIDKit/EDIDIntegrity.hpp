#pragma once

#include <EDIDKit/EDID.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace EDIDKit {

/// A block whose last byte does not make it sum to 0 modulo 256.
struct BlockChecksumError {
    std::size_t block = 0;     ///< 0 for the base block
    std::uint8_t stored = 0;   ///< the block's last byte
    std::uint8_t expected = 0; ///< the last byte that would make the block sum to 0
    friend bool operator==(const BlockChecksumError&, const BlockChecksumError&) = default;
};

/// Whether an EDID's blocks hang together: the checksum of every block, and
/// the base block's count of extension blocks against the blocks present.
/// Constructing an EDID checks neither, so that a damaged one can still be
/// read and shown; what is written to a display must pass both.
struct EDIDIntegrity {
    std::vector<BlockChecksumError> badChecksums;
    std::size_t specifiedExtensions = 0; ///< the base block's byte 126
    std::size_t presentExtensions = 0;   ///< the blocks after the base block

    static EDIDIntegrity of(const EDID& edid);

    bool checksumsValid() const { return badChecksums.empty(); }
    bool extensionCountAgrees() const { return specifiedExtensions == presentExtensions; }
    bool isSound() const { return checksumsValid() && extensionCountAgrees(); }

    /// Each wrong checksum in words: "block 1 has checksum 0xff (should be 0xeb)".
    std::vector<std::string> checksumProblems() const;
    /// The disagreement in words, or empty: "the base block specifies 255
    /// extension blocks, but 1 is present".
    std::string extensionCountProblem() const;

    friend bool operator==(const EDIDIntegrity&, const EDIDIntegrity&) = default;
};

} // namespace EDIDKit
