#pragma once

#include <functional>

namespace HalvoraPlatform {

/// Work that must not hold up the main thread (a global dispatch queue on a
/// Mac). The work runs on another thread; it brings its result back through
/// the main run loop.
class BackgroundQueue {
public:
    virtual ~BackgroundQueue() = default;
    virtual void async(std::function<void()> work) = 0;
};

} // namespace HalvoraPlatform
