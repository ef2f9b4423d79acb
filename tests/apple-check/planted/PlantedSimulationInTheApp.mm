// Planted: an application source that reaches into the simulated world. The
// app users get never links HalvoraSimulation, so its sources do not see its
// headers; only the self-test build does.
#import <AppKit/AppKit.h>

#include <HalvoraSimulation/SimulatedMac.hpp>
