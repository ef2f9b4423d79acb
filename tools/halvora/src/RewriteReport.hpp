#pragma once

#include <EDIDKit/EDID.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Halvora {

/// One 18-byte descriptor slot whose bytes differ between two EDIDs of the
/// same length.
struct SlotChange {
    std::size_t block = 0;         ///< 0 for the base block
    std::size_t offsetInBlock = 0; ///< where the slot starts in its block
    std::optional<EDIDKit::Timing> before;
    std::optional<EDIDKit::Timing> after;
    friend bool operator==(const SlotChange&, const SlotChange&) = default;
};

/// The base block's four slots and every slot of every CTA-861 descriptor area
/// whose bytes differ, in block and offset order.
std::vector<SlotChange> changedSlots(const EDIDKit::EDID& before, const EDIDKit::EDID& after);

/// What a rewrite did, one sentence a line: the native timing promoted (and
/// where the old preferred one went), a timing added in a free slot or in
/// place of another one, or nothing.
std::vector<std::string> describeRewrite(const EDIDKit::EDID& before, const EDIDKit::EDID& after);

} // namespace Halvora
