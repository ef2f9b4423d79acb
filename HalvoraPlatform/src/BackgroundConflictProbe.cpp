#include <HalvoraPlatform/BackgroundConflictProbe.hpp>

namespace HalvoraPlatform {

BackgroundConflictProbe::BackgroundConflictProbe(
    std::shared_ptr<HalvoraCore::ConflictProbe> probe,
    std::shared_ptr<HalvoraPlatform::BackgroundQueue> queue,
    std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop)
    : probe_(std::move(probe)), queue_(std::move(queue)), runLoop_(std::move(runLoop)) {}

std::shared_ptr<BackgroundConflictProbe>
BackgroundConflictProbe::create(std::shared_ptr<HalvoraCore::ConflictProbe> probe,
                                std::shared_ptr<HalvoraPlatform::BackgroundQueue> queue,
                                std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop) {
    return std::shared_ptr<BackgroundConflictProbe>(
        new BackgroundConflictProbe(std::move(probe), std::move(queue), std::move(runLoop)));
}

HalvoraCore::ConflictSet BackgroundConflictProbe::detect() {
    // A result that has just come in answers the question it was looked for.
    if (unasked_)
        unasked_ = false;
    else
        look();
    return latest_;
}

void BackgroundConflictProbe::look() {
    if (looking_) return;
    looking_ = true;
    // The real probe runs on the queue; only its result comes back to the main thread.
    queue_->async([probe = probe_, runLoop = runLoop_, weak = weak_from_this()] {
        HalvoraCore::ConflictSet result = probe->detect();
        runLoop->dispatchAsync([weak, result = std::move(result)]() mutable {
            if (const auto self = weak.lock()) self->found(std::move(result));
        });
    });
}

void BackgroundConflictProbe::found(HalvoraCore::ConflictSet result) {
    looking_ = false;
    if (result == latest_) return;
    latest_ = std::move(result);
    unasked_ = true;
    if (onNewResult) onNewResult();
}

void BackgroundConflictProbe::reportTo(
    const std::weak_ptr<HalvoraCore::SplitController>& controller) {
    onNewResult = [controller] {
        if (const auto c = controller.lock()) c->checkConflicts();
    };
}

void BackgroundConflictProbe::takeOver(HalvoraCore::ConflictingTool tool) {
    probe_->takeOver(tool);
    look();
}

} // namespace HalvoraPlatform
