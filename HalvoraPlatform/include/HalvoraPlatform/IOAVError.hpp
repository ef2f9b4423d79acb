#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace HalvoraPlatform {

/// A failed call to a display port's AV service: which operation, and the raw
/// IOKit return code.
class IOAVError : public std::exception {
public:
    static inline const std::string applyCall = "SetVirtualEDIDMode(apply)";
    static inline const std::string restoreCall = "SetVirtualEDIDMode(restore)";

    IOAVError(std::string call, std::int32_t code);

    const std::string& call() const noexcept { return call_; }
    std::int32_t code() const noexcept { return code_; }
    /// "SetVirtualEDIDMode(apply) failed: 0xE00002BC": the code's 32-bit
    /// pattern in upper-case hex without leading zeros.
    const std::string& description() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const IOAVError& a, const IOAVError& b) { return a.call_ == b.call_ && a.code_ == b.code_; }

private:
    std::string call_;
    std::int32_t code_;
    std::string description_;
};

} // namespace HalvoraPlatform
