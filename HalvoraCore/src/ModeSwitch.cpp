#include <HalvoraCore/ModeSwitch.hpp>
#include <HalvoraCore/SplitError.hpp>
#include <algorithm>

namespace HalvoraCore {

void ModeSwitch::switchTo(ModeChoice choice, const DisplayID& id) {
    const auto states = host_.displayStates();
    const auto state = std::find_if(states.begin(), states.end(),
                                    [&](const DisplayState& s) { return s.id == id; });
    if (state == states.end()) throw SplitError::displayNotFound();
    if (!state->native || !state->split) throw SplitError::notIdentified();
    const EDIDKit::Resolution wanted = choice == ModeChoice::full ? *state->native : *state->split;
    const std::vector<DisplayMode> modes = host_.modes(id);
    const auto best = fastestModeIndex(modes, wanted);
    if (!best) throw SplitError::modeUnavailable(wanted);
    host_.setMode(modes[*best], id);
    host_.rememberMode(modes[*best], id);
}

} // namespace HalvoraCore
