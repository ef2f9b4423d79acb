#pragma once

#include <array>
#include <streambuf>
#include <string>

namespace Halvora {

/// A stream buffer that writes to a file descriptor (standard output) and
/// remembers why the first write that failed did so ("No space left on
/// device"), which the standard streams do not say.
class DescriptorOutput : public std::streambuf {
public:
    explicit DescriptorOutput(int descriptor);
    ~DescriptorOutput() override;
    DescriptorOutput(const DescriptorOutput&) = delete;
    DescriptorOutput& operator=(const DescriptorOutput&) = delete;

    /// The system's reason for the first failed write; empty while all succeeded.
    const std::string& failure() const noexcept { return failure_; }

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    bool writeBuffered();

    int descriptor_;
    std::array<char, 1 << 16> buffer_{};
    std::string failure_;
};

} // namespace Halvora
