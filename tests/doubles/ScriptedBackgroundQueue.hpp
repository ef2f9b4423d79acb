#pragma once

#include <HalvoraPlatform/seams/BackgroundQueue.hpp>

#include <cstddef>
#include <functional>
#include <vector>

namespace TestDoubles {

/// A queue whose work runs only when the test says so.
class ScriptedBackgroundQueue final : public HalvoraPlatform::BackgroundQueue {
public:
    void async(std::function<void()> work) override { work_.push_back(std::move(work)); }
    std::size_t waiting() const { return work_.size(); }
    void runAll() {
        auto work = std::move(work_);
        work_.clear();
        for (auto& w : work)
            w();
    }

private:
    std::vector<std::function<void()>> work_;
};

} // namespace TestDoubles
