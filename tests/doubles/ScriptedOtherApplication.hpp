#pragma once

#include <HalvoraPlatform/seams/OtherApplication.hpp>
#include <map>
#include <set>
#include <string>

namespace TestDoubles {

/// Running applications and preference values a test scripts.
class ScriptedOtherApplication final : public HalvoraPlatform::OtherApplication {
public:
    std::set<std::string> running;
    /// Keys in the order listed, with their values; nothing: no key list at all.
    std::optional<std::vector<std::string>> keyList = std::vector<std::string>{};
    std::map<std::string, Value> values;
    int synchronizations = 0;

    void set(const std::string& key, Value value) {
        if (keyList) keyList->push_back(key);
        values[key] = std::move(value);
    }

    bool isRunning(const std::string& bundleID) override { return running.contains(bundleID); }
    void synchronize(const std::string&) override { ++synchronizations; }
    std::optional<std::vector<std::string>> keys(const std::string&) override { return keyList; }
    Value value(const std::string& key, const std::string&) override {
        const auto found = values.find(key);
        return found == values.end() ? Value{} : found->second;
    }
};

} // namespace TestDoubles
