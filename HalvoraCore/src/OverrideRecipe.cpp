#include <HalvoraCore/OverrideRecipe.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/RewriteResult.hpp>

namespace HalvoraCore {

using EDIDKit::Bytes;
using EDIDKit::EDID;

std::optional<Bytes> mergedOverride(const DisplaySettings& s) {
    if (s.behavior && *s.behavior != PBPBehavior::latchedAtPlug) return std::nullopt;
    if (!s.factoryFullEDID || !s.factorySplitEDID) return std::nullopt;
    const auto full = EDID::tryParse(*s.factoryFullEDID);
    const auto split = EDID::tryParse(*s.factorySplitEDID);
    if (!full || !split) return std::nullopt;
    try {
        return full->mergingSplitVersion(*split).bytes();
    } catch (const EDIDKit::EDIDError&) {
        return std::nullopt;
    }
}

Bytes splitTarget(const EDID& reported, const DisplaySettings& settings,
                  EDIDKit::SplitLayout layout) {
    if (auto merged = mergedOverride(settings)) return std::move(*merged);
    auto split = reported.tryAddingSplit(layout, settings.native);
    if (!split) throw SplitError::cannotAddSplit(*split.error());
    return split->bytes();
}

Bytes splitTarget(const AttachedMonitor& m, EDIDKit::SplitLayout layout) {
    if (!m.settings) throw SplitError::notIdentified();
    // Built on our override as it was written, not on the copy the port handed back.
    const auto written = m.ourEDID ? EDID::tryParse(*m.ourEDID) : std::nullopt;
    return splitTarget(written ? *written : m.edid, *m.settings, layout);
}

} // namespace HalvoraCore
