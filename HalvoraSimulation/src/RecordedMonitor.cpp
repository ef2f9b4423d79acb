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
    constexpr std::size_t block = 128;
    if (written.size() < block) return written;
    EDIDKit::Bytes b = written;
    switch (alteration) {
    case WriteAlteration::serial:
        b[12] = static_cast<std::uint8_t>(b[12] + 1);
        EDIDKit::fixBlockChecksum(b, 0);
        break;
    case WriteAlteration::checksum:
        b[block - 1] = static_cast<std::uint8_t>(b[block - 1] + 1);
        break;
    case WriteAlteration::extensions:
        b.resize(block);
        b[126] = 0; // extension count
        EDIDKit::fixBlockChecksum(b, 0);
        break;
    }
    return b;
}

} // namespace HalvoraSimulation
