#pragma once

#include <HalvoraPlatform/seams/BackgroundQueue.hpp>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace HalvoraPlatform {

/// A background queue of one worker thread, in submission order. Destroying
/// it waits for the work under way and drops what has not started.
class ThreadBackgroundQueue final : public BackgroundQueue {
public:
    ThreadBackgroundQueue();
    ~ThreadBackgroundQueue() override;
    ThreadBackgroundQueue(const ThreadBackgroundQueue&) = delete;
    ThreadBackgroundQueue& operator=(const ThreadBackgroundQueue&) = delete;

    void async(std::function<void()> work) override;

private:
    void run();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> work_;
    bool stopping_ = false;
    std::thread worker_;
};

} // namespace HalvoraPlatform
