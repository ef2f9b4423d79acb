// Modal alerts run one after another, even when one is asked for while
// another is up.

#include <HalvoraPro/AlertQueue.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using HalvoraPro::Alert;
using HalvoraPro::AlertQueue;
using HalvoraPro::Text;

namespace {

Alert alertTitled(const std::string& key) { return {Text::localized(key), Text::localized("body"), {}}; }

} // namespace

TEST(AlertQueue, AnAlertRunsAtOnceAndItsResponseGetsTheButton) {
    std::vector<std::string> shown;
    AlertQueue queue([&](const Alert& a) {
        shown.push_back(a.title.key);
        return std::size_t{1};
    });
    std::size_t chosen = 99;
    queue.enqueue(alertTitled("first"), [&](std::size_t b) { chosen = b; });
    EXPECT_EQ(shown, std::vector<std::string>{"first"});
    EXPECT_EQ(chosen, 1u);
    EXPECT_FALSE(queue.isRunning());
}

TEST(AlertQueue, AnAlertAskedForWhileAnotherIsUpWaitsForItsAnswer) {
    std::vector<std::string> events;
    AlertQueue* self = nullptr;
    AlertQueue queue([&](const Alert& a) {
        events.push_back("shows " + a.title.key);
        // A timer fires inside the modal loop of the first alert and asks for another.
        if (a.title.key == "first") {
            self->enqueue(alertTitled("second"), [&](std::size_t) { events.push_back("answered second"); });
            events.push_back(std::to_string(self->waiting()) + " waiting");
        }
        return std::size_t{0};
    });
    self = &queue;
    queue.enqueue(alertTitled("first"), [&](std::size_t) { events.push_back("answered first"); });
    EXPECT_EQ(events, (std::vector<std::string>{"shows first", "1 waiting", "answered first", "shows second",
                                                "answered second"}));
    EXPECT_EQ(queue.waiting(), 0u);
}

TEST(AlertQueue, AResponseThatAsksForAnAlertGetsItAfterItsOwnAnswer) {
    std::vector<std::string> shown;
    AlertQueue* self = nullptr;
    AlertQueue queue([&](const Alert& a) {
        shown.push_back(a.title.key);
        return std::size_t{0};
    });
    self = &queue;
    queue.enqueue(alertTitled("conflict"), [&](std::size_t) { self->enqueue(alertTitled("error"), {}); });
    EXPECT_EQ(shown, (std::vector<std::string>{"conflict", "error"}));
}
