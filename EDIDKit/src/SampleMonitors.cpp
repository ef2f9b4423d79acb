#include <EDIDKit/SampleMonitors.hpp>

#include <EDIDKit/EDIDBuilder.hpp>

namespace EDIDKit {

namespace {

Timing cvt(int width, int height) { return Timing::cvtReducedBlanking(width, height, 60.0); }

/// The 1080p60 timing of CTA-861 (VIC 16), which most monitors list.
const Timing fullHD{14850, 1920, 280, 88, 44, 1080, 45, 4, 5};
/// 720p60 (VIC 4).
const Timing hd{7425, 1280, 370, 110, 40, 720, 30, 5, 5};

EDIDBuilder ultrawide(std::uint16_t product) {
    EDIDBuilder b;
    b.manufacturer("HLV").productID(product).serialNumber(0x00343401).screenSizeCM(80, 34);
    return b;
}

SampleMonitor ultrawide34() {
    const Bytes full = ultrawide(0x3440)
                           .baseTiming(cvt(3440, 1440))
                           .baseTiming(cvt(2560, 1440))
                           .productName("Halvora UW34")
                           .rangeLimits({24, 75, 30, 160, 60, 0})
                           .ctaExtension({fullHD, hd}, EDIDBuilder::videoCapabilityBlock)
                           .build();
    // With picture-by-picture on, each input sees half the panel.
    const Bytes pbp = ultrawide(0x3440)
                          .screenSizeCM(40, 34)
                          .baseTiming(cvt(1720, 1440))
                          .productName("Halvora UW34")
                          .rangeLimits({24, 75, 30, 160, 60, 0})
                          .ctaExtension({hd}, EDIDBuilder::videoCapabilityBlock)
                          .build();
    return {"ultrawide-34", "34-inch 3440×1440 ultrawide; its EDID lacks the 1720×1440 half", full, pbp};
}

SampleMonitor superwide49() {
    // 5120 pixels do not fit a detailed timing descriptor: the native timing
    // lives in a DisplayID section, as on real 32:9 monitors.
    const auto builder = [] {
        EDIDBuilder b;
        b.manufacturer("HLV").productID(0x5120).serialNumber(0x00494901).screenSizeCM(119, 34);
        return b;
    };
    const Bytes full = builder()
                           .baseTiming(cvt(2560, 1440))
                           .baseTiming(cvt(3840, 1080))
                           .productName("Halvora SW49")
                           .rangeLimits({24, 75, 30, 160, 60, 0})
                           .ctaExtension({fullHD, hd}, EDIDBuilder::videoCapabilityBlock)
                           .displayIDExtension({{cvt(5120, 1440), true, {}}})
                           .build();
    const Bytes pbp = builder()
                          .screenSizeCM(60, 34)
                          .baseTiming(cvt(2560, 1440))
                          .baseTiming(fullHD)
                          .productName("Halvora SW49")
                          .rangeLimits({24, 75, 30, 160, 60, 0})
                          .ctaExtension({hd}, EDIDBuilder::videoCapabilityBlock)
                          .build();
    return {"superwide-49", "49-inch 5120×1440 superwide; in picture-by-picture mode it prefers 2560×1440",
            full, pbp};
}

} // namespace

const std::vector<SampleMonitor>& sampleMonitors() {
    static const std::vector<SampleMonitor> all{ultrawide34(), superwide49()};
    return all;
}

const SampleMonitor* sampleMonitor(const std::string& name) {
    for (const SampleMonitor& m : sampleMonitors())
        if (m.name == name) return &m;
    return nullptr;
}

} // namespace EDIDKit
