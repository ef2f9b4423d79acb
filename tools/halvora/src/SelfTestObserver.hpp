#pragma once

#include "Screen.hpp"

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Halvora {

/// Watches a self-test run: after each command it compares the windows the
/// application shows with those on the real screen, and captures every window
/// that has appeared or changed since it was last captured.
class SelfTestObserver {
public:
    /// What the application shows: each window with a text that changes when
    /// its content does (a countdown ticking is no change).
    using Shown = std::map<ShownWindow, std::string>;

    /// Screenshots go to `screenshots` (none without it), numbered in order.
    SelfTestObserver(Screen& screen, std::optional<std::filesystem::path> screenshots)
        : screen_(screen), screenshots_(std::move(screenshots)) {}

    /// The problems after one command (empty when the screen agrees).
    std::vector<std::string> check(const Shown& shown);

    /// The screenshots written so far.
    const std::vector<std::filesystem::path>& written() const { return written_; }

private:
    Screen& screen_;
    std::optional<std::filesystem::path> screenshots_;
    Shown captured_;
    std::vector<std::filesystem::path> written_;
};

} // namespace Halvora
