#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the tests of the records share: a record is one tag of a playlist.
namespace record {

using namespace std::string_literals;

/// The text that a record renders. A status that is not 0 stands before it.
template <typename Record>
std::string rendered(const Record& value) {
    std::string text;
    const std::int32_t status = value.render(text);
    return status == 0 ? text : "status " + std::to_string(status) + ": " + text;
}

/// How long the work takes.
template <typename Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Far more than a megabyte needs when the time grows with the text, on a busy machine and unoptimised; far
/// less than it needs when the time grows with the square of it.
constexpr double quickSeconds = 5.0;

constexpr std::size_t megabyte = 1U << 20U;

/// Many attributes, and a long one after them, with a comma at the end: whoever searches from each of the
/// many to what stands after the long one does so quadratically.
inline std::string manyAttributes() {
    constexpr std::size_t count = 200000;
    std::string text;
    for (std::size_t written = 0; written < count; ++written)
        text += "X=1,";
    return text + "Y=" + std::string(8 * megabyte, 'y') + ",";
}

/// All prefixes, from the empty one to the one that lacks a single character.
inline std::vector<std::string> properPrefixes(std::string_view text) {
    std::vector<std::string> prefixes;
    for (std::size_t length = 0; length < text.size(); ++length) {
        prefixes.emplace_back(text.substr(0, length));
    }
    return prefixes;
}

/// Attribute lists that are malformed, by themselves and after other attributes.
inline const std::vector<std::string> malformedLists = {
    "X",          "X=",         "=",
    "=1",         ",",          ",X=1",
    "X=1,",       "X=1,,Y=1",   "X=1,Y",
    "X=1,Y=",     "X=1,=",      "X=1,=2",
    "X,Y=1",      "X=,Y=1",     "\"",
    "\"X=1\"",    "\"X\"=1",    "X\"1\"",
    "X\"=1\"",    "X=\"1,Y=2",  "X=\"1\"y,Y=2",
    "X=\"1\" ,Y", "X=\"1\",",   "X=\"1\",Y",
    "X=\"1\",=",  "X=\"1\",Y=", "X\0"s,
    " ",          "X=\"\"1,Y=", "X=\"1\",,Y",
    "X:1",        "X 1",        "X=\"1\"\"2\",Y=3",
};

/// A text that the conversion to a signed 64-bit integer reads, and the number as it is stored: unsigned.
struct NumberText {
    std::string text;
    std::uint64_t number;
};

inline const std::vector<NumberText> numbers64 = {
    {"1", 1},
    {"7", 7},
    {"12kbit", 12},
    {"12 34", 12},
    {"12.9", 12},
    {"12,000", 12},
    {"1e3", 1},
    {"12-", 12},
    {"12\r", 12},
    {"12\0 34"s, 12},
    {" 12", 12},
    {"\t\n\v\f\r 12", 12},
    {"+12", 12},
    {" +12", 12},
    {"0012", 12},
    {"+0012", 12},
    {std::string(1000, '0') + "12", 12},
    {"4294967296", 4294967296U},
    {"9223372036854775807", 9223372036854775807U},
    {"+9223372036854775807", 9223372036854775807U},
    {"9223372036854775807kbit", 9223372036854775807U},
    {"-1", 18446744073709551615U},
    {" -1", 18446744073709551615U},
    {"-12kbit", 18446744073709551604U},
    {"-9223372036854775807", 9223372036854775809U},
    {"-9223372036854775808", 9223372036854775808U},
};

/// Texts that the conversions read as 0.
inline const std::vector<std::string> zeros = {"0",    "-0",  "+0",    " 0",   "000",
                                               "0x10", "0.9", "0kbit", "0 12", "-0x1"};

/// Texts that hold no number at their start.
inline const std::vector<std::string> noNumbers = {
    "",
    " ",
    "x",
    "kbit12",
    "+",
    "-",
    "+-1",
    "-+1",
    "--1",
    "++1",
    "+ 1",
    "- 1",
    ".5",
    "#1",
    "_1",
    "inf",
    "nan",
    "$1",
    "+x",
    "\b1",
    "\0-12"s,
    "\xEF\xBB\xBF+12",
    "\xC2\xA0-12",
    "\x7F+1",
};

/// Texts that hold a number which fits no signed 64-bit integer.
inline const std::vector<std::string> tooLargeFor64 = {
    "9223372036854775808",     "+9223372036854775808",       " 9223372036854775808",
    "9223372036854775808kbit", "-9223372036854775809",       "18446744073709551615",
    "18446744073709551616",    "99999999999999999999999999", "-99999999999999999999999999",
};

}  // namespace record
