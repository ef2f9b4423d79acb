#pragma once

#include <string>

namespace HalvoraPlatform {

/// How the two other tools that write override EDIDs are addressed.
namespace OtherOverrideTools {

/// BetterDisplay's bundle identifier, which is also its preferences domain
/// (its Homebrew cask names it so).
inline const std::string betterDisplayBundleID = "pro.betterdisplay.BetterDisplay";
/// BetterDisplay's per-display settings: the automatic EDID override, and the
/// identifiers of the display it belongs to.
inline const std::string autoApplyPrefix = "autoApplyEDIDOverride@";
inline const std::string storedIdentifiersPrefix = "storedIdentifiers@";

} // namespace OtherOverrideTools

} // namespace HalvoraPlatform
