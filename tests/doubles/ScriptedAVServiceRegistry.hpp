#pragma once

#include <HalvoraPlatform/seams/AVServiceRegistry.hpp>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TestDoubles {

/// Registry entries a test scripts, with an AV service each that reports an
/// EDID (its own, or the virtual one set on it) and answers with scripted codes.
class ScriptedAVServiceRegistry final : public HalvoraPlatform::AVServiceRegistry {
public:
    struct Port {
        std::uint64_t registryID = 0;
        std::optional<std::string> location = "External";
        std::optional<std::string> path = "IOService:/AppleARMPE/dcp/DCPAVServiceProxy";
        bool hasService = true;
        std::optional<EDIDKit::Bytes> edid; ///< the monitor's own; nothing: CopyEDID gives no data
        std::optional<EDIDKit::Bytes> virtualEDID;
        std::int32_t copyCode = 0;
        std::int32_t setCode = 0;
    };

    /// Adds a port and returns it for further scripting.
    Port& add(std::uint64_t registryID, std::optional<EDIDKit::Bytes> edid);
    Port& port(std::uint64_t registryID);
    void remove(std::uint64_t registryID);
    bool matchingFails = false;

    /// "apply 7 (256 bytes)", "restore 7".
    std::vector<std::string> calls;
    int copyCalls = 0;

    std::optional<std::vector<Entry>> entries(const std::string& className) override;
    std::int32_t copyEDID(const ServiceRef& service, std::optional<EDIDKit::Bytes>& edid) override;
    std::int32_t setVirtualEDIDMode(const ServiceRef& service, const std::uint32_t* mode,
                                    const EDIDKit::Bytes* data) override;
    std::vector<std::string> missingCalls() const override { return missing; }
    std::string lastClass;
    /// The AV service calls the scripted system lacks.
    std::vector<std::string> missing;

private:
    Port* portOf(const ServiceRef& service);
    std::vector<Port> ports_;
};

} // namespace TestDoubles
