#pragma once

#include <HalvoraCore/DisplayIdentity.hpp>
#include <HalvoraCore/DisplaySettings.hpp>

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

    /// The monitor's record: by the EDID's identity, or else the record whose
    /// override this EDID is, handed back with another identity.
    const DisplaySettings* find(const EDIDKit::EDID& edid) const;
    std::optional<DisplaySettings> lookup(const EDIDKit::EDID& edid) const;

    /// These records with the monitor's record edited by `change` and moved
    /// to the end. The record is created with `creatingWith` as its native
    /// resolution when the monitor has none; without it there is nothing to
    /// change. A known `port` replaces the saved one.
    std::optional<SettingsRecords> updated(const EDIDKit::EDID& edid, const std::optional<std::string>& port,
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

/// The factory full EDID merged with the factory split EDID, for monitors
/// that latch (or are not yet observed) when both are saved.
std::optional<EDIDKit::Bytes> mergedOverride(const DisplaySettings& settings);

/// The override that gives the monitor its split timing: the merged factory
/// EDIDs where there are, else the reported EDID with the split added.
/// Throws SplitError.
EDIDKit::Bytes splitTarget(const EDIDKit::EDID& reported, const DisplaySettings& settings, EDIDKit::SplitLayout layout);

/// Whether these bytes are an override this system writes for the monitor of
/// `settings`: its saved override, or one rebuilt from the saved factory
/// EDIDs the way overrides are built. An EDID the monitor itself reported is
/// never one.
bool isOverrideFor(const EDIDKit::Bytes& bytes, const DisplaySettings& settings, EDIDKit::SplitLayout layout);

/// Which of the monitor's own EDIDs a reported EDID is worth keeping as.
enum class FactorySlot { full, split };

/// Where the monitor's own EDID `reported` belongs in its record: the full
/// EDID when it names the native resolution, the picture-by-picture EDID when
/// it prefers the split; nothing when it is saved there already or is neither.
std::optional<FactorySlot> factorySlotFor(const EDIDKit::EDID& reported, const DisplaySettings& settings,
                                          EDIDKit::SplitLayout layout);

} // namespace HalvoraCore
