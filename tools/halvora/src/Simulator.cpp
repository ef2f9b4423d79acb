#include "Simulator.hpp"

#include <HalvoraPro/SimulatedMac.hpp>

#include <EDIDKit/EDID.hpp>
#include <HalvoraCore/SettingsCoding.hpp>
#include <HalvoraPro/AtomicFile.hpp>
#include <HalvoraPro/LocalizedStrings.hpp>
#include <HalvoraPro/SimulatedLoginItemService.hpp>
#include <algorithm>
#include <charconv>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace Halvora {

using DisplayHardware::RecordedMachine;
using HalvoraCore::ConflictingTool;
using HalvoraPro::MenuItem;
using HalvoraPro::PanelKind;

const char* const Simulator::help = R"(Commands (one a line; # starts a comment):
  plug NAME | unplug NAME        attach or detach a monitor
  pbp NAME on|off                toggle picture-by-picture on the monitor
  interrupt NAME                 the monitor raises a port interrupt
  sleep | wake                   the displays sleep or wake
  wait SECONDS                   let virtual time pass (up to 3600 s), running
                                 what falls due
  menu                           open the menu and list its items
  click N                        choose item N of the menu last opened
  keep | revert                  the confirmation panel's buttons
  prompt switch|ignore           the switch prompt's buttons
  window choose N|none           pick a resolution in the identification window
  window confirm|toggle-done|skip|recheck|close
                                 the identification window's buttons
  alert N                        press button N of the oldest open alert
  tool edid-override|betterdisplay on|off
                                 start or stop another EDID override tool
  update-found VERSION           a scheduled update check finds VERSION
  quit                           the menu's quit item
  crash [mid-save]               Halvora Pro dies without quitting (mid-save:
                                 while writing its settings file)
  launch [--safe]                start Halvora Pro again after quitting;
                                 --safe: with the Option key held
  state                          the whole state as one line of JSON
  settings                       the saved settings (displays.json)
  help                           this list
)";

namespace {

/// A command that cannot be carried out; the simulator says why and goes on.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The update framework in the simulator: a check the user asks for opens
/// its window, which the user looks at at once.
class SimulatedUpdaterDriver final : public HalvoraPro::UpdaterDriver {
public:
    explicit SimulatedUpdaterDriver(SimulatorView& view) : view_(view) {}
    bool canCheckForUpdates() const override { return true; }
    void checkForUpdates() override {
        const auto updater = updater_.lock();
        if (updater && updater->pendingVersion()) {
            view_.note("The update window shows Halvora Pro " + *updater->pendingVersion());
            updater->didReceiveUserAttention();
            updater->willFinishUpdateSession();
        } else {
            view_.note("The update window says Halvora Pro is up to date");
        }
    }
    void attach(std::weak_ptr<HalvoraPro::Updater> updater) { updater_ = std::move(updater); }

private:
    SimulatorView& view_;
    std::weak_ptr<HalvoraPro::Updater> updater_;
};

/// The longest single wait: an hour of virtual time already runs every timer
/// of the application thousands of times.
constexpr double maxWait = 3600;

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream in(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string w; in >> w;)
        words.push_back(w);
    return words;
}

void expectWords(const std::vector<std::string>& words, std::size_t count,
                 const std::string& usage) {
    if (words.size() != count) throw CommandError("usage: " + usage);
}

bool onOff(const std::string& word, const std::string& usage) {
    if (word == "on") return true;
    if (word == "off") return false;
    throw CommandError("usage: " + usage);
}

std::size_t number(const std::string& word, const std::string& usage) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || value == 0)
        throw CommandError("usage: " + usage);
    return value;
}

std::string sourceName(RecordedMachine::Source source) {
    switch (source) {
    case RecordedMachine::Source::factoryFull:
        return "factory-full";
    case RecordedMachine::Source::factorySplit:
        return "factory-split";
    case RecordedMachine::Source::override:
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
    try {
        const auto native = EDIDKit::EDID(full).nativeResolution();
        if (!native) return false;
        return EDIDKit::EDID(reported).hasTiming(
            EDIDKit::SplitLayout::halves.splitResolution(*native));
    } catch (...) {
        return false;
    }
}

} // namespace

