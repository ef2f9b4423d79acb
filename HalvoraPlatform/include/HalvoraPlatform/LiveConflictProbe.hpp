#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraPlatform/Launchctl.hpp>
#include <HalvoraPlatform/OtherOverrideTools.hpp>
#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <HalvoraPlatform/seams/OtherApplication.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace HalvoraPlatform {

/// The EDID override service's launch agent could not be stopped.
class TakeOverFailed : public std::runtime_error {
public:
    TakeOverFailed() : std::runtime_error("the EDID override service could not be stopped") {}
};

/// Finds the two other tools that write override EDIDs: the EDID override
/// service's launch agent (loaded, as launchctl tells) and BetterDisplay (running,
/// with its automatic EDID override on for a display that is connected), and
/// stops the launch agent on the user's request. Whenever BetterDisplay's
/// settings cannot be read or understood, its override is taken to concern a
/// connected display.
class LiveConflictProbe final : public HalvoraCore::ConflictProbe {
public:
    struct Parts {
        Launchctl launchctl;
        std::shared_ptr<HalvoraPlatform::OtherApplication> betterDisplay;
        std::shared_ptr<HalvoraPlatform::CoreGraphicsDisplays> coreGraphics;
        /// The launchd label of the EDID override service's launch agent;
        /// empty when the build does not know it (the service is then never
        /// found, and launchctl never asked).
        std::string serviceLabel;
        /// The current user's numeric ID (getuid).
        std::function<unsigned()> userID;
    };

    explicit LiveConflictProbe(Parts parts);

    /// "gui/501/LABEL": the launch agent's service target.
    std::string serviceTarget() const;

    HalvoraCore::ConflictSet detect() override;
    /// Stops the launch agent (BetterDisplay is only ever reported). Throws TakeOverFailed.
    void takeOver(HalvoraCore::ConflictingTool tool) override;

    /// BetterDisplay runs and applies an EDID override to a connected display.
    bool betterDisplayAutoApplies();
    /// Whether a "storedIdentifiers@" value names a connected display (or
    /// cannot be understood, or is absent).
    bool isConnected(const std::optional<std::string>& storedIdentifiers);

private:
    Parts parts_;
};

} // namespace HalvoraPlatform
