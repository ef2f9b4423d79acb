#include <EDIDKit/RepairedUTF8.hpp>
#include <HalvoraPlatform/ExternalDisplayService.hpp>
#include <HalvoraPlatform/IOAVError.hpp>
#include <algorithm>

namespace HalvoraPlatform {

ExternalDisplayService::ExternalDisplayService(std::shared_ptr<AVServiceRegistry> registry,
                                               AVServiceRegistry::ServiceRef service,
                                               std::uint64_t registryID, std::string registryPath)
    : registry_(std::move(registry)), service_(std::move(service)), registryID_(registryID),
      registryPath_(std::move(registryPath)) {}

HalvoraCore::DisplayID ExternalDisplayService::displayID(std::uint64_t registryID) {
    return HalvoraCore::DisplayID("dcp-" + std::to_string(registryID));
}

std::string ExternalDisplayService::pathText(const EDIDKit::Bytes& buffer) {
    const auto end = std::find(buffer.begin(), buffer.end(), std::uint8_t{0});
    return EDIDKit::repairedUTF8({buffer.data(), static_cast<std::size_t>(end - buffer.begin())});
}

std::vector<ExternalDisplayService>
ExternalDisplayService::all(const std::shared_ptr<AVServiceRegistry>& registry) {
    std::vector<ExternalDisplayService> services;
    const auto entries = registry->entries(proxyClass);
    if (!entries) return services;
    for (const auto& entry : *entries) {
        // Built-in panels report another location and are never touched.
        if (entry.location != "External" || !entry.service) continue;
        services.push_back(
            ExternalDisplayService(registry, entry.service, entry.registryID,
                                   entry.pathBuffer ? pathText(*entry.pathBuffer) : std::string()));
    }
    return services;
}

std::optional<EDIDKit::Bytes> ExternalDisplayService::currentEDID() const {
    std::optional<EDIDKit::Bytes> edid;
    if (registry_->copyEDID(service_, edid) != 0) return std::nullopt;
    return edid;
}

void ExternalDisplayService::applyVirtualEDID(const EDIDKit::Bytes& data) const {
    // The bytes go as they are: producing a valid EDID is the caller's business.
    const std::uint32_t apply = 1;
    if (const auto code = registry_->setVirtualEDIDMode(service_, &apply, &data); code != 0)
        throw IOAVError(IOAVError::applyCall, code);
}

void ExternalDisplayService::restoreFactoryEDID() const {
    if (const auto code = registry_->setVirtualEDIDMode(service_, nullptr, nullptr); code != 0)
        throw IOAVError(IOAVError::restoreCall, code);
}

} // namespace HalvoraPlatform
