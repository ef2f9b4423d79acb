#pragma once

#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplaySettings.hpp>
#include <HalvoraCore/ExternalDisplay.hpp>
#include <HalvoraCore/UnconfirmedOverride.hpp>

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SplitLayout.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraCore {

/// The saved per-monitor records, in the order they were last changed. A
/// value: every change returns new records.
class SettingsRecords {
public:
    SettingsRecords() = default;
    explicit SettingsRecords(std::vector<DisplaySettings> list) : list_(std::move(list)) {}

    const std::vector<DisplaySettings>& list() const { return list_; }

    /// Which record an attached display belongs to.
    struct Match {
        /// The record's key: the identity of the monitor's record, or of a
        /// record still to be made for it.
        DisplayIdentity key;
        /// The EDID of ours the display shows (the saved override of that
        /// record, or the unconfirmed one), as it was written: nothing when
        /// it shows none.
        std::optional<EDIDKit::Bytes> ours;
        friend bool operator==(const Match&, const Match&) = default;
    };

    /// The one way an attached display is tied to a record. When the display
    /// shows an EDID of ours, byte for byte or apart from identity bytes and
    /// checksums (as a port may hand it back), the record is the one that EDID
    /// belongs to; in this order: a saved override or `unconfirmed` (when it
    /// was written to this display) byte for byte, `unconfirmed` handed back,
    /// a saved override handed back, an override built from a record's factory
    /// EDIDs the way ours are (one left behind unconfirmed). Among records
    /// alike, the one of the identity reported wins, then the one last seen on
    /// the display's port. Otherwise the record is the one of the identity
    /// `reported` names. So our own override, however it comes back, never
    /// makes a new monitor of its own.
    Match match(const ExternalDisplay& display, const EDIDKit::EDID& reported, const UnconfirmedOverride* unconfirmed,
                EDIDKit::SplitLayout layout) const;
    /// The record saved under `key`, if any.
    const DisplaySettings* find(const DisplayIdentity& key) const;
    std::optional<DisplaySettings> lookup(const DisplayIdentity& key) const;

    /// These records with the record `key` edited by `change` and moved to
    /// the end. The record is created with `creatingWith` as its native
    /// resolution when there is none; without it there is nothing to change.
    /// A known `port` replaces the saved one.
    std::optional<SettingsRecords> updated(const DisplayIdentity& key, const std::optional<std::string>& port,
                                           std::optional<EDIDKit::Resolution> creatingWith,
                                           const std::function<void(DisplaySettings&)>& change) const;

    /// The user's reset: every override and last mode forgotten, except on
    /// the monitors in `untouched` (their displays could not be reset).
    SettingsRecords reset(const std::vector<DisplayIdentity>& untouched) const;

private:
    std::vector<DisplaySettings> list_;
};

/// Whether the reported EDID is the record's override, allowing for a system
/// that changed only its identity or checksums.
bool showsOverride(const EDIDKit::Bytes& reported, const DisplaySettings& settings);

/// The override built from the saved factory EDIDs the way overrides are
/// built (merged, or the full EDID with the split added) that `bytes` are,
/// byte for byte or apart from identity bytes and checksums: one of ours
/// whose record was since changed, or that was never saved. Nothing when
/// they are none, and never for an EDID the monitor itself reports.
std::optional<EDIDKit::Bytes> rebuiltOverrideShown(const EDIDKit::Bytes& bytes, const DisplaySettings& settings,
                                                   EDIDKit::SplitLayout layout);

/// Whether these bytes are an override this system writes for the monitor of
/// `settings`: its saved override, or one rebuilt from the saved factory
/// EDIDs (rebuiltOverrideShown), allowing for other identity bytes and
/// checksums. An EDID the monitor itself reported is never one.
bool isOverrideFor(const EDIDKit::Bytes& bytes, const DisplaySettings& settings, EDIDKit::SplitLayout layout);

/// Which of the monitor's own EDIDs a reported EDID is worth keeping as.
enum class FactorySlot { full, split };

/// Where the monitor's own EDID `reported` belongs in its record: the full
/// EDID when it names the native resolution, the picture-by-picture EDID when
/// it prefers the split; nothing when it is saved there already or is neither.
std::optional<FactorySlot> factorySlotFor(const EDIDKit::EDID& reported, const DisplaySettings& settings,
                                          EDIDKit::SplitLayout layout);

} // namespace HalvoraCore
