#pragma once

// Owning CoreFoundation references and conversions shared by the macOS seams.

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform::MacPlatform {

/// Releases a CoreFoundation object (Create and Copy rule) when it goes.
template <typename Ref> class CFOwned {
public:
    explicit CFOwned(Ref ref = nullptr) : ref_(ref) {}
    ~CFOwned() {
        if (ref_) CFRelease(ref_);
    }
    CFOwned(const CFOwned&) = delete;
    CFOwned& operator=(const CFOwned&) = delete;
    Ref get() const { return ref_; }
    explicit operator bool() const { return ref_ != nullptr; }

private:
    Ref ref_;
};

/// A CFString as UTF-8 text; nothing for any other type.
inline std::optional<std::string> text(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFStringGetTypeID()) return std::nullopt;
    const auto string = static_cast<CFStringRef>(value);
    const CFIndex length = CFStringGetLength(string);
    const CFIndex size = CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8) + 1;
    std::vector<char> buffer(static_cast<std::size_t>(size));
    if (!CFStringGetCString(string, buffer.data(), size, kCFStringEncodingUTF8))
        return std::nullopt;
    return std::string(buffer.data());
}

/// A CFString made from UTF-8 text (Create rule).
inline CFStringRef makeString(const std::string& value) {
    return CFStringCreateWithCString(kCFAllocatorDefault, value.c_str(), kCFStringEncodingUTF8);
}

/// A CFNumber as a 64-bit value; nothing for any other type.
inline std::optional<std::uint64_t> number(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFNumberGetTypeID()) return std::nullopt;
    std::int64_t result = 0;
    if (!CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &result))
        return std::nullopt;
    return static_cast<std::uint64_t>(result);
}

} // namespace HalvoraPlatform::MacPlatform
