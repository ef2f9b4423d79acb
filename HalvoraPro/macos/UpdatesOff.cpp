// A build without Sparkle: updates are off, and the menu's update item says so.

#include "MacServices.hpp"

namespace HalvoraPro::MacServices {

std::shared_ptr<UpdaterDriver> UpdaterDriverFactory::make() { return std::make_shared<UnavailableUpdaterDriver>(); }

void UpdaterDriverFactory::attach(UpdaterDriver&, std::weak_ptr<Updater>) {}

} // namespace HalvoraPro::MacServices
