#pragma once

#include <HalvoraPlatform/seams/CoreGraphicsDisplays.hpp>
#include <vector>

namespace TestDoubles {

/// Reconfiguration callbacks a test fires by hand, as CoreGraphics would.
class ScriptedReconfigurationEvents final : public HalvoraPlatform::ReconfigurationEvents {
public:
    using Callback =
        std::function<void(HalvoraPlatform::CoreGraphicsDisplays::DisplayNumber, std::uint32_t)>;
    void registerCallback(Callback callback) override { callbacks.push_back(std::move(callback)); }
    void fire(HalvoraPlatform::CoreGraphicsDisplays::DisplayNumber display, std::uint32_t flags) {
        for (const auto& c : callbacks)
            c(display, flags);
    }
    std::vector<Callback> callbacks;
};

} // namespace TestDoubles
