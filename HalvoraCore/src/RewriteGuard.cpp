#include <HalvoraCore/RewriteGuard.hpp>

#include <algorithm>

namespace HalvoraCore {

RewriteGuard::Verdict RewriteGuard::check(const DisplayID& display, const EDIDKit::Bytes& edid, double now) {
    const auto found = displays_.find(display);
    if (found == displays_.end()) return Verdict::write;
    History& history = found->second;
    if (history.stopped) return Verdict::stopped;
    if (history.edid != edid) return Verdict::write; // another override: counted afresh
    while (!history.writes.empty() && now - history.writes.front() >= window) history.writes.pop_front();
    if (static_cast<int>(history.writes.size()) < maxWrites) return Verdict::write;
    history.stopped = true;
    return Verdict::stopNow;
}

void RewriteGuard::noteRewrite(const DisplayID& display, const EDIDKit::Bytes& edid, double now) {
    History& history = displays_[display];
    if (history.edid != edid) {
        history.edid = edid;
        history.writes.clear();
    }
    history.writes.push_back(now);
    history.overrideWritten = true;
}

void RewriteGuard::noteOverrideWritten(const DisplayID& display) { displays_[display].overrideWritten = true; }

void RewriteGuard::noteArrived(const DisplayID& display) {
    if (const auto found = displays_.find(display); found != displays_.end()) found->second.writes.clear();
}

void RewriteGuard::noteReportedInstead(const DisplayID& display, const EDIDKit::Bytes& edid) {
    if (const auto found = displays_.find(display); found != displays_.end() && found->second.overrideWritten)
        found->second.reportedInstead = edid;
}

void RewriteGuard::noteFactoryRestored(const DisplayID& display) {
    if (const auto found = displays_.find(display); found != displays_.end()) {
        found->second.overrideWritten = false;
        found->second.reportedInstead.reset();
    }
}

void RewriteGuard::keepOnly(const std::vector<DisplayID>& attached) {
    std::erase_if(displays_, [&](const auto& entry) {
        return std::find(attached.begin(), attached.end(), entry.first) == attached.end();
    });
}

void RewriteGuard::releaseAll() {
    for (auto& [display, history] : displays_) {
        history.stopped = false;
        history.writes.clear();
    }
}

bool RewriteGuard::isStopped(const DisplayID& display) const {
    const auto found = displays_.find(display);
    return found != displays_.end() && found->second.stopped;
}

bool RewriteGuard::isReportedInstead(const DisplayID& display, const EDIDKit::Bytes& edid) const {
    const auto found = displays_.find(display);
    return found != displays_.end() && found->second.reportedInstead == edid;
}

bool RewriteGuard::hasOverrideWritten(const DisplayID& display) const {
    const auto found = displays_.find(display);
    return found != displays_.end() && found->second.overrideWritten;
}

} // namespace HalvoraCore
