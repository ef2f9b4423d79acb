#pragma once

#include <EDIDKit/EDIDError.hpp>
#include <EDIDKit/Resolution.hpp>

#include <exception>
#include <optional>
#include <string>
#include <variant>

namespace HalvoraCore {

/// What the application asked of a display when the display system refused.
enum class DisplayOperation { writeOverride, restoreFactory, setMode };

/// A display system call that failed: which operation, and the system's own
/// description of the failure.
struct HardwareFailure {
    DisplayOperation operation = DisplayOperation::writeOverride;
    std::string detail;
    friend bool operator==(const HardwareFailure&, const HardwareFailure&) = default;
};

/// The one error type that reaches the user. Every other error is turned into
/// one by `wrapping` before it is shown.
class SplitError : public std::exception {
public:
    enum class Kind {
        cannotAddSplit,      ///< payload: the EDIDError
        modeUnavailable,     ///< payload: the wanted resolution
        systemFailure,       ///< payload: the failure in text
        displayNotFound,
        notIdentified,
        confirmationPending,
        unreadableEDID,
        overrideNotTaken,    ///< payload: the display's name (may be empty)
        hardware,            ///< payload: the HardwareFailure
    };

    static SplitError cannotAddSplit(const EDIDKit::EDIDError& error) { return {Kind::cannotAddSplit, error}; }
    static SplitError modeUnavailable(EDIDKit::Resolution r) { return {Kind::modeUnavailable, r}; }
    static SplitError systemFailure(std::string text) { return {Kind::systemFailure, std::move(text)}; }
    static SplitError displayNotFound() { return {Kind::displayNotFound, std::monostate{}}; }
    static SplitError notIdentified() { return {Kind::notIdentified, std::monostate{}}; }
    static SplitError confirmationPending() { return {Kind::confirmationPending, std::monostate{}}; }
    static SplitError unreadableEDID() { return {Kind::unreadableEDID, std::monostate{}}; }
    /// The display keeps reporting something other than the override written
    /// to it, so the override is no longer written there.
    static SplitError overrideNotTaken(std::string displayName) {
        return {Kind::overrideNotTaken, std::move(displayName)};
    }

    /// A write, restore or mode set the display system refused.
    static SplitError hardware(DisplayOperation operation, std::string detail) {
        return {Kind::hardware, HardwareFailure{operation, std::move(detail)}};
    }
    /// The failure of `operation` being handled (inside a catch block): a
    /// SplitError the display system threw about the display itself (not
    /// attached, say) stays as it is; any other failure becomes `hardware`
    /// with its description.
    static SplitError hardwareFailureOfCurrentException(DisplayOperation operation);

    /// The error itself when it is a SplitError; otherwise `systemFailure`
    /// carrying the error's own description.
    static SplitError wrapping(const std::exception& error);
    /// The same for the exception being handled (inside a catch block); an
    /// exception that is not a std::exception becomes "unknown error".
    static SplitError wrappingCurrentException();

    Kind kind() const noexcept { return kind_; }
    const EDIDKit::EDIDError* edidError() const noexcept { return std::get_if<EDIDKit::EDIDError>(&payload_); }
    const EDIDKit::Resolution* resolution() const noexcept { return std::get_if<EDIDKit::Resolution>(&payload_); }
    const std::string* text() const noexcept { return std::get_if<std::string>(&payload_); }
    const HardwareFailure* hardwareFailure() const noexcept { return std::get_if<HardwareFailure>(&payload_); }

    const char* what() const noexcept override { return what_.c_str(); }

    friend bool operator==(const SplitError& a, const SplitError& b) {
        return a.kind_ == b.kind_ && a.payload_ == b.payload_;
    }

private:
    using Payload =
        std::variant<std::monostate, EDIDKit::EDIDError, EDIDKit::Resolution, std::string, HardwareFailure>;
    SplitError(Kind kind, Payload payload);

    Kind kind_;
    Payload payload_;
    std::string what_;
};

/// The string-table key that shows an error to the user, and its one format
/// argument (a resolution's description) for the keys that take one.
struct ErrorMessage {
    std::string key;
    std::optional<std::string> argument;
    friend bool operator==(const ErrorMessage&, const ErrorMessage&) = default;
};

ErrorMessage errorMessage(const SplitError& error);

} // namespace HalvoraCore
