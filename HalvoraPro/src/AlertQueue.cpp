#include <HalvoraPro/AlertQueue.hpp>

namespace HalvoraPro {

void AlertQueue::enqueue(Alert alert, std::function<void(std::size_t)> response) {
    waiting_.push_back({std::move(alert), std::move(response)});
    if (running_) return; // the alert up now is answered first
    running_ = true;
    while (!waiting_.empty()) {
        Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        const std::size_t button = run_(next.alert);
        if (next.response) next.response(button);
    }
    running_ = false;
}

} // namespace HalvoraPro
