#pragma once

#include <EDIDKit/Bytes.hpp>
#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>

namespace HalvoraCore {

/// An override written to a display that the user has not confirmed yet, with
/// the key of the record it was written for (its monitor's identity, from the
/// record the display belonged to when the change was applied). Whatever the
/// port hands back for it, the display still belongs to that record.
struct UnconfirmedOverride {
    DisplayID display;
    EDIDKit::Bytes edid;
    DisplayIdentity record;

    friend bool operator==(const UnconfirmedOverride&, const UnconfirmedOverride&) = default;
};

} // namespace HalvoraCore
