// IOKit's AV services of display ports (Apple silicon). The IOAVService
// calls are private: every one is looked up at run time with dlsym, so a
// system without one still launches (its calls fail as unsupported, and the
// menu says what is missing). Sources: Apple's IOKit documentation for the
// registry calls, the dlsym(3) manual page; the IOAVService signatures follow
// docs/macos-platform.md.

#include "CFHelpers.hpp"

#include <HalvoraPlatform/AVServiceSymbols.hpp>
#include <HalvoraPlatform/MacPlatform.hpp>
#include <IOKit/IOKitLib.h>
#include <dlfcn.h>

namespace HalvoraPlatform::MacPlatform {

namespace {

typedef CFTypeRef IOAVServiceRef;
using CreateWithService = IOAVServiceRef (*)(CFAllocatorRef, io_service_t);
using CopyEDID = IOReturn (*)(IOAVServiceRef, CFDataRef*);
using SetVirtualEDIDMode = IOReturn (*)(IOAVServiceRef, const std::uint32_t*, CFDataRef);

/// The IOAVService calls, looked up once.
struct AVServiceCalls {
    CreateWithService createWithService = nullptr;
    CopyEDID copyEDID = nullptr;
    SetVirtualEDIDMode setVirtualEDIDMode = nullptr;
    std::vector<std::string> missing;

    static const AVServiceCalls& resolved() {
        static const AVServiceCalls calls = [] {
            const auto find = [](const std::string& name) -> const void* {
                return dlsym(RTLD_DEFAULT, name.c_str());
            };
            AVServiceCalls c;
            c.createWithService = reinterpret_cast<CreateWithService>(
                dlsym(RTLD_DEFAULT, "IOAVServiceCreateWithService"));
            c.copyEDID = reinterpret_cast<CopyEDID>(dlsym(RTLD_DEFAULT, "IOAVServiceCopyEDID"));
            c.setVirtualEDIDMode = reinterpret_cast<SetVirtualEDIDMode>(
                dlsym(RTLD_DEFAULT, "IOAVServiceSetVirtualEDIDMode"));
            c.missing = AVServiceSymbols::missing(find);
            return c;
        }();
        return calls;
    }
};

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
            const auto create = AVServiceCalls::resolved().createWithService;
            if (const IOAVServiceRef service =
                    create ? create(kCFAllocatorDefault, entry) : nullptr)
                e.service = ServiceRef(service,
                                       [](const void* s) { CFRelease(static_cast<CFTypeRef>(s)); });
            IOObjectRelease(entry);
            result.push_back(std::move(e));
        }
        IOObjectRelease(iterator);
        return result;
    }

    std::int32_t copyEDID(const ServiceRef& service, std::optional<EDIDKit::Bytes>& edid) override {
        const auto copy = AVServiceCalls::resolved().copyEDID;
        if (!copy) return kIOReturnUnsupported;
        CFDataRef data = nullptr;
        const IOReturn code = copy(static_cast<IOAVServiceRef>(service.get()), &data);
        const CFOwned<CFDataRef> owned(data);
        if (code == kIOReturnSuccess && data) {
            const auto* bytes = CFDataGetBytePtr(data);
            edid = EDIDKit::Bytes(bytes, bytes + CFDataGetLength(data));
        }
        return code;
    }

    std::int32_t setVirtualEDIDMode(const ServiceRef& service, const std::uint32_t* mode,
                                    const EDIDKit::Bytes* data) override {
        const auto call = AVServiceCalls::resolved().setVirtualEDIDMode;
        if (!call) return kIOReturnUnsupported;
        const CFOwned<CFDataRef> bytes(data ? CFDataCreate(kCFAllocatorDefault, data->data(),
                                                           static_cast<CFIndex>(data->size()))
                                            : nullptr);
        return call(static_cast<IOAVServiceRef>(service.get()), mode, bytes.get());
    }

    std::vector<std::string> missingCalls() const override {
        return AVServiceCalls::resolved().missing;
    }
};

} // namespace

std::shared_ptr<AVServiceRegistry> avServiceRegistry() {
    return std::make_shared<MacAVServiceRegistry>();
}

} // namespace HalvoraPlatform::MacPlatform
