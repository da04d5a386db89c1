#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// How a page says things.
namespace tool::report {

/// "1,234".
[[nodiscard]] std::string grouped(std::uint64_t number);

/// "1,234 segments", "1 segment".
[[nodiscard]] std::string numberOf(std::uint64_t number, std::string_view noun);

/// "6.12 Mbit/s", "64 kbit/s".
[[nodiscard]] std::string rateText(double bitsPerSecond);

/// "1:02:03.5", "0:06": hours, minutes, seconds, and tenths where there are any.
[[nodiscard]] std::string timeText(double seconds);

/// A length or a place in a picture: at most one decimal, none that is 0.
[[nodiscard]] std::string pixels(double length);

/// The text, cut after so many bytes, but through no character.
[[nodiscard]] std::string cut(std::string_view text, std::size_t mostBytes);

/// The name of a place in the page, which no other name of a playlist and no other part gives: "low.m3u8-L17".
[[nodiscard]] std::string anchorOf(std::string_view name, std::string_view part);

/// The part of an anchor that a line has: "L17".
[[nodiscard]] std::string lineAnchor(std::size_t line);

}  // namespace tool::report
