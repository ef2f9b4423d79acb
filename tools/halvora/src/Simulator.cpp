#include "Simulator.hpp"

#include "CommandWords.hpp"
#include "MirroredShellView.hpp"
#include <HalvoraSimulation/SimulatedUpdaterDriver.hpp>

#include <EDIDKit/EDID.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPlatform/AtomicFile.hpp>
#include <HalvoraPlatform/FileReading.hpp>
#include <HalvoraPro/LocalizedStrings.hpp>
#include <HalvoraSimulation/SimulatedLoginItemService.hpp>
#include <HalvoraSimulation/SimulatedMac.hpp>
#include <HalvoraSimulation/SimulatedUserDefaults.hpp>
#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace Halvora {

using HalvoraSimulation::RecordedMachine;
using HalvoraCore::ConflictingTool;
using HalvoraPro::MenuItem;
using HalvoraPro::PanelKind;

namespace {

std::string sourceName(HalvoraSimulation::RecordedMachine::Source source) {
    switch (source) {
    case HalvoraSimulation::RecordedMachine::Source::factoryFull:
        return "factory-full";
    case HalvoraSimulation::RecordedMachine::Source::factorySplit:
        return "factory-split";
    case HalvoraSimulation::RecordedMachine::Source::override:
        break;
    }
    return "override";
}

std::string stepName(HalvoraCore::IdentificationWizard::Step::Kind kind) {
    using Kind = HalvoraCore::IdentificationWizard::Step::Kind;
    switch (kind) {
    case Kind::chooseNative:
        return "chooseNative";
    case Kind::confirming:
        return "confirming";
    case Kind::finished:
        return "finished";
    case Kind::reverted:
        return "reverted";
    case Kind::replugGuidance:
        return "replugGuidance";
    case Kind::displayUnavailable:
        return "displayUnavailable";
    case Kind::togglePBP:
        break;
    }
    return "togglePBP";
}

/// Whether an EDID lists the split timing of the panel whose factory EDID is `full`.
bool listsSplitOf(const EDIDKit::Bytes& reported, const EDIDKit::Bytes& full) {
    const auto fullEDID = EDIDKit::EDID::tryParse(full);
    const auto reportedEDID = EDIDKit::EDID::tryParse(reported);
    const auto native = fullEDID ? fullEDID->nativeResolution() : std::nullopt;
    return native && reportedEDID &&
           reportedEDID->hasTiming(EDIDKit::SplitLayout::halves.splitResolution(*native));
}

} // namespace

Simulator::Simulator(Rig rig, std::filesystem::path settingsFile, std::ostream& out, bool safeStart,
                     RealViews real)
    : rig_(std::move(rig)), settingsFile_(std::move(settingsFile)), out_(out),
      clock_(std::make_shared<HalvoraSimulation::VirtualClock>()),
      mac_(HalvoraSimulation::SimulatedMac::create(rig_.monitors, clock_)),
      view_(std::make_shared<HalvoraSimulation::SimulatedShellView>(out, clock_)), real_(std::move(real)),
      defaults_(std::make_shared<HalvoraSimulation::SimulatedUserDefaults>()) {
    if (!real_.gestures) real_.gestures = std::make_shared<DirectGestures>();
    shownOn_ = real_.mirror ? std::make_shared<MirroredShellView>(view_, real_.mirror)
                            : std::static_pointer_cast<HalvoraPro::ShellView>(view_);
    view_->onMenuUpdate = [this](const HalvoraPro::Menu& menu) {
        if (menu_.empty()) return;
        menu_ = menu;
        view_->note("The open menu changes:");
        printItems();
    };
    seen_ = mac_.machine->ports();
    // Registered before the application's own callback, so each change is
    // told before what the application does about it.
    mac_.machine->registerCallback(
        [this](HalvoraPlatform::CoreGraphicsDisplays::DisplayNumber, std::uint32_t flags) {
            if (!(flags & HalvoraPlatform::LiveDisplaySystem::beginConfigurationFlag))
                reportDisplayChanges();
        });
    mac_.machine->setTool(ConflictingTool::edidOverrideService, rig_.edidOverrideService);
    mac_.machine->setTool(ConflictingTool::betterDisplay, rig_.betterDisplay);
    loginItemService_ = std::make_shared<HalvoraSimulation::SimulatedLoginItemService>();
    updaterDriver_ = std::make_shared<HalvoraSimulation::SimulatedUpdaterDriver>(*view_);
    launchProblem_ = launch(safeStart);
    if (launchProblem_) out_ << "! " << *launchProblem_ << "\n";
}

