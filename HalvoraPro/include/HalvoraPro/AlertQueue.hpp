#pragma once

#include <HalvoraPro/Alert.hpp>

#include <cstddef>
#include <deque>
#include <functional>

namespace HalvoraPro {

/// Modal alerts one after another. A platform's modal alert runs a loop of
/// its own in which timers and callbacks go on, so a second alert can be
/// asked for while the first is still up; it waits until the first is
/// answered instead of opening on top of it.
class AlertQueue {
public:
    /// Runs one alert modally and returns the index of the button chosen.
    using Runner = std::function<std::size_t(const Alert&)>;

    explicit AlertQueue(Runner run) : run_(std::move(run)) {}

    /// Runs the alert now, or after the ones before it; `response` gets the
    /// button chosen.
    void enqueue(Alert alert, std::function<void(std::size_t)> response);
    bool isRunning() const { return running_; }
    std::size_t waiting() const { return waiting_.size(); }

private:
    struct Waiting {
        Alert alert;
        std::function<void(std::size_t)> response;
    };
    Runner run_;
    std::deque<Waiting> waiting_;
    bool running_ = false;
};

} // namespace HalvoraPro
