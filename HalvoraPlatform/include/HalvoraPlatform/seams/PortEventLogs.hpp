#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace HalvoraPlatform {

/// The "EventLog" property of display-port registry entries, read as it is.
/// Which events are interrupts is the live display system's business.
class PortEventLogs {
public:
    /// One dictionary of an EventLog array.
    struct Event {
        bool empty = true;                  ///< the dictionary has no entries
        std::optional<std::uint64_t> time;  ///< "EventTime", when it is a number
        std::optional<std::string> action;  ///< "EventPayload"/"Action", when text
        std::optional<std::string> queueOp; ///< "EventPayload"/"QueueOp", when text
    };

    virtual ~PortEventLogs() = default;
    /// The events of every entry of `className`, entry after entry, each
    /// EventLog in its order; an entry whose EventLog is missing or not an
    /// array of dictionaries adds nothing.
    virtual std::vector<Event> events(const std::string& className) = 0;
};

} // namespace HalvoraPlatform
