#pragma once

#include <functional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// The private IOAVService calls behind the display ports' EDIDs. They are
/// not in any public SDK and may be missing from a system, so they are looked
/// up by name at run time (dlsym on a Mac): a system without one of them
/// still launches, and the menu names what is missing.
struct AVServiceSymbols {
    /// Every call used, in the order they are looked up.
    static inline const std::vector<std::string> names{
        "IOAVServiceCreateWithService", "IOAVServiceCopyEDID", "IOAVServiceSetVirtualEDIDMode"};
    /// Finds a symbol by name; null when there is none.
    using Resolver = std::function<const void*(const std::string& name)>;

    /// The names `resolve` finds nothing for, in the order of `names`.
    static std::vector<std::string> missing(const Resolver& resolve);
};

} // namespace HalvoraPlatform
