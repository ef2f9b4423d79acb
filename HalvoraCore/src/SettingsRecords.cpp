#include <HalvoraCore/SettingsRecords.hpp>

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/OverrideRecipe.hpp>

#include <EDIDKit/EDIDComparison.hpp>
#include <EDIDKit/RewriteResult.hpp>

#include <algorithm>

namespace HalvoraCore {

using EDIDKit::Bytes;
using EDIDKit::EDID;
using EDIDKit::sameApartFromIdentity;

namespace {

/// Of the records `candidate` says the shown EDID is ours for, the one it
/// most likely belongs to: units of one model have overrides that differ only
/// in identity, so the identity reported (where the port kept it), or else
/// the port the monitor was last seen on, tells them apart; then the first.
template <typename Candidate>
std::optional<SettingsRecords::Match> bestOf(const std::vector<DisplaySettings>& list, const ExternalDisplay& display,
                                             const DisplayIdentity& reported, Candidate candidate) {
    std::optional<SettingsRecords::Match> best;
    int bestScore = -1;
    for (const auto& s : list) {
        auto written = candidate(s);
        if (!written) continue;
        const int score = (s.identity == reported ? 2 : 0) + (display.port && s.port == display.port ? 1 : 0);
        if (score > bestScore) {
            best = SettingsRecords::Match{s.identity, std::move(written)};
            bestScore = score;
        }
    }
    return best;
}

} // namespace

SettingsRecords::Match SettingsRecords::match(const ExternalDisplay& display, const EDID& reported,
                                              const UnconfirmedOverride* unconfirmed,
                                              EDIDKit::SplitLayout layout) const {
    const Bytes& shown = display.edid;
    const bool unconfirmedHere = unconfirmed && unconfirmed->display == display.id;
    if (unconfirmedHere && unconfirmed->edid == shown) return {unconfirmed->record, shown};
    for (const auto& s : list_)
        if (s.overrideEDID == shown) return {s.identity, shown};
    if (unconfirmedHere && sameApartFromIdentity(unconfirmed->edid, shown))
        return {unconfirmed->record, unconfirmed->edid};
    // A saved override handed back with another serial number (or a
    // recomputed or broken checksum).
    const DisplayIdentity identity = DisplayIdentity::of(reported);
    if (auto saved = bestOf(list_, display, identity, [&](const DisplaySettings& s) -> std::optional<Bytes> {
            if (s.overrideEDID && sameApartFromIdentity(*s.overrideEDID, shown)) return s.overrideEDID;
            return std::nullopt;
        }))
        return std::move(*saved);
    // An override built the way ours are but never saved (one a run that
    // ended before it was confirmed left behind), as written or handed back.
    if (const DisplaySettings* named = find(identity)) return {identity, rebuiltOverrideShown(shown, *named, layout)};
    if (auto rebuilt = bestOf(list_, display, identity,
                              [&](const DisplaySettings& s) { return rebuiltOverrideShown(shown, s, layout); }))
        return std::move(*rebuilt);
    return {identity, std::nullopt};
}

const DisplaySettings* SettingsRecords::find(const DisplayIdentity& key) const {
    for (const auto& s : list_)
        if (s.identity == key) return &s;
    return nullptr;
}

std::optional<DisplaySettings> SettingsRecords::lookup(const DisplayIdentity& key) const {
    if (const DisplaySettings* record = find(key)) return *record;
    return std::nullopt;
}

std::optional<SettingsRecords> SettingsRecords::updated(const DisplayIdentity& key,
                                                        const std::optional<std::string>& port,
                                                        std::optional<EDIDKit::Resolution> creatingWith,
                                                        const std::function<void(DisplaySettings&)>& change) const {
    std::optional<DisplaySettings> record = lookup(key);
    if (!record) {
        if (!creatingWith) return std::nullopt;
        record = DisplaySettings(key, port, *creatingWith);
    }
    if (port) record->port = port;
    change(*record);
    SettingsRecords next = *this;
    std::erase_if(next.list_, [&](const DisplaySettings& s) { return s.identity == key; });
    next.list_.push_back(std::move(*record));
    return next;
}

SettingsRecords SettingsRecords::reset(const std::vector<DisplayIdentity>& untouched) const {
    SettingsRecords next = *this;
    for (DisplaySettings& s : next.list_) {
        if (std::find(untouched.begin(), untouched.end(), s.identity) != untouched.end()) continue;
        s.overrideEDID.reset();
        s.lastMode.reset();
    }
    return next;
}

bool showsOverride(const Bytes& reported, const DisplaySettings& settings) {
    return settings.overrideEDID && sameApartFromIdentity(reported, *settings.overrideEDID);
}

std::optional<Bytes> rebuiltOverrideShown(const Bytes& bytes, const DisplaySettings& settings,
                                          EDIDKit::SplitLayout layout) {
    // An EDID the monitor itself reported is never ours, even where one of our
    // rebuilds below would come out the same; nor is another unit's of its model.
    for (const auto& factory : {settings.factoryFullEDID, settings.factorySplitEDID})
        if (factory && sameApartFromIdentity(*factory, bytes)) return std::nullopt;
    if (auto merged = mergedOverride(settings); merged && sameApartFromIdentity(*merged, bytes)) return merged;
    if (!settings.factoryFullEDID) return std::nullopt;
    const auto full = EDID::tryParse(*settings.factoryFullEDID);
    if (!full) return std::nullopt;
    const auto built = full->tryAddingSplit(layout, settings.native);
    if (built && sameApartFromIdentity(built->bytes(), bytes)) return built->bytes();
    return std::nullopt;
}

bool isOverrideFor(const Bytes& bytes, const DisplaySettings& settings, EDIDKit::SplitLayout layout) {
    return showsOverride(bytes, settings) || rebuiltOverrideShown(bytes, settings, layout).has_value();
}

std::optional<FactorySlot> factorySlotFor(const EDID& reported, const DisplaySettings& settings,
                                          EDIDKit::SplitLayout layout) {
    if (reported.nativeResolution() == settings.native && settings.factoryFullEDID != reported.bytes())
        return FactorySlot::full;
    // The picture-by-picture EDID is the one whose own preference is the split.
    // A superwide's full EDID may list the split size first in its base block
    // while preferring the whole panel in DisplayID: that one is not it.
    if (reported.monitorPreferredResolution() == layout.splitResolution(settings.native) &&
        settings.factorySplitEDID != reported.bytes())
        return FactorySlot::split;
    return std::nullopt;
}

} // namespace HalvoraCore
