#pragma once

#include <HalvoraPlatform/seams/WorkspaceNotifications.hpp>
#include <vector>

namespace TestDoubles {

/// Workspace notifications a test posts by hand.
class ScriptedWorkspace final : public HalvoraPlatform::WorkspaceNotifications {
public:
    void observe(std::function<void(Event)> callback) override {
        observers.push_back(std::move(callback));
    }
    void post(Event event) {
        for (const auto& o : observers)
            o(event);
    }
    std::vector<std::function<void(Event)>> observers;
};

} // namespace TestDoubles
