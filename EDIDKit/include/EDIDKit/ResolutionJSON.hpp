#pragma once

// JSON coding of Resolution: an object with the integer keys "width" and
// "height". Kept out of Resolution.hpp so that EDIDKit itself needs no JSON
// library; include this where Resolution is written to or read from JSON.

#include <EDIDKit/Resolution.hpp>

#include <nlohmann/json.hpp>

namespace EDIDKit {

template <typename BasicJson> void to_json(BasicJson& j, const Resolution& r) {
    j = BasicJson{{"width", r.width}, {"height", r.height}};
}

/// Throws nlohmann::json::exception when a key is missing or not an integer.
template <typename BasicJson> void from_json(const BasicJson& j, Resolution& r) {
    const auto& width = j.at("width");
    const auto& height = j.at("height");
    if (!width.is_number_integer() || !height.is_number_integer())
        throw nlohmann::json::type_error::create(302, "resolution width and height must be integers",
                                                 &j);
    r = Resolution{width.template get<int>(), height.template get<int>()};
}

} // namespace EDIDKit
