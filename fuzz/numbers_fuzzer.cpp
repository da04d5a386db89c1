#include <cmath>
#include <cstring>

#include "fuzz/FuzzTarget.h"
#include "tests/support/PlainForms.h"

namespace {

std::string bits(double number) {
    if (std::isnan(number)) return "nan";
    char text[64];
    static_cast<void>(std::snprintf(text, sizeof text, "%a", number));
    return text;
}

/// The conversions are looked at where they are used: a variant's BANDWIDTH and PROGRAM-ID, a segment's duration.
std::string bandwidthOf(const std::string& text) {
    const auto variant =
        VELHLSMediaVariant::parseVariant("#EXT-X-STREAM-INF:BANDWIDTH=\"" + text + "\"", "uri");
    return variant == nullptr ? "0" : std::to_string(variant->bandwidth);
}

std::string programIdOf(const std::string& text) {
    const auto variant =
        VELHLSMediaVariant::parseVariant("#EXT-X-STREAM-INF:BANDWIDTH=1,PROGRAM-ID=\"" + text + "\"", "uri");
    return std::to_string(variant->programId);
}

double durationOf(const std::string& text) {
    std::istringstream lines("segment.ts\n");
    std::shared_ptr<VELHLSMediaPattern> pattern;
    const auto segment = VELHLSMediaSegment::parseNextSegment(nullptr, "#EXTINF:" + text, lines, pattern, 0,
                                                              0, nullptr, nullptr);
    return segment == nullptr ? 0.0 : segment->duration;
}

void expectPlainDuration(double duration) {
    const VELHLSMediaSegment segment(duration, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr, nullptr,
                                     "segment.ts", false, "", "");
    std::string text;
    if (duration == 0.0) return;
    fuzz::expect(segment.render(text, true, true) == 0, "a duration that is not 0 renders");
    fuzz::expectEqual(text, "#EXTINF:" + plain::fixed(duration, 6) + "\nsegment.ts\n", "as printf writes it");
}

}  // namespace

/// The text is read as a number of each type, and its first eight bytes as a duration that is written.
VELHLS_FUZZ_TARGET(numbers) {
    const bool isValue = text.find('"') == std::string::npos && !text.empty();
    if (isValue) {
        fuzz::expectEqual(playlist::outcomeOf([&] { return bandwidthOf(text); }), playlist::outcomeOf([&] {
                              return std::to_string(static_cast<std::uint64_t>(std::stoll(text)));
                          }),
                          "64-bit integers as std::stoll");
        fuzz::expectEqual(playlist::outcomeOf([&] { return programIdOf(text); }), playlist::outcomeOf([&] {
                              return std::to_string(static_cast<std::uint32_t>(std::stoi(text)));
                          }),
                          "32-bit integers as std::stoi");
    }
    if (text.find(',') == std::string::npos) {
        const std::string read = playlist::outcomeOf([&] {
            const double duration = fuzz::bounded(text.size(), {16}, [&] { return durationOf(text); });
            expectPlainDuration(duration);
            return bits(duration + 0.0);
        });
        fuzz::expectEqual(read, playlist::outcomeOf([&] { return bits(std::stod(text) + 0.0); }),
                          "fractions as std::stod");
    }
    double duration = 0.0;
    if (text.size() < sizeof duration) return;
    std::memcpy(&duration, text.data(), sizeof duration);
    expectPlainDuration(duration);
}
