#pragma once

#include <exception>
#include <string>

namespace EDIDKit {

/// Why an EDID could not be read or rewritten. One exception type carries the
/// case and its payload so that callers and tests can compare errors with ==.
class EDIDError : public std::exception {
public:
    enum class Kind {
        invalidLength,        ///< payload: the buffer length
        timingTooLarge,       ///< payload: width, height
        outOfRange,           ///< payload: width, height
        invalidHeader,
        noCTAExtension,
        noFreeDescriptorSlot,
        noPreferredTiming,
    };

    static EDIDError invalidLength(int length) { return {Kind::invalidLength, length, 0}; }
    static EDIDError timingTooLarge(int width, int height) {
        return {Kind::timingTooLarge, width, height};
    }
    static EDIDError outOfRange(int width, int height) { return {Kind::outOfRange, width, height}; }
    static EDIDError invalidHeader() { return {Kind::invalidHeader, 0, 0}; }
    static EDIDError noCTAExtension() { return {Kind::noCTAExtension, 0, 0}; }
    static EDIDError noFreeDescriptorSlot() { return {Kind::noFreeDescriptorSlot, 0, 0}; }
    static EDIDError noPreferredTiming() { return {Kind::noPreferredTiming, 0, 0}; }

    Kind kind() const noexcept { return kind_; }
    /// The buffer length of `invalidLength`; 0 for every other case.
    int length() const noexcept { return kind_ == Kind::invalidLength ? first_ : 0; }
    /// The timing's width and height of `timingTooLarge` and `outOfRange`; 0 otherwise.
    int width() const noexcept { return hasSize() ? first_ : 0; }
    int height() const noexcept { return hasSize() ? second_ : 0; }

    /// The error in words, for people: "… is 200 bytes long, which is not …".
    const std::string& description() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const EDIDError& a, const EDIDError& b) noexcept {
        return a.kind_ == b.kind_ && a.first_ == b.first_ && a.second_ == b.second_;
    }

private:
    EDIDError(Kind kind, int first, int second);
    bool hasSize() const noexcept {
        return kind_ == Kind::timingTooLarge || kind_ == Kind::outOfRange;
    }

    Kind kind_;
    int first_;
    int second_;
    std::string description_;
};

} // namespace EDIDKit
