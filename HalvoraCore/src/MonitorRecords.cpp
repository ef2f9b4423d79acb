#include <HalvoraCore/MonitorRecords.hpp>

namespace HalvoraCore {

MonitorRecords::MonitorRecords(std::shared_ptr<DisplaySystem> system, std::shared_ptr<SettingsStore> store,
                               EDIDKit::SplitLayout layout)
    : system_(std::move(system)), store_(std::move(store)), layout_(layout), records_(store_->load()) {}

std::optional<ExternalDisplay> MonitorRecords::display(const DisplayID& id) const {
    for (auto& d : system_->externalDisplays())
        if (d.id == id) return std::move(d);
    return std::nullopt;
}

std::optional<AttachedMonitor> MonitorRecords::view(const ExternalDisplay& display) const {
    auto edid = EDIDKit::EDID::tryParse(display.edid);
    if (!edid) return std::nullopt;
    const auto match = records_.match(display, *edid, unconfirmed_ ? &*unconfirmed_ : nullptr, layout_);
    auto settings = records_.lookup(match.key);
    return AttachedMonitor{display, std::move(*edid), std::move(settings), match.key, match.ours};
}

std::optional<AttachedMonitor> MonitorRecords::monitor(const DisplayID& id) const {
    const auto d = display(id);
    if (!d) return std::nullopt;
    return view(*d);
}

std::optional<EDIDKit::Bytes> MonitorRecords::reportedEDID(const DisplayID& id) const {
    if (auto d = display(id)) return std::move(d->edid);
    return std::nullopt;
}

bool MonitorRecords::updateRecord(const DisplayIdentity& key, const std::optional<std::string>& port,
                                  const std::function<void(DisplaySettings&)>& change) {
    auto next = records_.updated(key, port, std::nullopt, change);
    if (!next) return false;
    replace(std::move(*next));
    return true;
}

void MonitorRecords::rememberMode(const DisplayMode& mode, const DisplayID& id) {
    if (const auto m = monitor(id)) update(*m, std::nullopt, [&](DisplaySettings& s) { s.lastMode = mode; });
}

void MonitorRecords::update(const AttachedMonitor& monitor, std::optional<EDIDKit::Resolution> creatingWith,
                            const std::function<void(DisplaySettings&)>& change) {
    auto next = records_.updated(monitor.key, monitor.display.port, creatingWith, change);
    if (!next) return;
    replace(std::move(*next));
}

void MonitorRecords::replace(SettingsRecords records) {
    records_ = std::move(records);
    store_->save(records_.list());
}

} // namespace HalvoraCore
