#include "SelfTestObserver.hpp"

#include <cstdio>

namespace Halvora {

std::vector<std::string> SelfTestObserver::check(const Shown& shown) {
    screen_.settle();
    std::vector<std::string> problems;
    const auto visible = screen_.visibleWindows();
    for (const auto window : {ShownWindow::confirmationPanel, ShownWindow::switchPrompt,
                              ShownWindow::identificationWindow}) {
        const bool expected = shown.contains(window);
        if (expected && !visible.contains(window))
            problems.push_back(descriptionOf(window) +
                               " is shown by the application but not on the screen");
        if (!expected && visible.contains(window))
            problems.push_back(descriptionOf(window) +
                               " is on the screen but the application does not show it");
    }
    // A window that has gone is captured again when it comes back.
    std::erase_if(captured_, [&](const auto& entry) { return !shown.contains(entry.first); });
    for (const auto& [window, content] : shown) {
        const auto before = captured_.find(window);
        if (before != captured_.end() && before->second == content) continue;
        captured_[window] = content;
        if (!screenshots_) continue;
        char number[16];
        std::snprintf(number, sizeof number, "%03zu-", written_.size() + 1);
        const auto png = *screenshots_ / (number + fileNameOf(window) + ".png");
        if (!screen_.capture(window, png)) {
            problems.push_back("could not capture " + descriptionOf(window) + " to " +
                               png.string());
            continue;
        }
        written_.push_back(png);
    }
    return problems;
}

} // namespace Halvora
