#include <HalvoraSimulation/SimulatedShellView.hpp>

#include <EDIDKit/EDIDText.hpp>


#include <algorithm>
#include <cmath>
#include <cstdio>

namespace HalvoraSimulation {

using HalvoraPro::PanelKind;
using HalvoraPro::Text;

namespace {

const char* panelName(PanelKind kind) {
    return kind == PanelKind::confirmation ? "Confirmation panel" : "Switch prompt";
}

std::string bar(double fraction) {
    const int filled = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * 20));
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(20 - filled), '.') + "]";
}

} // namespace

SimulatedShellView::SimulatedShellView(std::ostream& out,
                                       std::shared_ptr<HalvoraSimulation::VirtualClock> clock)
    : out_(out), clock_(std::move(clock)) {}

std::string SimulatedShellView::say(const Text& text) const {
    return HalvoraPro::LocalizedStrings::english().resolve(text);
}

void SimulatedShellView::note(const std::string& line) {
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "[%7.1f s] ", clock_->now());
    out_ << stamp << EDIDKit::printableText(line) << "\n";
}

void SimulatedShellView::detail(const std::string& line) {
    out_ << "              " << EDIDKit::printableText(line) << "\n";
}

void SimulatedShellView::printCountdown(Panel& panel) {
    if (!panel.content || !panel.content->countdown) return;
    const std::string countdown = say(*panel.content->countdown);
    if (countdown == panel.lastCountdown) return;
    panel.lastCountdown = countdown;
    // Every second near the end, every five before.
    const auto& arguments = panel.content->countdown->arguments;
    const auto* left = arguments.empty() ? nullptr : std::get_if<long long>(&arguments.front());
    const long long seconds = left ? *left : 0;
    if (seconds > 5 && seconds % 5 != 0) return;
    note("Confirmation panel: " + countdown + " " + bar(panel.content->progress.value_or(0)));
}

void SimulatedShellView::renderPanel(PanelKind kind, const HalvoraPro::PanelContent& content) {
    Panel& panel = panels_[kind];
    const bool messageChanged = !panel.content || panel.content->message != content.message;
    panel.content = content;
    if (!panel.orderedIn || panel.fadingOut) return;
    if (kind == PanelKind::switchPrompt && messageChanged)
        note("Switch prompt now reads: " + say(content.message));
    printCountdown(panel);
}

void SimulatedShellView::fadeInPanel(PanelKind kind, const HalvoraPro::Presentation&) {
    Panel& panel = panels_[kind];
    panel.orderedIn = true;
    panel.fadingOut = false;
    panel.lastCountdown.clear();
    if (!panel.content) return;
    note(std::string(panelName(kind)) + " appears: " + say(panel.content->title));
    detail(say(panel.content->message));
    detail("[" + say(panel.content->cancelButton) + "] (Escape)   [" +
           say(panel.content->defaultButton) + "] (Return)");
    printCountdown(panel);
}

void SimulatedShellView::fadeOutPanel(PanelKind kind, std::function<void()> completed) {
    Panel& panel = panels_[kind];
    if (panel.orderedIn && !panel.fadingOut) note(std::string(panelName(kind)) + " fades out");
    panel.fadingOut = true;
    clock_->schedule(0.15, std::move(completed));
}

void SimulatedShellView::orderOutPanel(PanelKind kind) {
    Panel& panel = panels_[kind];
    panel.orderedIn = false;
    panel.fadingOut = false;
}

bool SimulatedShellView::isPanelShown(PanelKind kind) const {
    const auto found = panels_.find(kind);
    return found != panels_.end() && found->second.orderedIn && !found->second.fadingOut;
}

const HalvoraPro::PanelContent* SimulatedShellView::panelContent(PanelKind kind) const {
    const auto found = panels_.find(kind);
    return found != panels_.end() && found->second.content ? &*found->second.content : nullptr;
}

void SimulatedShellView::showIdentification(const HalvoraPro::IdentificationContent& content,
                                            const HalvoraPro::Presentation&) {
    if (identification_ == content) return;
    identification_ = content;
    note("Window \"" + say(content.windowTitle) + "\": " + say(content.heading));
    for (const auto& row : content.rows)
        detail(say(row));
    for (std::size_t i = 0; i < content.radios.size(); ++i)
        detail(std::string(content.radios[i].on ? "(*) " : "( ) ") + std::to_string(i + 1) + ". " +
               say(content.radios[i].label));
    std::string buttons;
    if (content.secondary) buttons += "[" + say(content.secondary->title) + "] (Escape)   ";
    buttons += "[" + say(content.primary.title) + "] (Return)";
    detail(buttons);
}

void SimulatedShellView::closeIdentification() {
    if (!identification_) return;
    identification_.reset();
    note("Window closes");
}

std::vector<std::string> SimulatedShellView::buttons(const HalvoraPro::Alert& alert) const {
    std::vector<std::string> result;
    for (const auto& b : alert.buttons)
        result.push_back(say(b));
    if (result.empty()) result.push_back("OK");
    return result;
}

void SimulatedShellView::runAlert(const HalvoraPro::Alert& alert,
                                  std::function<void(std::size_t)> response) {
    alerts_.push_back({alert, std::move(response)});
    ++alertsShown_;
    note("Alert: " + say(alert.title));
    detail(say(alert.message));
    const auto names = buttons(alert);
    std::string row;
    for (std::size_t i = 0; i < names.size(); ++i)
        row += (i ? "   " : "") + std::to_string(i + 1) + ". [" + names[i] + "]";
    detail(row);
}

bool SimulatedShellView::pressAlertButton(std::size_t index) {
    if (alerts_.empty() || index >= buttons(alerts_.front().alert).size()) return false;
    OpenAlert alert = std::move(alerts_.front());
    alerts_.pop_front();
    note("Alert closed with [" + buttons(alert.alert)[index] + "]");
    if (alert.response) alert.response(index);
    return true;
}

void SimulatedShellView::terminate() {
    terminated_ = true;
    note("Halvora Pro quits");
}

void SimulatedShellView::reset() {
    panels_.clear();
    identification_.reset();
    alerts_.clear();
    terminated_ = false;
}

void SimulatedShellView::updateOpenMenu(const HalvoraPro::Menu& menu) {
    if (onMenuUpdate) onMenuUpdate(menu);
}

} // namespace HalvoraSimulation
