#include <EDIDKit/SplitLayout.hpp>

#include <stdexcept>

namespace EDIDKit {

Resolution SplitLayout::splitResolution(Resolution ofNative) const {
    if (parts < 1) throw std::logic_error("a split layout needs at least one part");
    const int width = ofNative.width / parts;
    return {width - width % 8, ofNative.height};
}

} // namespace EDIDKit