Simulator::~Simulator() = default;

std::optional<std::string> Simulator::launch(bool safe) {
    view_->reset();
    menu_.clear();
    view_->note(safe ? "Halvora Pro starts with the Option key held" : "Halvora Pro starts");
    // A new process, put together as on a Mac, on the recorded machine.
    HalvoraPro::Platform platform = mac_.platform();
    platform.settingsFile = settingsFile_;
    platform.view = shownOn_;
    platform.defaults = defaults_;
    platform.loginItemService = loginItemService_;
    platform.startUpdaterDriver = [driver = updaterDriver_] { return driver; };
    platform.log = [this](const std::string& line) { view_->note("log: " + line); };
    platform.localize = [](const HalvoraPro::Text& text) {
        return HalvoraPro::LocalizedStrings::english().resolve(text);
    };
    try {
        application_ = HalvoraPro::Application::start(std::move(platform),
                                                      HalvoraPro::Application::startFor(safe));
    } catch (const HalvoraPlatform::SettingsFolderInUse& inUse) {
        // As on a Mac: this copy says so, and quits.
        view_->runAlert(HalvoraPro::settingsInUseAlert(inUse.folder()), {});
        view_->terminate();
        shutDown();
        return inUse.what();
    }
    std::static_pointer_cast<HalvoraSimulation::SimulatedUpdaterDriver>(updaterDriver_)
        ->attach(application_->updater());
    settingsTroubleSeen_.reset();
    if (real_.launched) real_.launched(*application_);
    clock_->advance(0);
    return newSettingsTrouble();
}

std::optional<std::string> Simulator::newSettingsTrouble() {
    if (!application_) return std::nullopt;
    const auto& trouble = application_->store()->status()->trouble();
    if (!trouble) {
        settingsTroubleSeen_.reset();
        return std::nullopt;
    }
    if (settingsTroubleSeen_ == trouble->kind) return std::nullopt;
    settingsTroubleSeen_ = trouble->kind;
    const std::string where = trouble->path + ": " + trouble->why;
    switch (trouble->kind) {
    case HalvoraPlatform::SettingsTrouble::Kind::notRestored:
        return "the settings were not restored and are not saved: " + where;
    case HalvoraPlatform::SettingsTrouble::Kind::savingOff:
        return "the settings are not saved: " + where;
    case HalvoraPlatform::SettingsTrouble::Kind::saveFailed:
        break;
    }
    return "saving the settings failed: " + where;
}

void Simulator::reportDisplayChanges() {
    const auto ports = mac_.machine->ports();
    for (std::size_t i = 0; i < ports.size(); ++i) {
        const auto& now = ports[i];
        const auto& before = seen_[i];
        if (!now.attached) continue;
        const bool edidChanged = now.reportedEDID != before.reportedEDID || !before.attached;
        // A port that re-enumerates on every write shows each one, changed or not.
        const bool writtenAgain = now.overrideWriteTimes.size() > before.overrideWriteTimes.size();
        if (!edidChanged && !writtenAgain && now.mode == before.mode) continue;
        std::string what;
        if (edidChanged) {
            switch (now.source) {
            case HalvoraSimulation::RecordedMachine::Source::factoryFull:
                what = "its own EDID";
                break;
            case HalvoraSimulation::RecordedMachine::Source::factorySplit:
                what = "its own picture-by-picture EDID";
                break;
            case HalvoraSimulation::RecordedMachine::Source::override:
                what = now.writer == HalvoraSimulation::RecordedMachine::Writer::halvora
                           ? "Halvora Pro's override EDID"
                           : "the EDID override service's EDID";
                break;
            }
            what += ", ";
        } else if (writtenAgain) {
            what = "Halvora Pro's override EDID again, ";
        }
        view_->note("Display " + now.name + ": " + what +
                    (now.mode ? now.mode->description() : "no mode"));
    }
    seen_ = ports;
}