Simulator::Simulator(Rig rig, std::filesystem::path settingsFile, std::ostream& out, bool safeStart)
    : rig_(std::move(rig)), settingsFile_(std::move(settingsFile)), out_(out),
      clock_(std::make_shared<DisplayHardware::VirtualClock>()),
      mac_(HalvoraPro::SimulatedMac::create(rig_.monitors, clock_)),
      view_(std::make_shared<SimulatorView>(out, clock_)),
      defaults_(std::make_shared<HalvoraPro::MemoryUserDefaults>()) {
    view_->onMenuUpdate = [this](const HalvoraPro::Menu& menu) {
        if (menu_.empty()) return;
        menu_ = menu;
        view_->note("The open menu changes:");
        printItems();
    };
    seen_ = mac_.machine->ports();
    // Registered before the application's own callback, so each change is
    // told before what the application does about it.
    mac_.machine->registerCallback([this](DisplayHardware::CoreGraphicsDisplays::DisplayNumber, std::uint32_t flags) {
        if (!(flags & HalvoraPro::LiveDisplaySystem::beginConfigurationFlag)) reportDisplayChanges();
    });
    mac_.machine->setTool(ConflictingTool::edidOverrideService, rig_.edidOverrideService);
    mac_.machine->setTool(ConflictingTool::betterDisplay, rig_.betterDisplay);
    loginItemService_ = std::make_shared<HalvoraPro::SimulatedLoginItemService>();
    updaterDriver_ = std::make_shared<SimulatedUpdaterDriver>(*view_);
    launch(safeStart);
}

Simulator::~Simulator() = default;

