#pragma once

#include <filesystem>
#include <string>

namespace TestSupport {

/// A fresh folder under the system's temporary folder, removed with everything
/// in it when the value goes away.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

/// The whole content of a file (empty when it cannot be read).
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

} // namespace TestSupport
