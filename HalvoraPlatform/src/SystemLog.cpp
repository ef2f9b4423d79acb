#include <HalvoraPlatform/SystemLog.hpp>

#include <cstdio>

#if defined(__APPLE__)
#include <os/log.h>
#endif

namespace HalvoraPlatform {

void systemLog(const std::string& line) {
#if defined(__APPLE__)
    os_log(OS_LOG_DEFAULT, "%{public}s", line.c_str());
#else
    std::fprintf(stderr, "%s\n", line.c_str());
#endif
}

} // namespace HalvoraPlatform
