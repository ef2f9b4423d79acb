#include <HalvoraCore/PBPObservation.hpp>

#include <EDIDKit/EDIDComparison.hpp>

namespace HalvoraCore {

PBPObservation::PBPObservation(std::weak_ptr<IdentificationProgress> wizard_, DisplayID display_,
                               std::optional<EDIDKit::Bytes> currentEDID, std::optional<EDIDKit::Bytes> ourOverride_)
    : wizard(std::move(wizard_)), display(std::move(display_)), ourOverride(std::move(ourOverride_)) {
    // Our own override tells nothing about the monitor: no baseline yet.
    if (!isOurOverride(currentEDID)) factoryEDID = std::move(currentEDID);
}

bool PBPObservation::isOurOverride(const std::optional<EDIDKit::Bytes>& edid) const {
    if (!edid || !ourOverride) return edid == ourOverride;
    return EDIDKit::sameApartFromIdentity(*edid, *ourOverride);
}

bool PBPObservation::noteEDID(const std::optional<EDIDKit::Bytes>& edid, double at) {
    if (isOurOverride(edid)) return false;
    if (!factoryEDID) {
        factoryEDID = edid;
        return false;
    }
    if (*factoryEDID == edid) return false;
    factoryEDID = edid;
    edidChanged = true;
    noteSignal(at);
    return true;
}

void PBPObservation::noteSignal(double at) {
    if (lastSignal && at - *lastSignal < toggleDebounce) return;
    lastSignal = at;
    ++toggles;
}

PBPBehavior PBPObservation::verdict(bool userToggled, std::optional<bool> factoryHasSplit) const {
    if (edidChanged) return PBPBehavior::switchesOnToggle;
    if (interrupts == 0 && userToggled && factoryHasSplit)
        return *factoryHasSplit ? PBPBehavior::fixedWithSplit : PBPBehavior::fixedMissingSplit;
    return PBPBehavior::latchedAtPlug;
}

void PBPObservation::cancelTasks() {
    if (timeout) timeout->cancel();
    if (judgeTask) judgeTask->cancel();
}

} // namespace HalvoraCore
