#pragma once

// The real-EDID corpus beside the repository: each <id>.bin with the values
// an independent decoder (edid-decode) read from it in <id>.json.

#include <EDIDKit/EDID.hpp>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace CorpusSupport {

struct CorpusEDID {
    std::string id;
    EDIDKit::Bytes bytes;
    nlohmann::json expected;

    /// Whether the reference decoder's view of this field differs from the
    /// product's on purpose, with this effect ("skip", "prefix", "entries").
    bool differsByDesign(const std::string& field, const std::string& effect) const;
};

/// The corpus folder (passed in from the build).
std::string corpusFolder();

/// Every EDID of the corpus, sorted by id; empty when the folder is missing.
const std::vector<CorpusEDID>& corpus();

/// What the product must read for a timing as edid-decode printed it: the
/// clock in 10 kHz (a Type VII kHz clock truncated), stored field height for
/// an interlaced timing, blanking = porches + sync + both borders.
EDIDKit::Timing expectedTiming(const nlohmann::json& printed);

} // namespace CorpusSupport