void Simulator::leaveUnfinishedSave() const {
    // A writer killed half-way leaves its temporary file beside the settings
    // file, half written, and the settings file as it was. With saving off
    // there was no save to kill.
    if (!application_ || !application_->store()->isSaving()) return;
    std::string content;
    try {
        content =
            HalvoraPlatform::readWholeFile(settingsFile_, HalvoraPlatform::LiveSettingsStore::sizeLimit);
    } catch (const HalvoraPlatform::FileReadError&) {
        // No settings file, or none that is read: the save was of nothing yet.
    }
    const auto unfinished =
        HalvoraPlatform::temporaryFileFor(settingsFile_, "killed-" + std::to_string(++unfinishedSaves_));
    std::ofstream(unfinished, std::ios::binary) << content.substr(0, content.size() / 2);
}

void Simulator::shutDown() {
    // The process ends: its windows go, and whatever it had scheduled never runs.
    application_.reset();
    menu_.clear();
    view_->reset();
    if (real_.ended) real_.ended();
}

HalvoraPro::MenuBarController& Simulator::shell() {
    if (!application_) throw CommandError("Halvora Pro is not running (use 'launch')");
    return *application_->menu();
}

void Simulator::requireMonitor(const std::string& name) const {
    for (const auto& m : rig_.monitors)
        if (m.name == name) return;
    throw CommandError("no monitor is named '" + name + "'");
}

std::string Simulator::nameOf(const HalvoraCore::DisplayID& display) const {
    return mac_.machine->nameOf(display).value_or(display.rawValue);
}

bool Simulator::execute(const std::string& line) {
    const auto words = wordsOf(line);
    if (words.empty()) return true;
    bool carriedOut = true;
    try {
        run(words);
    } catch (const CommandError& error) {
        lastFailure_ = error.what();
        out_ << "! " << lastFailure_ << "\n";
        carriedOut = false;
    }
    clock_->advance(0);
    // A save that failed on the way fails the command, after its alert.
    if (const auto trouble = newSettingsTrouble()) {
        lastFailure_ = *trouble;
        out_ << "! " << lastFailure_ << "\n";
        carriedOut = false;
    }
    if (view_->hasTerminated()) shutDown();
    return carriedOut;
}

nlohmann::json Simulator::savedSettings() const {
    std::string content;
    try {
        content =
            HalvoraPlatform::readWholeFile(settingsFile_, HalvoraPlatform::LiveSettingsStore::sizeLimit);
    } catch (const HalvoraPlatform::FileReadError& error) {
        // Missing: nothing saved yet; anything else is not a settings file.
        return error.reason() == HalvoraPlatform::FileReadError::Reason::missing
                   ? nlohmann::json::array()
                   : nlohmann::json(nullptr);
    }
    try {
        return nlohmann::json::parse(content);
    } catch (const nlohmann::json::exception&) {
        return nullptr;
    }
}

