// The private AV service calls are looked up by name; what is not found is
// named, so a system without it still launches and says what it lacks.

#include <HalvoraPlatform/AVServiceSymbols.hpp>
#include <gtest/gtest.h>
#include <set>

using HalvoraPlatform::AVServiceSymbols;

namespace {

/// A resolver that knows the symbols in `present` only.
AVServiceSymbols::Resolver knowing(std::set<std::string> present) {
    static const int somewhere = 0;
    return [present = std::move(present)](const std::string& name) -> const void* {
        return present.contains(name) ? &somewhere : nullptr;
    };
}

} // namespace

TEST(AVServiceSymbols, EveryPrivateCallUsedIsLookedUp) {
    EXPECT_EQ(AVServiceSymbols::names,
              (std::vector<std::string>{"IOAVServiceCreateWithService", "IOAVServiceCopyEDID",
                                        "IOAVServiceSetVirtualEDIDMode"}));
}

TEST(AVServiceSymbols, NothingIsMissingWhenEveryCallIsFound) {
    EXPECT_TRUE(
        AVServiceSymbols::missing(knowing({"IOAVServiceCreateWithService", "IOAVServiceCopyEDID",
                                           "IOAVServiceSetVirtualEDIDMode"}))
            .empty());
}

TEST(AVServiceSymbols, TheMissingCallsAreNamedInLookUpOrder) {
    EXPECT_EQ(AVServiceSymbols::missing(knowing({"IOAVServiceCopyEDID"})),
              (std::vector<std::string>{"IOAVServiceCreateWithService",
                                        "IOAVServiceSetVirtualEDIDMode"}));
    EXPECT_EQ(
        AVServiceSymbols::missing(knowing({"IOAVServiceCreateWithService", "IOAVServiceCopyEDID"})),
        (std::vector<std::string>{"IOAVServiceSetVirtualEDIDMode"}));
}

TEST(AVServiceSymbols, WithoutAResolverEveryCallIsMissing) {
    EXPECT_EQ(AVServiceSymbols::missing({}), AVServiceSymbols::names);
    EXPECT_EQ(AVServiceSymbols::missing(knowing({})), AVServiceSymbols::names);
}
