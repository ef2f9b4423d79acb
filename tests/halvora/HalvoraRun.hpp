#pragma once

// Running the halvora command in-process, as a user would run it.

#include "Commands.hpp"

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/SampleMonitors.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace HalvoraTesting {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

/// `halvora ARGS` with `input` on standard input; `terminal` says whether
/// standard output is a terminal.
inline Outcome halvora(std::vector<std::string> args, const std::string& input = "",
                       bool terminal = false) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    Halvora::CliIO io{in, out, err, terminal};
    const int status = Halvora::runHalvora(args, io);
    return {status, out.str(), err.str()};
}

inline std::string asString(const EDIDKit::Bytes& b) {
    return {b.begin(), b.end()};
}
inline EDIDKit::Bytes asBytes(const std::string& s) {
    return {s.begin(), s.end()};
}

/// The sample ultrawide's EDID, and the one it reports in picture-by-picture mode.
inline const EDIDKit::Bytes& ultrawide() {
    return EDIDKit::sampleMonitor("ultrawide-34")->full;
}
inline const EDIDKit::Bytes& ultrawideHalf() {
    return *EDIDKit::sampleMonitor("ultrawide-34")->pictureByPicture;
}

} // namespace HalvoraTesting
