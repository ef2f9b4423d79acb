#pragma once

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/EDIDError.hpp>
#include <utility>
#include <variant>

namespace EDIDKit {

/// What a rewrite gives without throwing: the new EDID, or the reason it
/// cannot be made, the very EDIDError the throwing form of the rewrite throws.
class RewriteResult {
public:
    RewriteResult(EDID edid) : outcome_(std::move(edid)) {}
    RewriteResult(EDIDError error) : outcome_(std::move(error)) {}

    bool hasValue() const noexcept { return std::holds_alternative<EDID>(outcome_); }
    explicit operator bool() const noexcept { return hasValue(); }

    /// The rewritten EDID; throws the reason when there is none.
    const EDID& value() const& {
        if (const EDID* edid = std::get_if<EDID>(&outcome_)) return *edid;
        throw std::get<EDIDError>(outcome_);
    }
    EDID value() && {
        if (EDID* edid = std::get_if<EDID>(&outcome_)) return std::move(*edid);
        throw std::get<EDIDError>(outcome_);
    }
    const EDID& operator*() const& { return value(); }
    const EDID* operator->() const { return &value(); }

    /// Why the rewrite cannot be made; null when it was made.
    const EDIDError* error() const noexcept { return std::get_if<EDIDError>(&outcome_); }

private:
    std::variant<EDID, EDIDError> outcome_;
};

} // namespace EDIDKit
