#pragma once

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/DisplaySystem.hpp>
#include <HalvoraCore/SettingsRecords.hpp>
#include <HalvoraCore/SettingsStore.hpp>
#include <HalvoraCore/UnconfirmedOverride.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace HalvoraCore {

/// The saved per-monitor records, kept in step with the settings store, and
/// the attached displays seen through them: each display with its EDID read
/// once and its monitor's record.
class MonitorRecords {
public:
    /// Loads the records from the store. `layout` is how overrides are built.
    MonitorRecords(std::shared_ptr<DisplaySystem> system, std::shared_ptr<SettingsStore> store,
                   EDIDKit::SplitLayout layout);

    const SettingsRecords& records() const { return records_; }
    const std::vector<DisplaySettings>& list() const { return records_.list(); }
    /// The record saved under `key`, if any.
    std::optional<DisplaySettings> record(const DisplayIdentity& key) const { return records_.lookup(key); }

    /// The override on a display waiting for the user's confirmation, or
    /// nothing: while it is there, that display belongs to its record.
    void noteUnconfirmed(std::optional<UnconfirmedOverride> unconfirmed) { unconfirmed_ = std::move(unconfirmed); }

    /// A fresh snapshot of the attached external displays.
    std::vector<ExternalDisplay> displays() const { return system_->externalDisplays(); }
    std::optional<ExternalDisplay> display(const DisplayID& id) const;
    /// The display with its EDID and record (found by SettingsRecords::match);
    /// nothing when its EDID is unreadable.
    std::optional<AttachedMonitor> view(const ExternalDisplay& display) const;
    /// The attached display `id` seen the same way; nothing when it is gone.
    std::optional<AttachedMonitor> monitor(const DisplayID& id) const;
    /// What the display reports now; nothing when it is not attached.
    std::optional<EDIDKit::Bytes> reportedEDID(const DisplayID& id) const;

    /// The only way a record changes: edit it, move it to the end of the list
    /// and save the whole list. Creates the record with `creatingWith` as its
    /// native resolution when the monitor has none; without it, an unknown
    /// monitor is left alone.
    void update(const AttachedMonitor& monitor, std::optional<EDIDKit::Resolution> creatingWith,
                const std::function<void(DisplaySettings&)>& change);
    /// Edits the record `key` (never creating one): the way a change saves
    /// into the record it was made for, wherever its monitor is now. False
    /// when there is no such record.
    bool updateRecord(const DisplayIdentity& key, const std::optional<std::string>& port,
                      const std::function<void(DisplaySettings&)>& change);
    /// Saves the mode as the display's last mode.
    void rememberMode(const DisplayMode& mode, const DisplayID& id);
    /// Replaces every record, and saves them.
    void replace(SettingsRecords records);

private:
    std::shared_ptr<DisplaySystem> system_;
    std::shared_ptr<SettingsStore> store_;
    EDIDKit::SplitLayout layout_;
    SettingsRecords records_;
    std::optional<UnconfirmedOverride> unconfirmed_;
};

} // namespace HalvoraCore
