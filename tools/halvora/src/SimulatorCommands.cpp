// The simulator's commands: one table names each command, says what the help
// lists for it, and holds what carries it out.

#include <EDIDKit/EDIDText.hpp>
#include "CommandTable.hpp"
#include "CommandWords.hpp"
#include "PrintableText.hpp"
#include "Simulator.hpp"

#include <HalvoraPro/Updater.hpp>

namespace Halvora {

using HalvoraCore::ConflictingTool;
using HalvoraPro::MenuItem;
using HalvoraPro::PanelButton;
using HalvoraPro::PanelKind;

namespace {

/// The longest single wait: an hour of virtual time already runs every timer
/// of the application thousands of times.
constexpr double maxWait = 3600;

using Command = TableCommand<Simulator>;

} // namespace

const std::vector<TableCommand<Simulator>>& Simulator::commands() {
    static const std::vector<Command> table{
        {{"plug", "unplug"},
         "plug NAME | unplug NAME",
         "attach or detach a monitor",
         &Simulator::plugCommand},
        {{"pbp"},
         "pbp NAME on|off",
         "toggle picture-by-picture on the monitor",
         &Simulator::pbpCommand},
        {{"interrupt"},
         "interrupt NAME",
         "the monitor raises a port interrupt",
         &Simulator::plugCommand},
        {{"sleep", "wake"}, "sleep | wake", "the displays sleep or wake", &Simulator::sleepCommand},
        {{"wait"},
         "wait SECONDS",
         "let virtual time pass (up to 3600 s), running\nwhat falls due",
         &Simulator::waitCommand},
        {{"menu"}, "menu", "open the menu and list its items", &Simulator::menuCommand},
        {{"click"}, "click N", "choose item N of the menu last opened", &Simulator::clickCommand},
        {{"keep", "revert"},
         "keep | revert",
         "the confirmation panel's buttons",
         &Simulator::confirmationCommand},
        {{"prompt"},
         "prompt switch|ignore",
         "the switch prompt's buttons",
         &Simulator::promptCommand},
        {{"window"},
         "window choose N|none",
         "pick a resolution in the identification window",
         &Simulator::windowCommand},
        {{},
         "window confirm|toggle-done|skip|recheck|close",
         "the identification window's buttons",
         &Simulator::windowCommand},
        {{"alert"}, "alert N", "press button N of the oldest open alert", &Simulator::alertCommand},
        {{"tool"},
         "tool edid-override|betterdisplay on|off",
         "start or stop another EDID override tool",
         &Simulator::toolCommand},
        {{"update-found"},
         "update-found VERSION",
         "a scheduled update check finds VERSION",
         &Simulator::updateFoundCommand},
        {{"quit"}, "quit", "the menu's quit item", &Simulator::quitCommand},
        {{"crash"},
         "crash [mid-save]",
         "Halvora Pro dies without quitting (mid-save:\nwhile writing its settings file)",
         &Simulator::crashCommand},
        {{"launch"},
         "launch [--safe]",
         "start Halvora Pro again after quitting;\n--safe: with the Option key held",
         &Simulator::launchCommand},
        {{"state"}, "state", "the whole state as one line of JSON", &Simulator::stateCommand},
        {{"settings"},
         "settings",
         "the saved settings (displays.json)",
         &Simulator::settingsCommand},
        {{"help"}, "help", "this list", &Simulator::helpCommand},
    };
    return table;
}

std::string Simulator::help() {
    return tableHelp("Commands (one a line; # starts a comment):", commands());
}

void Simulator::run(const std::vector<std::string>& words) {
    const auto* command = findCommand(commands(), words.front());
    if (!command) throw CommandError("unknown command '" + words.front() + "' (try 'help')");
    (this->*(command->run))(words);
}

void Simulator::plugCommand(const std::vector<std::string>& words) {
    const std::string& command = words.front();
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
}

void Simulator::pbpCommand(const std::vector<std::string>& words) {
    expectWords(words, 3, "pbp NAME on|off");
    const bool on = onOff(words[2], "pbp NAME on|off");
    requireMonitor(words[1]);
    if (mac_.machine->port(words[1]).pbp == on)
        return view_->note(words[1] + ": picture-by-picture is already " + (on ? "on" : "off"));
    view_->note(words[1] + ": picture-by-picture turned " + (on ? "on" : "off") +
                " at the monitor");
    mac_.machine->setPBP(words[1], on);
}

void Simulator::sleepCommand(const std::vector<std::string>& words) {
    const std::string& command = words.front();
    expectWords(words, 1, command);
    if (command == "sleep")
        mac_.machine->sleep();
    else
        mac_.machine->wake();
    view_->note(command == "sleep" ? "The displays sleep" : "The displays wake");
}

void Simulator::waitCommand(const std::vector<std::string>& words) {
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
}

void Simulator::menuCommand(const std::vector<std::string>& words) {
    expectWords(words, 1, "menu");
    printMenu();
}

void Simulator::clickCommand(const std::vector<std::string>& words) {
    expectWords(words, 2, "click N");
    click(number(words[1], "click N"));
}

void Simulator::confirmationCommand(const std::vector<std::string>& words) {
    const std::string& command = words.front();
    expectWords(words, 1, command);
    shell();
    const auto panel = shell().confirmationPanel();
    if (!panel || !view_->isPanelShown(PanelKind::confirmation))
        throw CommandError("no confirmation panel is shown");
    view_->note(command == "keep" ? "You press Keep" : "You press Revert");
    real_.gestures->pressPanelButton(
        PanelKind::confirmation,
        command == "keep" ? DialogButton::defaultButton : DialogButton::cancelButton, shell());
}

void Simulator::promptCommand(const std::vector<std::string>& words) {
    expectWords(words, 2, "prompt switch|ignore");
    shell();
    auto* panel = shell().switchPromptPanel();
    if (!panel || !view_->isPanelShown(PanelKind::switchPrompt))
        throw CommandError("no switch prompt is shown");
    if (words[1] == "switch") {
        view_->note("You press Switch");
        real_.gestures->pressPanelButton(PanelKind::switchPrompt, DialogButton::defaultButton,
                                         shell());
    } else if (words[1] == "ignore") {
        view_->note("You press Ignore");
        real_.gestures->pressPanelButton(PanelKind::switchPrompt, DialogButton::cancelButton,
                                         shell());
    } else {
        throw CommandError("usage: prompt switch|ignore");
    }
}

void Simulator::alertCommand(const std::vector<std::string>& words) {
    expectWords(words, 2, "alert N");
    const std::size_t button = number(words[1], "alert N");
    if (view_->alerts().empty()) throw CommandError("no alert is open");
    if (!view_->pressAlertButton(button - 1))
        throw CommandError("the alert has " +
                           std::to_string(view_->buttons(view_->alerts().front().alert).size()) +
                           " button(s)");
}

void Simulator::toolCommand(const std::vector<std::string>& words) {
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
}

void Simulator::updateFoundCommand(const std::vector<std::string>& words) {
    expectWords(words, 2, "update-found VERSION");
    shell();
    // A scheduled check while the menu-bar application is not in focus.
    HalvoraPro::Updater& updater = *application_->updater();
    const bool frameworkShows = updater.shouldHandleShowingScheduledUpdate(false);
    updater.willHandleShowingUpdate(frameworkShows, words[1]);
    view_->note("A scheduled update check finds version " + words[1] +
                (frameworkShows ? "" : "; no window opens, the menu will mention it"));
}

void Simulator::quitCommand(const std::vector<std::string>& words) {
    expectWords(words, 1, "quit");
    view_->note("You choose Quit");
    shell().quit();
}

void Simulator::crashCommand(const std::vector<std::string>& words) {
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
}

void Simulator::launchCommand(const std::vector<std::string>& words) {
    if (words.size() > 2 || (words.size() == 2 && words[1] != "--safe"))
        throw CommandError("usage: launch [--safe]");
    if (application_) throw CommandError("Halvora Pro is already running");
    if (const auto problem = launch(words.size() == 2)) throw CommandError(*problem);
}

void Simulator::stateCommand(const std::vector<std::string>& words) {
    expectWords(words, 1, "state");
    out_ << printableJSON(state()) << "\n";
}

void Simulator::settingsCommand(const std::vector<std::string>& words) {
    expectWords(words, 1, "settings");
    out_ << savedSettings().dump(2) << "\n";
}

void Simulator::helpCommand(const std::vector<std::string>&) {
    out_ << help();
}

void Simulator::printMenu() {
    menu_ = shell().buildMenu();
    real_.gestures->openMenu(menu_);
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
    real_.gestures->chooseMenuItem(number - 1, item);
}

void Simulator::windowCommand(const std::vector<std::string>& words) {
    const std::string usage =
        "window choose N|none, or window confirm|toggle-done|skip|recheck|close";
    if (words.size() < 2) throw CommandError("usage: " + usage);
    shell();
    const auto window = shell().identification();
    if (!window || !view_->identification()) throw CommandError("no identification window is open");
    const auto content = window->content();
    using Action = HalvoraPro::IdentificationContent::Action;
    const auto pressIfShown = [&](Action action, const char* what) {
        if (content.primary.action == action)
            return real_.gestures->pressWindowButton(DialogButton::defaultButton, action, *window);
        if (content.secondary && content.secondary->action == action)
            return real_.gestures->pressWindowButton(DialogButton::cancelButton, action, *window);
        throw CommandError(std::string("the window has no ") + what + " button now");
    };
    const std::string& what = words[1];
    if (what == "choose") {
        expectWords(words, 3, "window choose N|none");
        if (content.radios.empty()) throw CommandError("the window offers no choice now");
        const std::size_t index =
            words[2] == "none" ? content.radios.size() : number(words[2], "window choose N|none");
        if (index == 0 || index > content.radios.size())
            throw CommandError("the window offers " + std::to_string(content.radios.size()) +
                               " choices");
        real_.gestures->chooseRadio(index - 1, *window);
    } else if (what == "confirm" && words.size() == 2) {
        pressIfShown(Action::confirm, "confirm");
    } else if (what == "toggle-done" && words.size() == 2) {
        pressIfShown(Action::toggleDone, "toggle-done");
    } else if (what == "skip" && words.size() == 2) {
        pressIfShown(Action::skip, "skip");
    } else if (what == "recheck" && words.size() == 2) {
        pressIfShown(Action::recheck, "recheck");
    } else if (what == "close" && words.size() == 2) {
        real_.gestures->closeWindow(*window);
    } else {
        throw CommandError("usage: " + usage);
    }
}

} // namespace Halvora
