#include <HalvoraCore/DisplayWriter.hpp>

#include <HalvoraCore/SplitError.hpp>

#include <algorithm>

namespace HalvoraCore {

void DisplayWriter::writeOverride(const EDIDKit::Bytes& edid, const DisplayID& display) {
    try {
        system_->applyEDIDOverride(edid, display);
    } catch (...) {
        throw SplitError::hardwareFailureOfCurrentException(DisplayOperation::writeOverride);
    }
    guard_.noteOverrideWritten(display);
    changedByUs(display);
}

void DisplayWriter::restoreFactory(const DisplayID& display) {
    try {
        system_->restoreFactoryEDID(display);
    } catch (...) {
        throw SplitError::hardwareFailureOfCurrentException(DisplayOperation::restoreFactory);
    }
    guard_.noteFactoryRestored(display);
    changedByUs(display);
}

void DisplayWriter::setMode(const DisplayMode& mode, const DisplayID& display) {
    try {
        system_->setMode(mode, display);
    } catch (...) {
        throw SplitError::hardwareFailureOfCurrentException(DisplayOperation::setMode);
    }
    changedByUs(display);
}

bool DisplayWriter::putBackMode(const std::optional<DisplayMode>& mode, const DisplayID& display) {
    if (!mode) return false;
    if (system_->currentMode(display) == *mode) return false;
    const auto modes = system_->modes(display);
    if (std::find(modes.begin(), modes.end(), *mode) == modes.end()) return false;
    setMode(*mode, display);
    return true;
}

bool DisplayWriter::inOwnChangeCooldown() const {
    return lastOwnChange_ && timers_.now() - *lastOwnChange_ < ownChangeCooldown;
}

void DisplayWriter::changedByUs(const DisplayID& display) {
    lastOwnChange_ = timers_.now();
    if (onOwnChange) onOwnChange(display);
}

} // namespace HalvoraCore
