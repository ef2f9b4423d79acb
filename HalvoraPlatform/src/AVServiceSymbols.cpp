#include <HalvoraPlatform/AVServiceSymbols.hpp>

namespace HalvoraPlatform {

std::vector<std::string> AVServiceSymbols::missing(const Resolver& resolve) {
    std::vector<std::string> absent;
    for (const auto& name : names)
        if (!resolve || !resolve(name)) absent.push_back(name);
    return absent;
}

} // namespace HalvoraPlatform
