#pragma once

#include <HalvoraCore/ConflictProbe.hpp>

#include <exception>
#include <vector>

namespace TestDoubles {

/// A conflict probe a test scripts: which tools are present, and whether a
/// take-over fails.
class ScriptedConflictProbe final : public HalvoraCore::ConflictProbe {
public:
    HalvoraCore::ConflictSet detect() override {
        ++detections;
        return present;
    }
    void takeOver(HalvoraCore::ConflictingTool tool) override {
        takeOvers.push_back(tool);
        if (failTakeOver) std::rethrow_exception(failTakeOver);
        present.erase(tool);
    }

    HalvoraCore::ConflictSet present;
    std::exception_ptr failTakeOver;
    int detections = 0;
    std::vector<HalvoraCore::ConflictingTool> takeOvers;
};

} // namespace TestDoubles
