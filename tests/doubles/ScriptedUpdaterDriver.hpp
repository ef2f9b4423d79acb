#pragma once

#include <HalvoraPro/Updater.hpp>

namespace TestDoubles {

/// An update framework a test scripts: whether it can check now, and how many
/// checks it was asked for.
class ScriptedUpdaterDriver final : public HalvoraPro::UpdaterDriver {
public:
    bool canCheckForUpdates() const override { return canCheck; }
    void checkForUpdates() override { ++checks; }
    bool canCheck = true;
    int checks = 0;
};

} // namespace TestDoubles
