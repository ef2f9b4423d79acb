#pragma once

#include <DisplayHardware/VirtualClock.hpp>

namespace TestDoubles {

/// The controller tests drive time with the recorded machine's clock.
using VirtualScheduler = DisplayHardware::VirtualClock;

} // namespace TestDoubles