SelfTestObserver::Shown Simulator::windowsShown() const {
    SelfTestObserver::Shown shown;
    const auto text = [this](const std::vector<HalvoraPro::Text>& texts) {
        std::string joined;
        for (const auto& t : texts)
            joined += view_->say(t) + "\n";
        return joined;
    };
    const auto panel = [&](PanelKind kind, ShownWindow window) {
        if (!view_->isPanelShown(kind)) return;
        const auto* content = view_->panelContent(kind);
        shown[window] = content ? text({content->title, content->message, content->cancelButton,
                                        content->defaultButton})
                                : "";
    };
    panel(PanelKind::confirmation, ShownWindow::confirmationPanel);
    panel(PanelKind::switchPrompt, ShownWindow::switchPrompt);
    if (const auto& window = view_->identification()) {
        std::vector<HalvoraPro::Text> texts{window->windowTitle, window->heading};
        texts.insert(texts.end(), window->rows.begin(), window->rows.end());
        std::string radios;
        for (const auto& radio : window->radios)
            radios += (radio.on ? "(*) " : "( ) ") + view_->say(radio.label) + "\n";
        shown[ShownWindow::identificationWindow] =
            text(texts) + radios + view_->say(window->primary.title);
    }
    if (!view_->alerts().empty()) {
        // The oldest open alert, by its number among all alerts shown: alerts
        // are answered oldest first, so each comes to the front once, in order.
        const auto& alert = view_->alerts().front().alert;
        const std::size_t number = view_->alertsShown() - view_->alerts().size() + 1;
        shown[ShownWindow::alert] =
            std::to_string(number) + "\n" + text({alert.title, alert.message});
    }
    return shown;
}

nlohmann::json Simulator::state() const {
    nlohmann::json s;
    s["time"] = clock_->now();
    s["monitors"] = nlohmann::json::array();
    for (const auto& port : mac_.machine->ports()) {
        const auto& monitor = *std::find_if(rig_.monitors.begin(), rig_.monitors.end(),
                                            [&](const auto& m) { return m.name == port.name; });
        s["monitors"].push_back({{"name", port.name},
                                 {"attached", port.attached},
                                 {"pbp", port.pbp},
                                 {"edid", sourceName(port.source)},
                                 {"edidHasSplit", listsSplitOf(port.reportedEDID, monitor.full)},
                                 {"mode", port.mode ? nlohmann::json(port.mode->description())
                                                    : nlohmann::json(nullptr)}});
        if (monitor.alterOnWrite)
            s["monitors"].back()["overrideWrites"] = port.overrideWriteTimes.size();
        if (controllerNow() && port.id && controllerNow()->isRewriteStopped(*port.id))
            s["monitors"].back()["rewritesStopped"] = true;
        // Who wrote an override: this application or the other tool.
        if (port.writer)
            s["monitors"].back()["overrideBy"] = *port.writer == HalvoraSimulation::RecordedMachine::Writer::halvora
                                                     ? "halvora"
                                                     : "edidOverrideService";
    }
    s["pendingConfirmation"] = nullptr;
    s["switchPrompt"] = nullptr;
    s["conflicts"] = nlohmann::json::array();
    const auto* controller = controllerNow();
    if (controller && controller->isSafeStart()) s["safeStart"] = true;
    if (controller) {
        if (const auto pending = controller->pendingConfirmation())
            s["pendingConfirmation"] = {{"display", nameOf(pending->display)},
                                        {"deadline", pending->deadline}};
        if (const auto& prompt = controller->switchPrompt())
            s["switchPrompt"] = {
                {"display", nameOf(prompt->display)},
                {"target", prompt->target == HalvoraCore::ModeChoice::full ? "full" : "split"},
                {"resolution", prompt->resolution.description()},
                {"deadline", prompt->deadline}};
        for (const auto tool : controller->conflicts())
            s["conflicts"].push_back(tool == ConflictingTool::edidOverrideService
                                         ? "edidOverrideService"
                                         : "betterDisplay");
    }
    const auto window = application_ ? application_->menu()->identification() : nullptr;
    s["panels"] = {{"confirmation", view_->isPanelShown(PanelKind::confirmation)},
                   {"switchPrompt", view_->isPanelShown(PanelKind::switchPrompt)},
                   {"identification", window
                                          ? nlohmann::json(stepName(window->wizard().step().kind))
                                          : nlohmann::json(nullptr)}};
    s["alerts"] = nlohmann::json::array();
    for (const auto& alert : view_->alerts())
        s["alerts"].push_back({{"title", view_->say(alert.alert.title)},
                               {"message", view_->say(alert.alert.message)}});
    s["settings"] = savedSettings();
    return s;
}

} // namespace Halvora
