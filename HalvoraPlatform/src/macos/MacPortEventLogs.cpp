// The "EventLog" property of display-port registry entries. Source: Apple's
// IOKit registry documentation; the property's shape in docs/macos-platform.md.

#include "CFHelpers.hpp"

#include <HalvoraPlatform/MacPlatform.hpp>
#include <IOKit/IOKitLib.h>

namespace HalvoraPlatform::MacPlatform {

namespace {

class MacPortEventLogs final : public PortEventLogs {
public:
    std::vector<Event> events(const std::string& className) override {
        std::vector<Event> result;
        io_iterator_t iterator = IO_OBJECT_NULL;
        if (IOServiceGetMatchingServices(MACH_PORT_NULL, IOServiceMatching(className.c_str()),
                                         &iterator) != KERN_SUCCESS)
            return result;
        while (const io_object_t entry = IOIteratorNext(iterator)) {
            const CFOwned<CFTypeRef> log(
                IORegistryEntryCreateCFProperty(entry, CFSTR("EventLog"), kCFAllocatorDefault, 0));
            IOObjectRelease(entry);
            if (!log || CFGetTypeID(log.get()) != CFArrayGetTypeID()) continue;
            const auto array = static_cast<CFArrayRef>(log.get());
            for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
                const CFTypeRef item = CFArrayGetValueAtIndex(array, i);
                if (!item || CFGetTypeID(item) != CFDictionaryGetTypeID()) continue;
                const auto dictionary = static_cast<CFDictionaryRef>(item);
                Event event;
                event.empty = CFDictionaryGetCount(dictionary) == 0;
                event.time = number(CFDictionaryGetValue(dictionary, CFSTR("EventTime")));
                const CFTypeRef payload = CFDictionaryGetValue(dictionary, CFSTR("EventPayload"));
                if (payload && CFGetTypeID(payload) == CFDictionaryGetTypeID()) {
                    const auto fields = static_cast<CFDictionaryRef>(payload);
                    event.action = text(CFDictionaryGetValue(fields, CFSTR("Action")));
                    event.queueOp = text(CFDictionaryGetValue(fields, CFSTR("QueueOp")));
                }
                result.push_back(std::move(event));
            }
        }
        IOObjectRelease(iterator);
        return result;
    }
};

} // namespace

std::shared_ptr<PortEventLogs> portEventLogs() {
    return std::make_shared<MacPortEventLogs>();
}

} // namespace HalvoraPlatform::MacPlatform
