#include <HalvoraPlatform/ThreadBackgroundQueue.hpp>

namespace HalvoraPlatform {

ThreadBackgroundQueue::ThreadBackgroundQueue() : worker_([this] { run(); }) {}

ThreadBackgroundQueue::~ThreadBackgroundQueue() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        work_.clear();
    }
    wake_.notify_all();
    worker_.join();
}

void ThreadBackgroundQueue::async(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
    }
    wake_.notify_one();
}

void ThreadBackgroundQueue::run() {
    for (;;) {
        std::function<void()> next;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return stopping_ || !work_.empty(); });
            if (stopping_) return;
            next = std::move(work_.front());
            work_.pop_front();
        }
        next();
    }
}

} // namespace HalvoraPlatform
