#include "Corpus.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace CorpusSupport {

namespace fs = std::filesystem;

bool CorpusEDID::differsByDesign(const std::string& field, const std::string& effect) const {
    for (const auto& note : expected.at("byDesign"))
        if (note.at("field") == field && note.value("effect", "skip") == effect) return true;
    return false;
}

std::string corpusFolder() { return HALVORA_CORPUS_DIR; }

const std::vector<CorpusEDID>& corpus() {
    static const std::vector<CorpusEDID> all = [] {
        std::vector<CorpusEDID> result;
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(corpusFolder(), ec)) {
            if (entry.path().extension() != ".bin") continue;
            fs::path jsonPath = entry.path();
            jsonPath.replace_extension(".json");
            if (!fs::exists(jsonPath)) continue;
            std::ifstream bin(entry.path(), std::ios::binary);
            std::ifstream json(jsonPath);
            result.push_back({entry.path().stem().string(),
                              {std::istreambuf_iterator<char>(bin), std::istreambuf_iterator<char>()},
                              nlohmann::json::parse(json)});
        }
        std::sort(result.begin(), result.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        return result;
    }();
    return all;
}

EDIDKit::Timing expectedTiming(const nlohmann::json& t) {
    const double mhz = t.at("pixelClockMHz").get<double>();
    const bool typeVII = t.value("type", "") == "VII";
    const int clock = typeVII ? static_cast<int>(std::lround(mhz * 1000)) / 10 : static_cast<int>(std::lround(mhz * 100));
    const auto field = [&](const char* key) { return t.at(key).get<int>(); };
    const int height = t.value("interlaced", false) ? field("height") / 2 : field("height");
    return {clock,
            field("width"),
            field("hfront") + field("hsync") + field("hback") + 2 * field("hborder"),
            field("hfront"),
            field("hsync"),
            height,
            field("vfront") + field("vsync") + field("vback") + 2 * field("vborder"),
            field("vfront"),
            field("vsync")};
}

} // namespace CorpusSupport
