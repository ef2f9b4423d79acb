#include "ScriptedAVServiceRegistry.hpp"

#include <algorithm>
#include <stdexcept>

namespace TestDoubles {

ScriptedAVServiceRegistry::Port&
ScriptedAVServiceRegistry::add(std::uint64_t registryID, std::optional<EDIDKit::Bytes> edid) {
    ports_.push_back({});
    ports_.back().registryID = registryID;
    ports_.back().edid = std::move(edid);
    return ports_.back();
}

ScriptedAVServiceRegistry::Port& ScriptedAVServiceRegistry::port(std::uint64_t registryID) {
    for (auto& p : ports_)
        if (p.registryID == registryID) return p;
    throw std::invalid_argument("no such port");
}

void ScriptedAVServiceRegistry::remove(std::uint64_t registryID) {
    std::erase_if(ports_, [&](const Port& p) { return p.registryID == registryID; });
}

std::optional<std::vector<HalvoraPlatform::AVServiceRegistry::Entry>>
ScriptedAVServiceRegistry::entries(const std::string& className) {
    lastClass = className;
    if (matchingFails) return std::nullopt;
    std::vector<Entry> result;
    for (const auto& p : ports_) {
        Entry e;
        e.location = p.location;
        e.registryID = p.registryID;
        if (p.path) {
            e.pathBuffer = EDIDKit::Bytes(512, 0);
            std::copy(p.path->begin(), p.path->end(), e.pathBuffer->begin());
        }
        // The service names its port by registry ID; a port removed later is gone.
        if (p.hasService) e.service = std::make_shared<const std::uint64_t>(p.registryID);
        result.push_back(std::move(e));
    }
    return result;
}

ScriptedAVServiceRegistry::Port* ScriptedAVServiceRegistry::portOf(const ServiceRef& service) {
    const auto id = *static_cast<const std::uint64_t*>(service.get());
    for (auto& p : ports_)
        if (p.registryID == id) return &p;
    return nullptr;
}

std::int32_t ScriptedAVServiceRegistry::copyEDID(const ServiceRef& service,
                                                 std::optional<EDIDKit::Bytes>& edid) {
    ++copyCalls;
    Port* p = portOf(service);
    if (!p) return static_cast<std::int32_t>(0xE00002C0); // kIOReturnNoDevice
    if (p->copyCode != 0) return p->copyCode;
    edid = p->virtualEDID ? p->virtualEDID : p->edid;
    return 0;
}

std::int32_t ScriptedAVServiceRegistry::setVirtualEDIDMode(const ServiceRef& service,
                                                           const std::uint32_t* mode,
                                                           const EDIDKit::Bytes* data) {
    Port* p = portOf(service);
    const std::string id = std::to_string(*static_cast<const std::uint64_t*>(service.get()));
    calls.push_back(mode ? "apply " + id + " mode " + std::to_string(*mode) + " (" +
                               std::to_string(data ? data->size() : 0) + " bytes)"
                         : std::string("restore ") + id + (data ? " with data" : ""));
    if (!p) return static_cast<std::int32_t>(0xE00002C0);
    if (p->setCode != 0) return p->setCode;
    p->virtualEDID = mode ? std::optional(*data) : std::nullopt;
    return 0;
}

} // namespace TestDoubles
