#pragma once

// Running `halvora simulate` in-process on a script, and reading what it printed.

#include "Commands.hpp"

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace SimulatorTesting {

using nlohmann::json;

struct Run {
    int status;
    std::string out;
    std::string err;

    /// Every `state` line of the run, parsed.
    std::vector<json> states() const {
        std::vector<json> result;
        std::istringstream lines(out);
        for (std::string line; std::getline(lines, line);)
            if (line.rfind("{\"alerts\"", 0) == 0) result.push_back(json::parse(line));
        return result;
    }
    json last() const {
        const auto all = states();
        return all.empty() ? json() : all.back();
    }
};

/// `halvora simulate ARGS` with `script` on standard input.
inline Run simulate(std::vector<std::string> args, const std::string& script,
                    bool terminal = false) {
    std::istringstream in(script);
    std::ostringstream out, err;
    Halvora::CliIO io{in, out, err, terminal, terminal};
    args.insert(args.begin(), "simulate");
    const int status = Halvora::runHalvora(args, io);
    return {status, out.str(), err.str()};
}

/// The monitor named `name` in a `state` line.
inline json monitor(const json& state, const std::string& name) {
    for (const auto& m : state["monitors"])
        if (m["name"] == name) return m;
    return {};
}

} // namespace SimulatorTesting
