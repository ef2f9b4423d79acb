#include <EDIDKit/Resolution.hpp>

namespace EDIDKit {

std::string Resolution::description() const {
    return std::to_string(width) + "\u00D7" + std::to_string(height);
}

const std::vector<Resolution>& Resolution::commonNatives() {
    static const std::vector<Resolution> table{
        {3440, 1440}, {5120, 1440}, {5120, 2160}, {3840, 2160},
        {3840, 1600}, {2560, 1080}, {3840, 1080}, {2560, 1440},
    };
    return table;
}

namespace {

int roundedDownToMultipleOf8(int value) { return value - value % 8; }

/// Whether a panel `panelWidth` wide divided into `parts` pieces gives a piece
/// `partWidth` wide, exactly or after rounding down to a multiple of 8.
bool dividesInto(int panelWidth, int parts, int partWidth) {
    const int part = panelWidth / parts;
    if (panelWidth % parts == 0 && part == partWidth) return true;
    return roundedDownToMultipleOf8(part) == partWidth;
}

} // namespace

std::vector<Resolution> Resolution::commonNativesSplittingInto() const {
    std::vector<Resolution> result;
    for (const Resolution& panel : commonNatives()) {
        if (panel.height != height || panel.width == width) continue;
        if (dividesInto(panel.width, 2, width) || dividesInto(panel.width, 3, width) ||
            dividesInto(panel.width, 4, width))
            result.push_back(panel);
    }
    return result;
}

} // namespace EDIDKit
