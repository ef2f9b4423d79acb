#include <HalvoraCore/DisplayState.hpp>

namespace HalvoraCore {

DisplayState displayStateOf(const AttachedMonitor& m, const std::optional<DisplayMode>& mode,
                            EDIDKit::SplitLayout layout) {
    DisplayState state;
    state.id = m.id();
    state.name = m.edid.productName().value_or("");
    if (!m.settings) return state;
    const EDIDKit::Resolution native = m.settings->native;
    const EDIDKit::Resolution split = layout.splitResolution(native);
    state.native = native;
    state.split = split;
    state.isSplitApplied = m.edid.hasTiming(native) && m.edid.hasTiming(split);
    if (mode) {
        if (mode->resolution() == native)
            state.current = ModeChoice::full;
        else if (mode->resolution() == split)
            state.current = ModeChoice::split;
    }
    state.behavior = m.settings->behavior;
    return state;
}

} // namespace HalvoraCore
