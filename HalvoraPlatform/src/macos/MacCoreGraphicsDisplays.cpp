// CoreGraphics displays, modes and configuration. The reconfiguration
// callback runs through EntryBarrier. Source: Apple's Quartz Display Services
// documentation; facts in docs/macos-platform.md.

#include "CFHelpers.hpp"

#include <CoreGraphics/CoreGraphics.h>
#include <HalvoraPlatform/EntryBarrier.hpp>
#include <HalvoraPlatform/MacPlatform.hpp>
#include <mutex>

namespace HalvoraPlatform::MacPlatform {

namespace {

CoreGraphicsDisplays::Mode describe(CGDisplayModeRef mode) {
    CGDisplayModeRetain(mode);
    return {CGDisplayModeGetWidth(mode),
            CGDisplayModeGetHeight(mode),
            CGDisplayModeGetPixelWidth(mode),
            CGDisplayModeGetRefreshRate(mode),
            CGDisplayModeIsUsableForDesktopGUI(mode),
            CoreGraphicsDisplays::ModeRef(mode, [](const void* m) {
                CGDisplayModeRelease(static_cast<CGDisplayModeRef>(const_cast<void*>(m)));
            })};
}

class MacCoreGraphicsDisplays final : public CoreGraphicsDisplays {
public:
    std::vector<DisplayNumber> onlineDisplays(std::uint32_t maximum) override {
        std::vector<CGDirectDisplayID> displays(maximum);
        std::uint32_t count = 0;
        if (CGGetOnlineDisplayList(maximum, displays.data(), &count) != kCGErrorSuccess) return {};
        displays.resize(count);
        return {displays.begin(), displays.end()};
    }
    bool isBuiltin(DisplayNumber display) override { return CGDisplayIsBuiltin(display) != 0; }
    std::uint32_t vendorNumber(DisplayNumber display) override {
        return CGDisplayVendorNumber(display);
    }
    std::uint32_t modelNumber(DisplayNumber display) override {
        return CGDisplayModelNumber(display);
    }
    std::uint32_t serialNumber(DisplayNumber display) override {
        return CGDisplaySerialNumber(display);
    }

    std::vector<Mode> allModes(DisplayNumber display) override {
        const void* keys[] = {kCGDisplayShowDuplicateLowResolutionModes};
        const void* values[] = {kCFBooleanTrue};
        const CFOwned<CFDictionaryRef> options(
            CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks));
        const CFOwned<CFArrayRef> modes(CGDisplayCopyAllDisplayModes(display, options.get()));
        std::vector<Mode> result;
        if (!modes) return result;
        for (CFIndex i = 0; i < CFArrayGetCount(modes.get()); ++i)
            result.push_back(describe(static_cast<CGDisplayModeRef>(
                const_cast<void*>(CFArrayGetValueAtIndex(modes.get(), i)))));
        return result;
    }

    std::optional<Mode> currentMode(DisplayNumber display) override {
        const CGDisplayModeRef mode = CGDisplayCopyDisplayMode(display);
        if (!mode) return std::nullopt;
        Mode result = describe(mode);
        CGDisplayModeRelease(mode); // the copy; `describe` holds its own reference
        return result;
    }

    std::int32_t configure(DisplayNumber display, const Mode& mode) override {
        CGDisplayConfigRef config = nullptr;
        CGBeginDisplayConfiguration(&config);
        CGConfigureDisplayWithDisplayMode(
            config, display, static_cast<CGDisplayModeRef>(const_cast<void*>(mode.ref.get())),
            nullptr);
        return CGCompleteDisplayConfiguration(config, kCGConfigurePermanently);
    }
};

/// The callbacks live as long as the process: CoreGraphics keeps calling them.
class MacReconfigurationEvents final : public ReconfigurationEvents {
public:
    using Callback = std::function<void(CoreGraphicsDisplays::DisplayNumber, std::uint32_t)>;

    void registerCallback(Callback callback) override {
        auto* kept = new Callback(std::move(callback)); // never freed: registered for good
        CGDisplayRegisterReconfigurationCallback(&MacReconfigurationEvents::forward, kept);
    }

private:
    static void forward(CGDirectDisplayID display, CGDisplayChangeSummaryFlags flags,
                        void* userInfo) {
        EntryBarrier::guarded("a display reconfiguration callback",
                              [&] { (*static_cast<Callback*>(userInfo))(display, flags); });
    }
};

} // namespace

std::shared_ptr<CoreGraphicsDisplays> coreGraphicsDisplays() {
    return std::make_shared<MacCoreGraphicsDisplays>();
}
std::shared_ptr<ReconfigurationEvents> reconfigurationEvents() {
    return std::make_shared<MacReconfigurationEvents>();
}

} // namespace HalvoraPlatform::MacPlatform
