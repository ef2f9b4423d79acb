#pragma once

#include <EDIDKit/Bytes.hpp>
#include <HalvoraCore/DisplayID.hpp>
#include <HalvoraPlatform/seams/AVServiceRegistry.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// The AV service of one external display port: the EDID it presents, and the
/// virtual EDID it can be told to present instead. A snapshot taken by `all()`;
/// take a fresh one whenever the display configuration may have changed.
class ExternalDisplayService {
public:
    /// The registry class of the display coprocessor's AV service proxies.
    static inline const std::string proxyClass = "DCPAVServiceProxy";

    /// The services of external ports, in registry order: entries whose
    /// "Location" is exactly "External" (never the built-in panel) and that
    /// give an AV service. Never fails; a failed matching gives none.
    static std::vector<ExternalDisplayService>
    all(const std::shared_ptr<AVServiceRegistry>& registry);

    /// "dcp-4294968123": how the core names the display behind a port, by the
    /// registry entry ID of its AV service.
    static HalvoraCore::DisplayID displayID(std::uint64_t registryID);

    std::uint64_t registryID() const { return registryID_; }
    /// The entry's "IOService"-plane path; empty when it could not be read.
    const std::string& registryPath() const { return registryPath_; }

    /// The EDID presented now (the virtual one while one is installed);
    /// nothing when it cannot be read.
    std::optional<EDIDKit::Bytes> currentEDID() const;
    /// Presents `data` in place of the monitor's own EDID. Throws IOAVError.
    void applyVirtualEDID(const EDIDKit::Bytes& data) const;
    /// Removes any virtual EDID. Throws IOAVError.
    void restoreFactoryEDID() const;

    /// The path text of an IORegistryEntryGetPath buffer: the bytes up to the
    /// first zero, as UTF-8 with invalid sequences replaced.
    static std::string pathText(const EDIDKit::Bytes& buffer);

private:
    ExternalDisplayService(std::shared_ptr<AVServiceRegistry> registry,
                           AVServiceRegistry::ServiceRef service, std::uint64_t registryID,
                           std::string registryPath);

    std::shared_ptr<AVServiceRegistry> registry_;
    AVServiceRegistry::ServiceRef service_;
    std::uint64_t registryID_;
    std::string registryPath_;
};

} // namespace HalvoraPlatform
