#include <HalvoraPlatform/EntryBarrier.hpp>
#include <cstdio>
#include <exception>

namespace HalvoraPlatform {

namespace {

EntryBarrier::Handler& installed() {
    // Never destroyed: an entry may run while the process exits.
    static auto* handler = new EntryBarrier::Handler();
    return *handler;
}

void writeToStandardError(const std::string& line) noexcept {
    std::fputs(line.c_str(), stderr);
    std::fputc('\n', stderr);
}

} // namespace

void EntryBarrier::setHandler(Handler handler) {
    installed() = std::move(handler);
}

std::string EntryBarrier::describeCurrentException(std::string_view entry) {
    std::string what;
    // Called outside a handler there is nothing to rethrow (a bare throw
    // would end the process).
    if (!std::current_exception()) return "Halvora Pro: " + std::string(entry) + " failed";
    try {
        throw;
    } catch (const std::exception& error) {
        what = error.what();
    } catch (...) {
        what = "an exception that is not a std::exception";
    }
    return "Halvora Pro: " + std::string(entry) + " failed: " + what;
}

void EntryBarrier::guarded(std::string_view entry, const std::function<void()>& body) noexcept {
    try {
        body();
    } catch (...) {
        try {
            if (const auto& handler = installed())
                handler(entry);
            else
                writeToStandardError(describeCurrentException(entry));
        } catch (...) {
            // The handler failed too: the line still reaches someone, without allocating.
            std::fputs("Halvora Pro: ", stderr);
            std::fwrite(entry.data(), 1, entry.size(), stderr);
            std::fputs(" failed, and so did reporting it\n", stderr);
        }
    }
}

} // namespace HalvoraPlatform
