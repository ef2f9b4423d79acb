// IOKit's AV services of display ports (Apple silicon). Sources: Apple's
// IOKit documentation for the registry calls; the IOAVService declarations
// follow docs/macos-platform.md.

#include "CFHelpers.hpp"

#include <DisplayHardware/MacPlatform.hpp>
#include <IOKit/IOKitLib.h>
#include <dlfcn.h>

extern "C" {
typedef CFTypeRef IOAVServiceRef;
IOAVServiceRef IOAVServiceCreateWithService(CFAllocatorRef allocator, io_service_t service);
IOReturn IOAVServiceCopyEDID(IOAVServiceRef service, CFDataRef* edid);
}

namespace DisplayHardware::MacPlatform {

namespace {

using SetVirtualEDIDMode = IOReturn (*)(IOAVServiceRef, const std::uint32_t*, CFDataRef);

class MacAVServiceRegistry final : public AVServiceRegistry {
public:
    std::optional<std::vector<Entry>> entries(const std::string& className) override {
        io_iterator_t iterator = IO_OBJECT_NULL;
        // IOServiceGetMatchingServices consumes the matching dictionary.
        if (IOServiceGetMatchingServices(MACH_PORT_NULL, IOServiceMatching(className.c_str()),
                                         &iterator) != KERN_SUCCESS)
            return std::nullopt;
        std::vector<Entry> result;
        while (const io_object_t entry = IOIteratorNext(iterator)) {
            Entry e;
            const CFOwned<CFTypeRef> location(
                IORegistryEntryCreateCFProperty(entry, CFSTR("Location"), kCFAllocatorDefault, 0));
            e.location = text(location.get());
            IORegistryEntryGetRegistryEntryID(entry, &e.registryID);
            io_string_t path = {};
            if (IORegistryEntryGetPath(entry, kIOServicePlane, path) == KERN_SUCCESS)
                e.pathBuffer =
                    EDIDKit::Bytes(reinterpret_cast<const std::uint8_t*>(path),
                                   reinterpret_cast<const std::uint8_t*>(path) + sizeof(path));
            if (const IOAVServiceRef service =
                    IOAVServiceCreateWithService(kCFAllocatorDefault, entry))
                e.service = ServiceRef(service,
                                       [](const void* s) { CFRelease(static_cast<CFTypeRef>(s)); });
            IOObjectRelease(entry);
            result.push_back(std::move(e));
        }
        IOObjectRelease(iterator);
        return result;
    }

    std::int32_t copyEDID(const ServiceRef& service, std::optional<EDIDKit::Bytes>& edid) override {
        CFDataRef data = nullptr;
        const IOReturn code =
            IOAVServiceCopyEDID(static_cast<IOAVServiceRef>(service.get()), &data);
        const CFOwned<CFDataRef> owned(data);
        if (code == kIOReturnSuccess && data) {
            const auto* bytes = CFDataGetBytePtr(data);
            edid = EDIDKit::Bytes(bytes, bytes + CFDataGetLength(data));
        }
        return code;
    }

    std::int32_t setVirtualEDIDMode(const ServiceRef& service, const std::uint32_t* mode,
                                    const EDIDKit::Bytes* data) override {
        static const auto call = reinterpret_cast<SetVirtualEDIDMode>(
            dlsym(RTLD_DEFAULT, "IOAVServiceSetVirtualEDIDMode"));
        if (!call) return kIOReturnUnsupported;
        const CFOwned<CFDataRef> bytes(data ? CFDataCreate(kCFAllocatorDefault, data->data(),
                                                           static_cast<CFIndex>(data->size()))
                                            : nullptr);
        return call(static_cast<IOAVServiceRef>(service.get()), mode, bytes.get());
    }
};

} // namespace

std::shared_ptr<AVServiceRegistry> avServiceRegistry() {
    return std::make_shared<MacAVServiceRegistry>();
}

} // namespace DisplayHardware::MacPlatform