void Simulator::launch(bool safe) {
    view_->reset();
    menu_.clear();
    view_->note(safe ? "Halvora Pro starts with the Option key held" : "Halvora Pro starts");
    // A new process, put together as on a Mac, on the recorded machine.
    HalvoraPro::Platform platform = mac_.platform();
    platform.settingsFile = settingsFile_;
    platform.view = view_;
    platform.defaults = defaults_;
    platform.loginItemService = loginItemService_;
    platform.updaterDriver = updaterDriver_;
    platform.log = [this](const std::string& line) { view_->note("log: " + line); };
    platform.localize = [](const HalvoraPro::Text& text) {
        return HalvoraPro::LocalizedStrings::english().resolve(text);
    };
    application_ = HalvoraPro::Application::start(std::move(platform), HalvoraPro::Application::startFor(safe));
    std::static_pointer_cast<SimulatedUpdaterDriver>(updaterDriver_)->attach(application_->updater());
    clock_->advance(0);
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
            case RecordedMachine::Source::factoryFull:
                what = "its own EDID";
                break;
            case RecordedMachine::Source::factorySplit:
                what = "its own picture-by-picture EDID";
                break;
            case RecordedMachine::Source::override:
                what = now.writer == RecordedMachine::Writer::halvora
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
    // file, half written, and the settings file as it was.
    std::ifstream in(settingsFile_, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const auto unfinished = HalvoraPro::temporaryFileFor(settingsFile_, "killed-" + std::to_string(++unfinishedSaves_));
    std::ofstream(unfinished, std::ios::binary) << content.substr(0, content.size() / 2);
}

void Simulator::shutDown() {
    // The process ends: its windows go, and whatever it had scheduled never runs.
    application_.reset();
    menu_.clear();
    view_->reset();
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
    try {
        run(words);
        clock_->advance(0);
        if (view_->hasTerminated()) shutDown();
        return true;
    } catch (const CommandError& error) {
        out_ << "! " << error.what() << "\n";
    }
    clock_->advance(0);
    if (view_->hasTerminated()) shutDown();
    return false;
}

void Simulator::run(const std::vector<std::string>& words) {
    const std::string& command = words.front();
    if (command == "plug" || command == "unplug" || command == "interrupt") {
        expectWords(words, 2, command + " NAME");
        requireMonitor(words[1]);
        const bool attached = mac_.machine->port(words[1]).attached;
        if (command == "plug") {
            if (attached) return view_->note("Monitor " + words[1] + " is already plugged in");
            view_->note("Monitor " + words[1] + " is plugged in");
            mac_.machine->plug(words[1]);
        } else if (!attached) {
            view_->note("Monitor " + words[1] + " is not plugged in; nothing happens");
        } else if (command == "unplug") {
            view_->note("Monitor " + words[1] + " is unplugged");
            mac_.machine->unplug(words[1]);
        } else {
            view_->note("Monitor " + words[1] + " raises an interrupt");
            mac_.machine->interrupt(words[1]);
        }
    } else if (command == "pbp") {
        expectWords(words, 3, "pbp NAME on|off");
        const bool on = onOff(words[2], "pbp NAME on|off");
        requireMonitor(words[1]);
        if (mac_.machine->port(words[1]).pbp == on)
            return view_->note(words[1] + ": picture-by-picture is already " + (on ? "on" : "off"));
        view_->note(words[1] + ": picture-by-picture turned " + (on ? "on" : "off") +
                    " at the monitor");
        mac_.machine->setPBP(words[1], on);
    } else if (command == "sleep" || command == "wake") {
        expectWords(words, 1, command);
        if (command == "sleep")
            mac_.machine->sleep();
        else
            mac_.machine->wake();
        view_->note(command == "sleep" ? "The displays sleep" : "The displays wake");
    } else if (command == "wait") {
        expectWords(words, 2, "wait SECONDS");
        double seconds = 0;
        try {
            std::size_t used = 0;
            seconds = std::stod(words[1], &used);
            if (used != words[1].size() || !(seconds >= 0) || seconds > maxWait)
                throw std::invalid_argument("");
        } catch (const std::exception&) {
            throw CommandError("usage: wait SECONDS (a number of seconds from 0 to 3600)");
        }
        clock_->advance(seconds);
    } else if (command == "menu") {
        expectWords(words, 1, "menu");
        printMenu();
    } else if (command == "click") {
        expectWords(words, 2, "click N");
        click(number(words[1], "click N"));
    } else if (command == "keep" || command == "revert") {
        expectWords(words, 1, command);
        shell();
        const auto panel = shell().confirmationPanel();
        if (!panel || !view_->isPanelShown(PanelKind::confirmation))
            throw CommandError("no confirmation panel is shown");
        view_->note(command == "keep" ? "You press Keep" : "You press Revert");
        if (command == "keep")
            panel->keep();
        else
            panel->revert();
    } else if (command == "prompt") {
        expectWords(words, 2, "prompt switch|ignore");
        shell();
        auto* panel = shell().switchPromptPanel();
        if (!panel || !view_->isPanelShown(PanelKind::switchPrompt))
            throw CommandError("no switch prompt is shown");
        if (words[1] == "switch") {
            view_->note("You press Switch");
            panel->accept();
        } else if (words[1] == "ignore") {
            view_->note("You press Ignore");
            panel->ignore();
        } else {
            throw CommandError("usage: prompt switch|ignore");
        }
    } else if (command == "window") {
        window(words);
    } else if (command == "alert") {
        expectWords(words, 2, "alert N");
        const std::size_t button = number(words[1], "alert N");
        if (view_->alerts().empty()) throw CommandError("no alert is open");
        if (!view_->pressAlertButton(button - 1))
            throw CommandError(
                "the alert has " +
                std::to_string(view_->buttons(view_->alerts().front().alert).size()) +
                " button(s)");
    } else if (command == "tool") {
        const std::string usage = "tool edid-override|betterdisplay on|off";
        expectWords(words, 3, usage);
        ConflictingTool tool{};
        if (words[1] == "edid-override")
            tool = ConflictingTool::edidOverrideService;
        else if (words[1] == "betterdisplay")
            tool = ConflictingTool::betterDisplay;
        else
            throw CommandError("usage: " + usage);
        const bool on = onOff(words[2], usage);
        mac_.machine->setTool(tool, on);
        view_->note(std::string(tool == ConflictingTool::betterDisplay
                                    ? "BetterDisplay's automatic EDID override"
                                    : "The EDID override service") +
                    (on ? " starts" : " stops"));
    } else if (command == "update-found") {
        expectWords(words, 2, "update-found VERSION");
        shell();
        // A scheduled check while the menu-bar application is not in focus.
        HalvoraPro::Updater& updater = *application_->updater();
        const bool frameworkShows = updater.shouldHandleShowingScheduledUpdate(false);
        updater.willHandleShowingUpdate(frameworkShows, words[1]);
        view_->note("A scheduled update check finds version " + words[1] +
                    (frameworkShows ? "" : "; no window opens, the menu will mention it"));
    } else if (command == "quit") {
        expectWords(words, 1, "quit");
        view_->note("You choose Quit");
        shell().quit();
    } else if (command == "crash") {
        if (words.size() > 2 || (words.size() == 2 && words[1] != "mid-save"))
            throw CommandError("usage: crash [mid-save]");
        shell();
        if (words.size() == 2) {
            leaveUnfinishedSave();
            view_->note("Halvora Pro is killed while saving its settings");
        } else {
            view_->note("Halvora Pro crashes");
        }
        shutDown();
    } else if (command == "launch") {
        if (words.size() > 2 || (words.size() == 2 && words[1] != "--safe"))
            throw CommandError("usage: launch [--safe]");
        if (application_) throw CommandError("Halvora Pro is already running");
        launch(words.size() == 2);
    } else if (command == "state") {
        expectWords(words, 1, "state");
        out_ << state().dump() << "\n";
    } else if (command == "settings") {
        expectWords(words, 1, "settings");
        out_ << savedSettings().dump(2) << "\n";
    } else if (command == "help") {
        out_ << help;
    } else {
        throw CommandError("unknown command '" + command + "' (try 'help')");
    }
}

void Simulator::printMenu() {
    menu_ = shell().buildMenu();
    view_->note("The menu opens:");
    printItems();
}

void Simulator::printItems() {
    std::size_t n = 0;
    for (const auto& item : menu_) {
        ++n;
        if (item.kind == MenuItem::Kind::separator) {
            view_->detail(std::to_string(n) + ". ----");
            continue;
        }
        std::string row =
            std::to_string(n) + ". " + (item.checked ? "[x] " : "") + view_->say(item.title);
        if (item.kind == MenuItem::Kind::title)
            row += "  (title)";
        else if (!item.enabled)
            row += "  (disabled)";
        if (!item.keyEquivalent.empty()) row += "  (Cmd-" + item.keyEquivalent + ")";
        view_->detail(row);
    }
}

void Simulator::click(std::size_t number) {
    shell();
    if (menu_.empty()) throw CommandError("open the menu first ('menu')");
    if (number > menu_.size())
        throw CommandError("the menu has " + std::to_string(menu_.size()) + " items");
    const MenuItem item = menu_[number - 1];
    if (item.kind != MenuItem::Kind::action)
        throw CommandError("item " + std::to_string(number) + " cannot be chosen");
    if (!item.enabled)
        throw CommandError("item " + std::to_string(number) + " (" + view_->say(item.title) +
                           ") is disabled");
    menu_.clear(); // the menu closes once an item is chosen
    shell().menuDidClose();
    view_->note("You choose \"" + view_->say(item.title) + "\"");
    item.handler();
}

void Simulator::window(const std::vector<std::string>& words) {
    const std::string usage =
        "window choose N|none, or window confirm|toggle-done|skip|recheck|close";
    if (words.size() < 2) throw CommandError("usage: " + usage);
    shell();
    const auto window = shell().identification();
    if (!window || !view_->identification()) throw CommandError("no identification window is open");
    const auto content = window->content();
    using Action = HalvoraPro::IdentificationContent::Action;
    const auto pressIfShown = [&](Action action, const char* what) {
        const bool shown = content.primary.action == action ||
                           (content.secondary && content.secondary->action == action);
        if (!shown) throw CommandError(std::string("the window has no ") + what + " button now");
        window->press(action);
    };
    const std::string& what = words[1];
    if (what == "choose") {
        expectWords(words, 3, "window choose N|none");
        if (content.radios.empty()) throw CommandError("the window offers no choice now");
        const std::size_t index =
            words[2] == "none" ? content.radios.size() : number(words[2], "window choose N|none");
        if (!window->select(index - 1))
            throw CommandError("the window offers " + std::to_string(content.radios.size()) +
                               " choices");
    } else if (what == "confirm" && words.size() == 2) {
        pressIfShown(Action::confirm, "confirm");
    } else if (what == "toggle-done" && words.size() == 2) {
        pressIfShown(Action::toggleDone, "toggle-done");
    } else if (what == "skip" && words.size() == 2) {
        pressIfShown(Action::skip, "skip");
    } else if (what == "recheck" && words.size() == 2) {
        pressIfShown(Action::recheck, "recheck");
    } else if (what == "close" && words.size() == 2) {
        window->close();
    } else {
        throw CommandError("usage: " + usage);
    }
}

nlohmann::json Simulator::savedSettings() const {
    std::ifstream in(settingsFile_);
    if (!in) return nlohmann::json::array();
    try {
        return nlohmann::json::parse(in);
    } catch (const nlohmann::json::exception&) {
        return nullptr;
    }
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
        if (monitor.alterOnWrite) s["monitors"].back()["overrideWrites"] = port.overrideWriteTimes.size();
        if (controllerNow() && port.id && controllerNow()->isRewriteStopped(*port.id))
            s["monitors"].back()["rewritesStopped"] = true;
        // Who wrote an override: this application or the other tool.
        if (port.writer)
            s["monitors"].back()["overrideBy"] = *port.writer == RecordedMachine::Writer::halvora
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
