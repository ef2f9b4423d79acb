#pragma once

#include <EDIDKit/Bytes.hpp>

namespace EDIDKit {

/// Whether two EDIDs are the same apart from what identifies the one monitor
/// they came from and the checksums: the manufacturer, product code and
/// serial number of the base block, a serial-number text descriptor's text,
/// and each block's checksum byte. Equal bytes are the same; EDIDs of
/// different lengths never are. A system that stamps its own serial number
/// on an EDID it was given, or recomputes (or breaks) a checksum, hands back
/// an EDID that is the same as the one written in this sense.
bool sameApartFromIdentity(const Bytes& a, const Bytes& b);

} // namespace EDIDKit
