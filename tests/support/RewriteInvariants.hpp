#pragma once

#include <EDIDKit/EDID.hpp>

#include <optional>
#include <string>

namespace TestSupport {

/// What must hold after every successful rewrite of an EDID: the same length,
/// a result that re-validates, only the base block (when `baseMayChange`) and
/// at most `maxCTABlocks` CTA-861 blocks changed, every changed block's
/// checksum holding, a valid input staying valid, and the DisplayID timings
/// untouched. Returns what was broken, or nothing.
std::optional<std::string> rewriteViolation(const EDIDKit::EDID& before, const EDIDKit::EDID& after,
                                            bool baseMayChange, std::size_t maxCTABlocks);

} // namespace TestSupport
