#pragma once

#include <EDIDKit/EDID.hpp>

#include <cstdint>
#include <functional>

namespace HalvoraCore {

/// Which monitor (model and unit): the only key that ties saved settings to an
/// attached display. Two units of one model with the same serial number share it.
struct DisplayIdentity {
    std::uint32_t vendorID = 0;
    std::uint32_t productID = 0;
    std::uint32_t serialNumber = 0;

    static DisplayIdentity of(const EDIDKit::EDID& edid) {
        return {edid.vendorID(), edid.productID(), edid.serialNumber()};
    }

    friend bool operator==(const DisplayIdentity&, const DisplayIdentity&) = default;
};

} // namespace HalvoraCore

template <> struct std::hash<HalvoraCore::DisplayIdentity> {
    std::size_t operator()(const HalvoraCore::DisplayIdentity& i) const noexcept {
        return (std::size_t{i.vendorID} << 32 | i.productID) * 0x9E3779B97F4A7C15ULL ^ i.serialNumber;
    }
};
