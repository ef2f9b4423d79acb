#include "RewriteReport.hpp"

#include "EDIDReport.hpp"

#include <algorithm>
#include <span>

namespace Halvora {

using EDIDKit::EDID;
using EDIDKit::Timing;

namespace {

constexpr std::size_t blockSize = EDID::blockSize;

std::string where(const SlotChange& c) {
    return "CTA-861 block " + std::to_string(c.block) + ", byte " + std::to_string(c.offsetInBlock);
}

/// "3440×1440 @ 59.97 Hz"
std::string brief(const Timing& t) {
    const std::string line = timingLine(t);
    return line.substr(0, line.find(','));
}

} // namespace

std::vector<SlotChange> changedSlots(const EDID& before, const EDID& after) {
    std::vector<SlotChange> changes;
    if (before.bytes().size() != after.bytes().size()) return changes;
    // Slots of either EDID's descriptor areas: a rewrite never moves them, but
    // take both so that nothing is missed.
    std::vector<std::size_t> offsets = before.descriptorSlotOffsets();
    for (std::size_t o : after.descriptorSlotOffsets())
        if (std::find(offsets.begin(), offsets.end(), o) == offsets.end()) offsets.push_back(o);
    std::sort(offsets.begin(), offsets.end());
    const auto slot = [](const EDID& e, std::size_t o) {
        return std::span(e.bytes()).subspan(o, EDID::descriptorSize);
    };
    for (std::size_t o : offsets) {
        const auto a = slot(before, o);
        const auto b = slot(after, o);
        if (std::equal(a.begin(), a.end(), b.begin())) continue;
        changes.push_back({o / blockSize, o % blockSize, Timing::fromDescriptor(a), Timing::fromDescriptor(b)});
    }
    return changes;
}

std::vector<std::string> describeRewrite(const EDID& before, const EDID& after) {
    std::vector<std::string> lines;
    const auto changes = changedSlots(before, after);
    // The preferred timing that a promotion replaced, if any: it reappears in a CTA-861 block.
    std::optional<Timing> replacedPreferred;
    bool cleared = false;
    // The base block's first slot holds the preferred timing.
    const std::size_t preferredSlot = before.descriptorSlotOffsets().front();
    for (const SlotChange& c : changes) {
        if (c.block == 0) {
            if (c.offsetInBlock != preferredSlot || !c.after) continue;
            lines.push_back("made " + brief(*c.after) + " the preferred timing" +
                            (c.before ? " in place of " + brief(*c.before) : ""));
            replacedPreferred = c.before;
            continue;
        }
        if (!c.after) {
            cleared = true;
            continue;
        }
        const bool moved = replacedPreferred.has_value() && *replacedPreferred == *c.after;
        const std::string what =
            moved ? "moved the previous preferred timing " + brief(*c.after) : "added " + brief(*c.after);
        lines.push_back(what + " to " + where(c) +
                        (c.before ? ", in place of " + brief(*c.before) + " (no free slot was left)"
                                  : " (a free slot)"));
    }
    if (cleared) lines.push_back("cleared the rest of that CTA-861 descriptor area after the new timing");
    if (lines.empty()) lines.push_back("unchanged: the EDID already lists every timing needed");
    return lines;
}

} // namespace Halvora
