#pragma once

#include <HalvoraCore/AttachedMonitor.hpp>
#include <HalvoraCore/DisplaySystem.hpp>
#include <HalvoraCore/SettingsRecords.hpp>
#include <HalvoraCore/SettingsStore.hpp>

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
    /// Loads the records from the store.
    MonitorRecords(std::shared_ptr<DisplaySystem> system, std::shared_ptr<SettingsStore> store);

    const SettingsRecords& records() const { return records_; }
    const std::vector<DisplaySettings>& list() const { return records_.list(); }
    std::optional<DisplaySettings> lookup(const EDIDKit::EDID& edid) const { return records_.lookup(edid); }

    /// A fresh snapshot of the attached external displays.
    std::vector<ExternalDisplay> displays() const { return system_->externalDisplays(); }
    std::optional<ExternalDisplay> display(const DisplayID& id) const;
    /// The display with its EDID and record; nothing when its EDID is unreadable.
    std::optional<AttachedMonitor> view(const ExternalDisplay& display) const;
    /// The attached display `id` seen the same way; nothing when it is gone.
    std::optional<AttachedMonitor> monitor(const DisplayID& id) const;
    /// What the display reports now; nothing when it is not attached.
    std::optional<EDIDKit::Bytes> reportedEDID(const DisplayID& id) const;
    /// Whether `edid` is the override saved for its monitor.
    bool isSavedOverride(const EDIDKit::Bytes& edid) const;

    /// The only way a record changes: edit it, move it to the end of the list
    /// and save the whole list. Creates the record with `creatingWith` as its
    /// native resolution when the monitor has none; without it, an unknown
    /// monitor is left alone.
    void update(const AttachedMonitor& monitor, std::optional<EDIDKit::Resolution> creatingWith,
                const std::function<void(DisplaySettings&)>& change);
    /// Saves an override the user kept on the display, and the mode from before it.
    void keepOverride(const DisplayID& id, const EDIDKit::Bytes& edid, const std::optional<DisplayMode>& previousMode);
    /// Saves the mode as the display's last mode.
    void rememberMode(const DisplayMode& mode, const DisplayID& id);
    /// Replaces every record, and saves them.
    void replace(SettingsRecords records);

private:
    std::shared_ptr<DisplaySystem> system_;
    std::shared_ptr<SettingsStore> store_;
    SettingsRecords records_;
};

} // namespace HalvoraCore
