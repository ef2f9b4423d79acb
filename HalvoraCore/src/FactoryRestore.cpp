#include <HalvoraCore/FactoryRestore.hpp>

#include <HalvoraCore/SettingsRecords.hpp>

#include <EDIDKit/EDIDComparison.hpp>

namespace HalvoraCore {

void FactoryRestore::atQuit(const EDIDKit::Bytes* pendingEDID, bool othersActive) {
    for (const auto& d : monitors_.displays()) {
        const auto m = monitors_.view(d);
        if (!m) continue;
        // An override written in this run counts as ours even when the system
        // altered it beyond recognition: by what the port reported instead of
        // it, or, with no other tool about that could have written since,
        // by having been written at all.
        const bool ours = m->showsOurs() || (pendingEDID && EDIDKit::sameApartFromIdentity(*pendingEDID, d.edid)) ||
                          guard_.isReportedInstead(d.id, d.edid) || (!othersActive && guard_.hasOverrideWritten(d.id));
        if (!ours) continue;
        try {
            writer_.restoreFactory(d.id);
        } catch (const SplitError&) {
            // Quitting goes on; the next display is handled.
        }
    }
}

std::optional<SplitError> FactoryRestore::resetAll() {
    std::optional<SplitError> firstFailure;
    std::vector<DisplayIdentity> failed;
    for (const auto& d : monitors_.displays()) {
        try {
            writer_.restoreFactory(d.id);
        } catch (const SplitError& error) {
            // The interrupts a failed reset causes are not the user's toggles either.
            writer_.noteAttempt();
            if (!firstFailure) firstFailure = error;
            if (const auto m = monitors_.view(d)) failed.push_back(m->key);
        }
    }
    monitors_.replace(monitors_.records().reset(failed));
    return firstFailure;
}

} // namespace HalvoraCore
