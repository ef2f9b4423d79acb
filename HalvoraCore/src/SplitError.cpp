#include <HalvoraCore/SplitError.hpp>

namespace HalvoraCore {

namespace {

template <typename Payload> std::string describe(SplitError::Kind kind, const Payload& payload) {
    switch (kind) {
    case SplitError::Kind::cannotAddSplit:
        return "cannot add the split timing: " + std::get<EDIDKit::EDIDError>(payload).description();
    case SplitError::Kind::modeUnavailable:
        return "no " + std::get<EDIDKit::Resolution>(payload).description() + " mode is available";
    case SplitError::Kind::systemFailure: return std::get<std::string>(payload);
    case SplitError::Kind::displayNotFound: return "the display is not attached";
    case SplitError::Kind::notIdentified: return "the monitor has not been identified";
    case SplitError::Kind::confirmationPending: return "another change is waiting for confirmation";
    case SplitError::Kind::unreadableEDID: return "the display's EDID cannot be read";
    case SplitError::Kind::overrideNotTaken:
        return "the display keeps reporting another EDID than the override written to it";
    case SplitError::Kind::hardware: return std::get<HardwareFailure>(payload).detail;
    }
    return "unknown error";
}

} // namespace

SplitError::SplitError(Kind kind, Payload payload)
    : kind_(kind), payload_(std::move(payload)), what_(describe(kind_, payload_)) {}

SplitError SplitError::wrapping(const std::exception& error) {
    if (const auto* split = dynamic_cast<const SplitError*>(&error)) return *split;
    return systemFailure(error.what());
}

SplitError SplitError::hardwareFailureOfCurrentException(DisplayOperation operation) {
    try {
        throw;
    } catch (const SplitError& error) {
        if (error.kind() != Kind::systemFailure) return error;
        return hardware(operation, *error.text());
    } catch (const std::exception& error) {
        return hardware(operation, error.what());
    } catch (...) {
        return hardware(operation, "unknown error");
    }
}

SplitError SplitError::wrappingCurrentException() {
    try {
        throw;
    } catch (const std::exception& error) {
        return wrapping(error);
    } catch (...) {
        return systemFailure("unknown error");
    }
}

ErrorMessage errorMessage(const SplitError& error) {
    using EK = EDIDKit::EDIDError::Kind;
    switch (error.kind()) {
    case SplitError::Kind::cannotAddSplit: {
        const EDIDKit::EDIDError& e = *error.edidError();
        const std::string size = EDIDKit::Resolution{e.width(), e.height()}.description();
        switch (e.kind()) {
        case EK::timingTooLarge: return {"error.nativeMissing", size};
        case EK::outOfRange: return {"error.outOfRange", size};
        case EK::noCTAExtension:
        case EK::noFreeDescriptorSlot: return {"error.noRoom", std::nullopt};
        default: return {"error.cannotAddSplit", std::nullopt};
        }
    }
    case SplitError::Kind::modeUnavailable: return {"error.modeUnavailable", error.resolution()->description()};
    case SplitError::Kind::systemFailure:
    case SplitError::Kind::hardware: return {"error.systemFailure", std::nullopt};
    case SplitError::Kind::displayNotFound: return {"error.displayNotFound", std::nullopt};
    case SplitError::Kind::notIdentified: return {"error.notIdentified", std::nullopt};
    case SplitError::Kind::confirmationPending: return {"error.confirmationPending", std::nullopt};
    case SplitError::Kind::unreadableEDID: return {"error.unreadableEDID", std::nullopt};
    case SplitError::Kind::overrideNotTaken:
        if (error.text()->empty()) return {"error.overrideNotTaken.unnamed", std::nullopt};
        return {"error.overrideNotTaken", *error.text()};
    }
    return {"error.systemFailure", std::nullopt};
}

} // namespace HalvoraCore
