#pragma once

#include <HalvoraCore/ConflictProbe.hpp>
#include <HalvoraCore/SplitController.hpp>
#include <HalvoraPlatform/seams/BackgroundQueue.hpp>
#include <HalvoraPlatform/seams/MainRunLoop.hpp>
#include <functional>
#include <memory>
#include <optional>

namespace HalvoraPlatform {

/// A conflict probe that never makes the main thread wait: `detect()` answers
/// at once with the latest known result and has the real probe (which may
/// run launchctl for up to 3 s) look again on a background queue. When that
/// finds something different, `onNewResult` is called on the main thread, so
/// the controller can take it in (and an open menu shows it).
class BackgroundConflictProbe final : public HalvoraCore::ConflictProbe,
                                      public std::enable_shared_from_this<BackgroundConflictProbe> {
public:
    static std::shared_ptr<BackgroundConflictProbe>
    create(std::shared_ptr<HalvoraCore::ConflictProbe> probe,
           std::shared_ptr<HalvoraPlatform::BackgroundQueue> queue,
           std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop);

    /// A result that differs from the one known before came in.
    std::function<void()> onNewResult;
    /// Hands every new result to the controller (its conflict check), which
    /// tells the menu; the controller is held weakly.
    void reportTo(const std::weak_ptr<HalvoraCore::SplitController>& controller);

    /// The latest known result (nothing is known before the first look ends);
    /// starts a look unless one is under way, or the latest result has just
    /// come in and not been asked for yet.
    HalvoraCore::ConflictSet detect() override;
    /// Takes over on the main thread (the user asked and waits for it), then
    /// looks again in the background. Throws what the real probe throws.
    void takeOver(HalvoraCore::ConflictingTool tool) override;

    bool isLooking() const { return looking_; }

private:
    BackgroundConflictProbe(std::shared_ptr<HalvoraCore::ConflictProbe> probe,
                            std::shared_ptr<HalvoraPlatform::BackgroundQueue> queue,
                            std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop);
    void look();
    void found(HalvoraCore::ConflictSet result);

    std::shared_ptr<HalvoraCore::ConflictProbe> probe_;
    std::shared_ptr<HalvoraPlatform::BackgroundQueue> queue_;
    std::shared_ptr<HalvoraPlatform::MainRunLoop> runLoop_;
    HalvoraCore::ConflictSet latest_;
    bool looking_ = false;
    bool unasked_ = false;
};

} // namespace HalvoraPlatform
