#include <HalvoraCore/BehaviorAdoption.hpp>

namespace HalvoraCore {

bool BehaviorAdoption::adopt(PBPBehavior behavior, const DisplayID& id) {
    const auto d = monitors_.display(id);
    if (!d) return !needsOverride(behavior); // gone: no override could be written
    if (const auto m = monitors_.view(*d))
        monitors_.update(*m, std::nullopt, [&](DisplaySettings& s) { s.behavior = behavior; });
    if (needsOverride(behavior)) {
        try {
            const auto shown = monitors_.view(*d);
            const EDIDKit::Bytes& showing = shown && shown->ourEDID ? *shown->ourEDID : d->edid;
            if (host_.splitTarget(*d) != showing) host_.applySplit(id);
        } catch (const SplitError& error) {
            host_.report(error);
            return false;
        }
        return true;
    }
    dropOverride(*d);
    host_.changed();
    return true;
}

void BehaviorAdoption::dropOverride(const ExternalDisplay& d) {
    const auto m = monitors_.view(d);
    if (!m || !m->settings || !m->settings->overrideEDID) return;
    const bool showing = m->ourEDID == m->settings->overrideEDID;
    monitors_.update(*m, std::nullopt, [](DisplaySettings& s) { s.overrideEDID.reset(); });
    if (showing) {
        try {
            writer_.restoreFactory(d.id);
        } catch (const SplitError& error) {
            writer_.noteAttempt();
            host_.report(error);
        }
    }
    host_.restoreSoon();
}

} // namespace HalvoraCore
