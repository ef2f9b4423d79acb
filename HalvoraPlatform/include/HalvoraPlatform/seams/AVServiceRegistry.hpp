#pragma once

#include <EDIDKit/Bytes.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// The IOKit calls behind the AV services of display ports, one for one: the
/// registry entries of a class with the properties the layer above reads, and
/// the AV service calls that copy and set an EDID. It decides nothing; which
/// entries count and what a return code means is ExternalDisplayService's.
class AVServiceRegistry {
public:
    /// A retained IOAVService reference, released with its last copy; opaque here.
    using ServiceRef = std::shared_ptr<const void>;

    /// One registry entry of the matched class.
    struct Entry {
        /// The "Location" property, when it is text.
        std::optional<std::string> location;
        /// IORegistryEntryGetRegistryEntryID.
        std::uint64_t registryID = 0;
        /// The zeroed 512-byte buffer IORegistryEntryGetPath filled ("IOService"
        /// plane); nothing when the call failed.
        std::optional<EDIDKit::Bytes> pathBuffer;
        /// IOAVServiceCreateWithService with the default allocator; null when it made none.
        ServiceRef service;
    };

    virtual ~AVServiceRegistry() = default;

    /// Every entry matching `className`, in iteration order; nothing when the
    /// matching call failed. Each entry is released after its properties are read.
    virtual std::optional<std::vector<Entry>> entries(const std::string& className) = 0;
    /// IOAVServiceCopyEDID: its return code; on success `edid` holds the bytes
    /// (nothing when the call gave no data).
    virtual std::int32_t copyEDID(const ServiceRef& service,
                                  std::optional<EDIDKit::Bytes>& edid) = 0;
    /// IOAVServiceSetVirtualEDIDMode(service, mode, data): its return code.
    /// `mode` and `data` are null together to restore the monitor's own EDID.
    virtual std::int32_t setVirtualEDIDMode(const ServiceRef& service, const std::uint32_t* mode,
                                            const EDIDKit::Bytes* data) = 0;
    /// The AV service calls this system lacks (AVServiceSymbols::names);
    /// while one is missing its calls fail as unsupported. A registry whose
    /// calls are all built in lacks none.
    virtual std::vector<std::string> missingCalls() const { return {}; }
};

} // namespace HalvoraPlatform
