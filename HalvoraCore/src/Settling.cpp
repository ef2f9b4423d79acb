#include <HalvoraCore/Settling.hpp>

namespace HalvoraCore {

Settling::~Settling() {
    OwnedTimers::cancel(settle_);
}

void Settling::writeAndSettle(const EDIDKit::Bytes& edid, const DisplayID& display,
                              std::optional<DisplayMode> mode) {
    writer_.writeOverride(edid, display);
    modes_.noteApplied(timers_.now());
    timers_.restart(settle_, settleDelay, [this, display, mode] {
        settle_.reset();
        host_.restoreMode(mode, display);
    });
}

} // namespace HalvoraCore
