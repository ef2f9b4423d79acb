#pragma once

#include <HalvoraPro/Text.hpp>
#include <functional>
#include <string>
#include <vector>

namespace HalvoraPro {

/// One row of the status menu as the shell decides it; the view draws it and
/// calls `handler` when it is chosen.
struct MenuItem {
    enum class Kind {
        title,  ///< a disabled informational row (a display's name)
        action, ///< a row the user can choose
        separator,
    };

    Kind kind = Kind::separator;
    Text title;
    bool enabled = false;
    bool checked = false;
    /// "q" for the quit item; empty for every other.
    std::string keyEquivalent;
    std::function<void()> handler;

    static MenuItem separatorItem() { return {}; }
    static MenuItem titleRow(Text title) {
        return {Kind::title, std::move(title), false, false, {}, {}};
    }
    static MenuItem actionItem(Text title, bool enabled, std::function<void()> handler,
                               bool checked = false) {
        return {Kind::action, std::move(title), enabled, checked, {}, std::move(handler)};
    }
};

using Menu = std::vector<MenuItem>;

} // namespace HalvoraPro
