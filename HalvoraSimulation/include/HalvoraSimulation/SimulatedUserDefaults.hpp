#pragma once

#include <HalvoraPro/UserDefaults.hpp>
#include <map>
#include <optional>
#include <string>

namespace HalvoraSimulation {

/// Defaults kept in memory for the length of a run: the simulator's, and
/// the tests'.
class SimulatedUserDefaults final : public HalvoraPro::UserDefaults {
public:
    std::optional<bool> boolValue(const std::string& key) const override {
        const auto found = values_.find(key);
        if (found == values_.end()) return std::nullopt;
        return found->second;
    }
    void setBool(const std::string& key, bool value) override { values_[key] = value; }
    std::optional<std::string> stringValue(const std::string& key) const override {
        const auto found = texts_.find(key);
        if (found == texts_.end()) return std::nullopt;
        return found->second;
    }
    /// What `defaults write` does on a Mac.
    void setString(const std::string& key, std::string value) { texts_[key] = std::move(value); }

private:
    std::map<std::string, bool> values_;
    std::map<std::string, std::string> texts_;
};

} // namespace HalvoraSimulation
