#include "EDIDLayout.hpp"

#include <EDIDKit/EDIDError.hpp>
#include <EDIDKit/Resolution.hpp>

namespace EDIDKit {

namespace {

std::string describe(EDIDError::Kind kind, int first, int second) {
    const auto size = [&] { return Resolution{first, second}.description(); };
    switch (kind) {
    case EDIDError::Kind::invalidLength:
        if (first > 0 && static_cast<std::size_t>(first) % Layout::blockSize == 0)
            return "the data is " + std::to_string(first) + " bytes long, more than the " +
                   std::to_string(Layout::maxBlockCount) + " blocks of 128 bytes an EDID can have";
        return "the data is " + std::to_string(first) +
               " bytes long, which is not a whole number of 128-byte EDID blocks";
    case EDIDError::Kind::timingTooLarge:
        return "a " + size() + " timing does not fit in an 18-byte detailed timing descriptor";
    case EDIDError::Kind::outOfRange:
        return "the monitor's range limits do not accept a " + size() + " timing";
    case EDIDError::Kind::invalidHeader:
        return "the data does not begin with the EDID header 00 FF FF FF FF FF FF 00";
    case EDIDError::Kind::noCTAExtension:
        return "the EDID has no CTA-861 extension block to hold another timing";
    case EDIDError::Kind::noFreeDescriptorSlot:
        return "every detailed timing slot of the CTA-861 extension holds a timing that must "
               "be kept";
    case EDIDError::Kind::noPreferredTiming:
        return "the EDID has no preferred detailed timing";
    }
    return "unknown EDID error";
}

} // namespace

EDIDError::EDIDError(Kind kind, int first, int second)
    : kind_(kind), first_(first), second_(second), description_(describe(kind, first, second)) {}

} // namespace EDIDKit
