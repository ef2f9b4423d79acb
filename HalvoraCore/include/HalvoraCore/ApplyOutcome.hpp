#pragma once

namespace HalvoraCore {

/// The result of trying to put a display into a mode.
enum class ApplyOutcome {
    applied,         ///< the mode was switched
    alreadyActive,   ///< the display already showed the mode
    displayNotFound, ///< no display with that identity is attached
};

} // namespace HalvoraCore
