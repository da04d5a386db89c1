#include "tool/report/Words.h"

#include <algorithm>
#include <cmath>

#include "tool/Describe.h"
#include "tool/Escaping.h"
#include "tool/Utf8.h"

namespace tool::report {
namespace {

/// With zeros before it.
std::string padded(std::int64_t number, std::size_t digits) {
    const std::string text = std::to_string(number);
    return std::string(digits - std::min(digits, text.size()), '0') + text;
}

}  // namespace

std::string grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, ",");
    }
    return text;
}

std::string numberOf(std::uint64_t number, std::string_view noun) {
    return grouped(number) + " " + std::string(noun) + (number == 1 ? "" : "s");
}

std::string rateText(double bitsPerSecond) {
    constexpr double kilo = 1e3;
    constexpr double mega = 1e6;
    const auto rounded = [](double number) {
        const double step = number < 10 ? 100 : number < 100 ? 10 : 1;
        return decimal(std::round(number * step) / step);
    };
    if (bitsPerSecond >= 999500) return rounded(bitsPerSecond / mega) + " Mbit/s";
    if (bitsPerSecond >= kilo) return rounded(bitsPerSecond / kilo) + " kbit/s";
    return rounded(bitsPerSecond) + " bit/s";
}

std::string timeText(double seconds) {
    constexpr double mostShown = 1e9;
    if (!(std::abs(seconds) < mostShown)) return seconds < 0 ? "-\xE2\x88\x9E" : "\xE2\x88\x9E";
    const auto tenths = static_cast<std::int64_t>(std::llround(std::abs(seconds) * 10));
    const std::int64_t whole = tenths / 10;
    std::string text = seconds < 0 && tenths != 0 ? "-" : "";
    if (whole >= 3600)
        text += std::to_string(whole / 3600) + ":" + padded(whole / 60 % 60, 2);
    else
        text += std::to_string(whole / 60);
    text += ":" + padded(whole % 60, 2);
    return tenths % 10 == 0 ? text : text + "." + std::to_string(tenths % 10);
}

std::string pixels(double length) {
    const auto tenths = std::llround(std::clamp(length, -1e6, 1e6) * 10);
    const std::string sign = tenths < 0 ? "-" : "";
    const auto magnitude = std::llabs(tenths);
    const std::string whole = sign + std::to_string(magnitude / 10);
    return magnitude % 10 == 0 ? (magnitude == 0 ? "0" : whole)
                               : whole + "." + std::to_string(magnitude % 10);
}

std::string cut(std::string_view text, std::size_t mostBytes) {
    if (text.size() <= mostBytes) return std::string(text);
    std::size_t length = mostBytes;
    while (length > 0 && utf8::continues(text[length]))
        --length;
    return std::string(text.substr(0, length)) + "\xE2\x80\xA6";
}

std::string anchorOf(std::string_view name, std::string_view part) {
    return percentEncodedPath(name) + "-" + std::string(part);
}

std::string lineAnchor(std::size_t line) {
    return "L" + std::to_string(line);
}

}  // namespace tool::report
