#include <HalvoraPlatform/Launchctl.hpp>

namespace HalvoraPlatform {

Launchctl::Launchctl(std::shared_ptr<HalvoraPlatform::ProcessSpawner> spawner, std::string path)
    : spawner_(std::move(spawner)), path_(std::move(path)) {}

int Launchctl::run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> argv{path_};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    const auto process = spawner_->spawn(path_, argv);
    if (!process) return -1;
    for (int poll = 0; poll < polls; ++poll) {
        if (const auto ending = spawner_->poll(*process))
            return ending->bySignal ? -1 : ending->code;
        if (poll + 1 < polls) spawner_->sleepMilliseconds(pollMilliseconds);
    }
    spawner_->killAndReap(*process);
    return -1;
}

} // namespace HalvoraPlatform
