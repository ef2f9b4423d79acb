#include <HalvoraCore/SettingsRecords.hpp>

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/SplitError.hpp>

#include <EDIDKit/EDIDComparison.hpp>

#include <algorithm>

namespace HalvoraCore {

using EDIDKit::Bytes;
using EDIDKit::EDID;
using EDIDKit::sameApartFromIdentity;

std::optional<EDID> readEDID(const Bytes& bytes) {
    try {
        return EDID(bytes);
    } catch (const EDIDKit::EDIDError&) {
        return std::nullopt;
    }
}

const DisplaySettings* SettingsRecords::find(const EDID& edid) const {
    const DisplayIdentity identity = DisplayIdentity::of(edid);
    for (const auto& s : list_)
        if (s.identity == identity) return &s;
    // An override of ours that the system handed back with another serial
    // number (or manufacturer or product code) still belongs to its monitor.
    for (const auto& s : list_)
        if (s.overrideEDID && sameApartFromIdentity(*s.overrideEDID, edid.bytes())) return &s;
    return nullptr;
}

std::optional<DisplaySettings> SettingsRecords::lookup(const EDID& edid) const {
    if (const DisplaySettings* record = find(edid)) return *record;
    return std::nullopt;
}

std::optional<SettingsRecords> SettingsRecords::updated(const EDID& edid, const std::optional<std::string>& port,
                                                        std::optional<EDIDKit::Resolution> creatingWith,
                                                        const std::function<void(DisplaySettings&)>& change) const {
    const DisplaySettings* found = find(edid);
    const DisplayIdentity identity = found ? found->identity : DisplayIdentity::of(edid);
    std::optional<DisplaySettings> record;
    if (found) record = *found;
    if (!record) {
        if (!creatingWith) return std::nullopt;
        record = DisplaySettings(identity, port, *creatingWith);
    }
    if (port) record->port = port;
    change(*record);
    SettingsRecords next = *this;
    std::erase_if(next.list_, [&](const DisplaySettings& s) { return s.identity == identity; });
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

std::optional<Bytes> mergedOverride(const DisplaySettings& s) {
    if (s.behavior && *s.behavior != PBPBehavior::latchedAtPlug) return std::nullopt;
    if (!s.factoryFullEDID || !s.factorySplitEDID) return std::nullopt;
    const auto full = readEDID(*s.factoryFullEDID);
    const auto split = readEDID(*s.factorySplitEDID);
    if (!full || !split) return std::nullopt;
    try {
        return full->mergingSplitVersion(*split).bytes();
    } catch (const EDIDKit::EDIDError&) {
        return std::nullopt;
    }
}

Bytes splitTarget(const EDID& reported, const DisplaySettings& settings, EDIDKit::SplitLayout layout) {
    if (auto merged = mergedOverride(settings)) return std::move(*merged);
    try {
        return reported.addingSplit(layout, settings.native).bytes();
    } catch (const EDIDKit::EDIDError& error) {
        throw SplitError::cannotAddSplit(error);
    }
}

bool isOverrideFor(const Bytes& bytes, const DisplaySettings& settings, EDIDKit::SplitLayout layout) {
    if (showsOverride(bytes, settings)) return true;
    // An EDID the monitor itself reported is never ours, even where one of our
    // rebuilds below would come out the same.
    if (settings.factoryFullEDID == bytes || settings.factorySplitEDID == bytes) return false;
    // Rebuilt from the saved factory EDIDs the way an override is built: one
    // of ours whose record was since changed (a reset, or a newer merge).
    if (mergedOverride(settings) == bytes) return true;
    if (!settings.factoryFullEDID) return false;
    const auto full = readEDID(*settings.factoryFullEDID);
    if (!full) return false;
    try {
        return full->addingSplit(layout, settings.native).bytes() == bytes;
    } catch (const EDIDKit::EDIDError&) {
        return false;
    }
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
