// Writes the sample monitors' EDIDs into a folder:
// <name>.bin (full mode) and <name>-pbp.bin (picture-by-picture mode).

#include <EDIDKit/SampleMonitors.hpp>

#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

bool write(const std::filesystem::path& path, const EDIDKit::Bytes& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) std::cerr << "halvora-samples: cannot write " << path << "\n";
    return static_cast<bool>(file);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::string(argv[1]).starts_with("-")) {
        std::cerr << "usage: halvora-samples FOLDER\n"
                     "Writes the sample monitors' EDIDs (<name>.bin, <name>-pbp.bin) into FOLDER.\n";
        return argc == 2 && std::string(argv[1]) == "--help" ? 0 : 2;
    }
    const std::filesystem::path folder(argv[1]);
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    bool ok = true;
    for (const auto& monitor : EDIDKit::sampleMonitors()) {
        ok = write(folder / (monitor.name + ".bin"), monitor.full) && ok;
        if (monitor.pictureByPicture) ok = write(folder / (monitor.name + "-pbp.bin"), *monitor.pictureByPicture) && ok;
    }
    return ok ? 0 : 1;
}
