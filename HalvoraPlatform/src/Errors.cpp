#include <HalvoraPlatform/DisplayModeError.hpp>
#include <HalvoraPlatform/IOAVError.hpp>

#include <cstdio>

namespace HalvoraPlatform {

IOAVError::IOAVError(std::string call, std::int32_t code) : call_(std::move(call)), code_(code) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "%X", static_cast<std::uint32_t>(code));
    description_ = call_ + " failed: 0x" + hex;
}

DisplayModeError::DisplayModeError(const ModeSpec& spec)
    : kind_(Kind::noSuchMode), spec_(spec),
      description_("the display has no " + spec.description() + " mode \u2014 apply an EDID that contains it first") {}

DisplayModeError::DisplayModeError(std::int32_t code)
    : kind_(Kind::switchFailed), code_(code), description_("switching mode failed: " + std::to_string(code)) {}

} // namespace HalvoraPlatform
