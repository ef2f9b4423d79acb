#pragma once

// The sample monitors' EDIDs, and the overrides built from them, as the core's
// tests use them.

#include <EDIDKit/EDID.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <HalvoraCore/DisplayIdentity.hpp>

namespace ControllerTesting {

using EDIDKit::Bytes;

inline const Bytes& ultrawideFull() { return EDIDKit::sampleMonitor("ultrawide-34")->full; }
inline const Bytes& ultrawideHalf() { return *EDIDKit::sampleMonitor("ultrawide-34")->pictureByPicture; }
inline const Bytes& superwideFull() { return EDIDKit::sampleMonitor("superwide-49")->full; }

inline HalvoraCore::DisplayIdentity identityOf(const Bytes& edid) {
    return HalvoraCore::DisplayIdentity::of(EDIDKit::EDID(edid));
}

/// The split override Halvora Pro builds for the ultrawide from its full EDID.
inline Bytes ultrawideSplit() {
    return EDIDKit::EDID(ultrawideFull()).addingSplit(EDIDKit::SplitLayout::halves, {3440, 1440}).bytes();
}

/// The override a latching ultrawide gets once both of its factory EDIDs are known.
inline Bytes ultrawideMerged() {
    return EDIDKit::EDID(ultrawideFull()).mergingSplitVersion(EDIDKit::EDID(ultrawideHalf())).bytes();
}

} // namespace ControllerTesting
