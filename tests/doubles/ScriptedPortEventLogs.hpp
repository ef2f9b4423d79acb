#pragma once

#include <HalvoraPlatform/seams/PortEventLogs.hpp>
#include <map>
#include <string>
#include <vector>

namespace TestDoubles {

/// EventLogs per registry class, as a test writes them.
class ScriptedPortEventLogs final : public HalvoraPlatform::PortEventLogs {
public:
    static Event irq(std::uint64_t time, std::string queueOp = "Done") {
        return {false, time, "IRQ", std::move(queueOp)};
    }
    static Event other(std::uint64_t time, std::string action) {
        return {false, time, std::move(action), "Done"};
    }

    std::map<std::string, std::vector<Event>> logs;
    int reads = 0;

    std::vector<Event> events(const std::string& className) override {
        ++reads;
        const auto found = logs.find(className);
        return found == logs.end() ? std::vector<Event>{} : found->second;
    }
};

} // namespace TestDoubles
