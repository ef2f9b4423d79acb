#pragma once

#include <HalvoraPlatform/SystemLog.hpp>
#include <optional>
#include <string>

namespace HalvoraPro {

/// The launchd label under which the other EDID override service runs, the
/// one the conflict probe asks launchctl about. The build names it (an empty
/// name: the service is not looked for); a user who runs the service under
/// another label sets the user default "edidOverrideServiceLabel", read at
/// launch, without a rebuild.
struct OverrideServiceLabel {
    /// The label to look for: the user default when it holds text (spaces
    /// around it dropped; empty turns the detection off), otherwise the
    /// build's. A user default that cannot be a launchd label (anything but
    /// letters, digits, '.', '-' and '_') is ignored with a line in the log.
    static std::string choose(const std::string& buildSetting,
                              const std::optional<std::string>& userDefault, const HalvoraPlatform::LogSink& log);
    /// Whether `label` can name a launchd job inside a launchctl service
    /// target ("gui/UID/LABEL"): letters, digits, '.', '-' and '_' only.
    static bool isValid(const std::string& label);
};

} // namespace HalvoraPro
