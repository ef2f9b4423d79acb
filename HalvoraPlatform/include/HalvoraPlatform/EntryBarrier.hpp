#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace HalvoraPlatform {

/// Where the system calls into the program: an AppKit action or delegate
/// call, a block on a dispatch queue, a CoreGraphics callback, a timer. A C++
/// exception that unwinds through the system's frames ends the process, so
/// every such entry runs its body through `guarded`: whatever escapes the
/// body stops here, goes to the handler the application installed (which
/// logs it and shows the error alert), and the program keeps running.
class EntryBarrier {
public:
    /// Told about an exception that reached the entry named `entry`. It runs
    /// inside the catch: std::current_exception() is the exception.
    using Handler = std::function<void(std::string_view entry)>;

    /// The application's handler; an empty one writes the line to standard error.
    static void setHandler(Handler handler);
    /// Runs `body`; nothing it throws gets past this, nor anything the handler throws.
    static void guarded(std::string_view entry, const std::function<void()>& body) noexcept;
    /// The diagnostic line for the exception being handled:
    /// "Halvora Pro: ENTRY failed: WHAT".
    static std::string describeCurrentException(std::string_view entry);
};

} // namespace HalvoraPlatform
