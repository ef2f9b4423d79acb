#include <HalvoraCore/FactoryCapture.hpp>

#include <HalvoraCore/SettingsRecords.hpp>

#include <EDIDKit/EDIDComparison.hpp>

namespace HalvoraCore {

bool FactoryCapture::isOwnEDID(const EDIDKit::Bytes& bytes, const std::optional<DisplaySettings>& settings) const {
    if (const auto* applied = pending_.appliedEDID(); applied && EDIDKit::sameApartFromIdentity(*applied, bytes))
        return true;
    return settings && isOverrideFor(bytes, *settings, layout_);
}

bool FactoryCapture::mayBeFactory(const AttachedMonitor& m) const {
    return !m.showsOurs() && !isOwnEDID(m.reported(), m.settings) && !guard_.hasOverrideWritten(m.id());
}

void FactoryCapture::capture(const AttachedMonitor& m) {
    if (!m.settings || !mayBeFactory(m)) return;
    const auto slot = factorySlotFor(m.edid, *m.settings, layout_);
    if (!slot) return;
    monitors_.update(m, std::nullopt, [&](DisplaySettings& s) {
        (*slot == FactorySlot::full ? s.factoryFullEDID : s.factorySplitEDID) = m.reported();
    });
}

std::optional<bool> FactoryCapture::factoryHasSplit(const AttachedMonitor& m) const {
    if (!m.settings) return std::nullopt;
    const EDIDKit::Resolution split = layout_.splitResolution(m.settings->native);
    // The EDID on the display is the monitor's own full-mode EDID when it is
    // not one this system wrote and names the saved native resolution.
    if (mayBeFactory(m) && m.edid.nativeResolution() == m.settings->native) return m.edid.hasTiming(split);
    if (!m.settings->factoryFullEDID) return std::nullopt;
    const auto factory = EDIDKit::EDID::tryParse(*m.settings->factoryFullEDID);
    if (!factory) return std::nullopt;
    return factory->hasTiming(split);
}

} // namespace HalvoraCore
