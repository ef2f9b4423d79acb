#pragma once

namespace HalvoraCore {

/// Which of a monitor's two resolutions is meant: its native one or the split.
enum class ModeChoice { full, split };

} // namespace HalvoraCore
