#include "DescriptorOutput.hpp"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace Halvora {

DescriptorOutput::DescriptorOutput(int descriptor) : descriptor_(descriptor) {
    setp(buffer_.data(), buffer_.data() + buffer_.size());
}

DescriptorOutput::~DescriptorOutput() {
    writeBuffered();
}

DescriptorOutput::int_type DescriptorOutput::overflow(int_type c) {
    if (!writeBuffered()) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

int DescriptorOutput::sync() {
    return writeBuffered() ? 0 : -1;
}

bool DescriptorOutput::writeBuffered() {
    const char* next = pbase();
    const char* const end = pptr();
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    if (!failure_.empty()) return false;
    while (next < end) {
        const ssize_t written = ::write(descriptor_, next, static_cast<std::size_t>(end - next));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            failure_ = written < 0 ? std::strerror(errno) : "nothing could be written";
            return false;
        }
        next += written;
    }
    return true;
}

} // namespace Halvora
