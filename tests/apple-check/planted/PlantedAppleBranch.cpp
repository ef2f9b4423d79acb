// A deliberate mistake in the Apple branch of a portable source: the system
// log handed a std::string where its format asks for a C string. Linux builds
// never compile this branch; the syntax check must.

#include <string>

#if defined(__APPLE__)
#include <os/log.h>
#endif

void plantedLogLine(const std::string& line) {
#if defined(__APPLE__)
    os_log(OS_LOG_DEFAULT, "%{public}s", line);
#else
    (void)line;
#endif
}
