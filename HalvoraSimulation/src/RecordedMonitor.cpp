#include <HalvoraSimulation/RecordedMonitor.hpp>

#include <EDIDKit/EDID.hpp>

namespace HalvoraSimulation {

const char* writeAlterationName(WriteAlteration alteration) {
    switch (alteration) {
    case WriteAlteration::serial:
        return "serial";
    case WriteAlteration::checksum:
        return "checksum";
    case WriteAlteration::extensions:
        break;
    }
    return "extensions";
}

std::optional<WriteAlteration> writeAlteration(const std::string& name) {
    for (const auto a : {WriteAlteration::serial, WriteAlteration::checksum, WriteAlteration::extensions})
        if (name == writeAlterationName(a)) return a;
    return std::nullopt;
}

EDIDKit::Bytes alteredWrite(const EDIDKit::Bytes& written, WriteAlteration alteration) {
    const auto edid = EDIDKit::EDID::tryParse(written);
    if (!edid) return written;
    switch (alteration) {
    case WriteAlteration::serial:
        return edid->withSerial(edid->serialNumber() + 1).bytes();
    case WriteAlteration::checksum:
        return edid->withBrokenChecksum().bytes();
    case WriteAlteration::extensions:
        break;
    }
    return edid->withoutExtensions().bytes();
}

} // namespace HalvoraSimulation
