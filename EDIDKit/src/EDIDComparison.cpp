#include <EDIDKit/EDIDComparison.hpp>

#include "EDIDLayout.hpp"

#include <array>
#include <cstddef>

namespace EDIDKit {

namespace {

using namespace Layout;

bool isSerialText(const Bytes& bytes, std::size_t slot) {
    return bytes[slot] == 0 && bytes[slot + 1] == 0 && bytes[slot + 2] == 0 &&
           bytes[slot + displayDescriptorTagOffset] == serialTextTag;
}

/// Whether byte `i` may differ: an identity byte, a serial text's letters
/// (when both EDIDs hold a serial text in that slot), or a checksum.
bool mayDiffer(const Bytes& a, const Bytes& b, std::size_t i) {
    if (i % blockSize == checksumOffset) return true;
    if (i >= blockSize) return false;
    if (i >= identityStart && i < identityEnd) return true;
    for (const std::size_t slot : descriptorSlots)
        if (i >= slot + displayDescriptorDataOffset && i < slot + descriptorSize)
            return isSerialText(a, slot) && isSerialText(b, slot);
    return false;
}

} // namespace

bool sameApartFromIdentity(const Bytes& a, const Bytes& b) {
    if (a.size() != b.size()) return false;
    if (a.size() < blockSize) return a == b;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && !mayDiffer(a, b, i)) return false;
    return true;
}

} // namespace EDIDKit
