#include <HalvoraPlatform/EntryBarrier.hpp>
#include <HalvoraPlatform/Launchctl.hpp>
#include <HalvoraPlatform/LiveConflictProbe.hpp>
#include <HalvoraPro/Application.hpp>
#include <HalvoraPro/OverrideServiceLabel.hpp>
#include <cstdio>
#include <cstdlib>

namespace HalvoraPro {

std::unique_ptr<Application> Application::start(Platform platform,
                                                HalvoraCore::SplitController::Start how) {
    std::unique_ptr<Application> app(new Application());
    app->log_ = platform.log ? platform.log : HalvoraPlatform::LogSink(HalvoraPlatform::systemLog);
    const auto runLoop = platform.displays.runLoop;
    app->scheduler_ = std::make_shared<HalvoraPlatform::LiveScheduler>(runLoop);
    app->displaySystem_ = HalvoraPlatform::LiveDisplaySystem::create(platform.displays);
    app->store_ = std::make_shared<HalvoraPlatform::LiveSettingsStore>(
        platform.settingsFile ? *platform.settingsFile
                              : HalvoraPlatform::LiveSettingsStore::defaultURL(platform.homeLookup),
        app->log_);
    // A second copy on the same settings folder stops here, before it has
    // touched a display or a file.
    app->store_->holdFolder();
    app->overrideServiceLabel_ = OverrideServiceLabel::choose(
        platform.overrideServiceLabel,
        platform.defaults ? platform.defaults->stringValue(UserDefaults::edidOverrideServiceLabel)
                          : std::nullopt,
        app->log_);
    const auto liveProbe =
        std::make_shared<HalvoraPlatform::LiveConflictProbe>(HalvoraPlatform::LiveConflictProbe::Parts{
            HalvoraPlatform::Launchctl(platform.processes), platform.otherApplications, platform.displays.coreGraphics,
            app->overrideServiceLabel_, platform.userID});
    // The menu never waits for launchctl: the probe looks in the background.
    app->conflictProbe_ =
        HalvoraPlatform::BackgroundConflictProbe::create(liveProbe, platform.backgroundQueue, runLoop);
    app->controller_ = HalvoraCore::SplitController::create(app->displaySystem_, app->scheduler_,
                                                            app->store_, app->conflictProbe_, how);
    app->conflictProbe_->reportTo(app->controller_);
    // The update framework starts once everything it may interrupt runs.
    app->updaterDriver_ = platform.startUpdaterDriver
                              ? platform.startUpdaterDriver()
                              : std::make_shared<UnavailableUpdaterDriver>();
    app->updater_ = std::make_shared<Updater>(app->updaterDriver_);
    app->loginItem_ =
        std::make_shared<LoginItem>(platform.loginItemService, platform.defaults, platform.log);
    app->menu_ = MenuBarController::create({app->controller_, app->updater_, app->loginItem_,
                                            platform.defaults, app->scheduler_, platform.view,
                                            platform.localize, app->store_->status()});
    app->menu_->setMissingPlatformCalls(app->displaySystem_->missingPlatformCalls());
    return app;
}

void Application::exceptionEscaped(std::string_view entry) {
    log_(HalvoraPlatform::EntryBarrier::describeCurrentException(entry));
    if (menu_) menu_->show(HalvoraCore::SplitError::wrappingCurrentException());
}

std::unique_ptr<Application> Application::startOrStop(Platform platform,
                                                      HalvoraCore::SplitController::Start how) {
    // Without a settings folder the process ends here, before any window exists.
    if (!platform.settingsFile)
        (void)HalvoraPlatform::LiveSettingsStore::defaultURLOrStop(
            platform.homeLookup, platform.log ? platform.log : HalvoraPlatform::LogSink(HalvoraPlatform::systemLog));
    const auto view = platform.view;
    const HalvoraPlatform::LogSink log = platform.log ? platform.log : HalvoraPlatform::LogSink(HalvoraPlatform::systemLog);
    try {
        return start(std::move(platform), how);
    } catch (const HalvoraPlatform::SettingsFolderInUse& inUse) {
        // Another copy is running on these settings: say so, then end.
        log("Halvora Pro: " + std::string(inUse.what()) + "; this copy quits");
        std::fputs(("Halvora Pro: " + std::string(inUse.what()) + "; this copy quits\n").c_str(),
                   stderr);
        // An alert is application-modal: the application comes to the front for it.
        view->activateApplication();
        view->runAlert(settingsInUseAlert(inUse.folder()), [](std::size_t) {});
        std::exit(EXIT_SUCCESS);
    }
}

} // namespace HalvoraPro
