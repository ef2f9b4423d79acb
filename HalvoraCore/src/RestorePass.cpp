#include <HalvoraCore/RestorePass.hpp>

#include <HalvoraCore/OverrideRecipe.hpp>
#include <HalvoraCore/SettingsRecords.hpp>

namespace HalvoraCore {

void RestorePass::restore(const AttachedMonitor& m) {
    auto settings = m.settings;
    if (!settings) return;
    if (!showsOverride(m.reported(), *settings)) {
        // The display shows its own EDID: remember it, and refresh a saved
        // override when the factory EDIDs now merge into a different one. An
        // override is only ever created by the user keeping one.
        p_.host.captureFactoryEDID(m);
        settings = p_.monitors.record(m.key);
        if (!settings) return;
        if (const auto merged = mergedOverride(*settings);
            settings->overrideEDID && merged && merged != settings->overrideEDID) {
            p_.monitors.update(m, std::nullopt, [&](DisplaySettings& s) { s.overrideEDID = merged; });
            settings = p_.monitors.record(m.key);
            if (!settings) return;
        }
    }
    if (settings->behavior == PBPBehavior::switchesOnToggle) {
        const DisplayIdentity identity = settings->identity;
        const auto seen = lastSeenFactoryEDID_.find(identity);
        const bool changedByItself = seen != lastSeenFactoryEDID_.end() && seen->second != m.reported();
        lastSeenFactoryEDID_[identity] = m.reported();
        // For this kind of monitor a new EDID means the user toggled PBP.
        if (changedByItself) {
            switchToPreferred(m, *settings);
            // Following the monitor saved the mode it now runs in; the rest
            // of the pass must not put the one from before back.
            settings = p_.monitors.record(m.key);
            if (!settings) return;
        }
    }
    if (settings->overrideEDID && !showsOverride(m.reported(), *settings)) {
        // No other tool is active during a pass: what a port that carries our
        // override reports instead is the system's copy of it.
        p_.guard.noteReportedInstead(m.id(), m.reported());
        if (!mayRewrite(m, *settings->overrideEDID)) return;
        try {
            p_.settling.writeAndSettle(*settings->overrideEDID, m.id(), settings->lastMode);
        } catch (const SplitError& error) {
            p_.host.report(error);
            return;
        }
        p_.guard.noteRewrite(m.id(), *settings->overrideEDID, p_.timers.now());
        return;
    }
    if (settings->overrideEDID) p_.guard.noteArrived(m.id());
    if (p_.modes.shouldRecord(ApplyOutcome::alreadyActive, p_.timers.now())) {
        // Settled: the mode on the display is the user's choice.
        const auto current = p_.host.currentMode(m.id());
        if (current && current != settings->lastMode) p_.host.rememberMode(*current, m.id());
    } else {
        p_.host.restoreMode(settings->lastMode, m.id());
    }
}

bool RestorePass::mayRewrite(const AttachedMonitor& m, const EDIDKit::Bytes& override) {
    switch (p_.guard.check(m.id(), override, p_.timers.now())) {
    case RewriteGuard::Verdict::write:
        return true;
    case RewriteGuard::Verdict::stopNow:
        p_.host.report(SplitError::overrideNotTaken(m.edid.productName().value_or("")));
        p_.host.changed();
        return false;
    case RewriteGuard::Verdict::stopped:
        break;
    }
    return false;
}

void RestorePass::switchToPreferred(const AttachedMonitor& m, const DisplaySettings& settings) {
    const auto preferred = m.edid.monitorPreferredResolution();
    if (!preferred) return;
    ModeChoice target;
    if (*preferred == settings.native)
        target = ModeChoice::full;
    else if (*preferred == p_.layout.splitResolution(settings.native))
        target = ModeChoice::split;
    else
        return;
    const auto current = p_.host.currentMode(m.id());
    if (current && current->resolution() == *preferred) {
        p_.host.rememberMode(*current, m.id());
        return;
    }
    try {
        p_.host.switchMode(target, m.id());
    } catch (const SplitError& error) {
        p_.host.report(error);
    }
}

bool RestorePass::clearOtherTools() {
    bool cleared = false;
    for (const auto& d : p_.monitors.displays()) {
        if (p_.pending.isFor(d.id)) continue;
        const auto m = p_.monitors.view(d);
        if (!m || !m->settings) continue;
        const DisplaySettings& s = *m->settings;
        // An EDID this system knows for the monitor is not another tool's.
        if (m->showsOurs() || d.edid == s.factoryFullEDID || d.edid == s.factorySplitEDID) continue;
        try {
            p_.writer.restoreFactory(d.id);
            cleared = true;
        } catch (const SplitError& error) {
            p_.host.report(error);
        }
    }
    return cleared;
}

} // namespace HalvoraCore
