#include "tests/support/PlainForms.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <limits>
#include <sstream>
#include <utility>

#include "tests/support/Calendar.h"

namespace plain {
namespace {

/// The C library's calendar; -1.0 where it cannot hold the date.
double timestampOfFields(int year, int month, int day, int hour, int minute, double seconds) {
    constexpr double beyondThirtyTwoBits = 2147483648.0;
    const bool secondsFit = seconds > -beyondThirtyTwoBits - 1.0 && seconds < beyondThirtyTwoBits;
    const bool yearFits = year >= std::numeric_limits<int>::min() + 1900;
    if (!secondsFit || !yearFits) return -1.0;
    std::tm time = {};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = static_cast<int>(seconds);
    const double fraction = seconds - time.tm_sec;
    errno = 0;
    const std::time_t sinceEpoch = calendar::secondsOf(time);
    if (sinceEpoch == -1 && errno == EOVERFLOW) return -1.0;
    return fraction + static_cast<double>(sinceEpoch);
}

}  // namespace

std::optional<VELHLSAttributeMap> attributeMap(const std::string& text) {
    VELHLSAttributeMap map;
    if (text.empty()) return map;
    std::size_t position = 0;
    while (true) {
        std::size_t comma = text.find(',', position);
        const std::size_t quote = text.find('"', position);
        std::size_t closing = none;
        if (quote != none) {
            closing = text.find('"', quote + 1);
            if (comma != none && comma > quote) {
                if (closing == none) return std::nullopt;
                comma = text.find(',', closing);
                if (comma != none && comma != closing + 1) return std::nullopt;
            }
        }
        const std::size_t equals = text.find('=', position);
        if (equals == none) return std::nullopt;
        if (quote != none && equals > quote) return std::nullopt;
        if (comma != none && equals > comma) return std::nullopt;
        if (equals == position) return std::nullopt;
        const bool unquoted = quote == none || (comma != none && comma < quote);
        if (unquoted) {
            if (comma == none && equals == text.size() - 1) return std::nullopt;
            if (comma != none && comma == equals + 1) return std::nullopt;
        }
        const std::string name = text.substr(position, equals - position);
        std::string value;
        if (unquoted) {
            value = comma == none ? text.substr(equals + 1) : text.substr(equals + 1, comma - equals - 1);
        } else {
            value = closing == none ? text.substr(quote + 1) : text.substr(quote + 1, closing - quote - 1);
        }
        map.try_emplace(name, value);
        if (comma == none) return map;
        position = comma + 1;
    }
}

std::optional<std::string> substituted(std::string work, const VELHLSDefineMap& defines) {
    constexpr int longestRoad = 200;
    for (int step = 0; step < longestRoad; ++step) {
        const std::size_t start = work.find_first_of("{$");
        if (start == none) return work;
        const std::size_t close = work.find('}', start);
        if (close == none || start + 2 >= work.size()) return "";
        const std::string name = close < start + 2 ? "" : work.substr(start + 2, close - start - 2);
        const auto define = defines.find(name);
        if (define == defines.end()) return "";
        work.replace(start, close + 1 - start, define->second);
    }
    return std::nullopt;
}

std::optional<std::string> expanded(const std::string& body, std::uint64_t repeatCount,
                                    const std::shared_ptr<VELHLSDefineMap>& defines) {
    std::string text;
    for (std::uint64_t pass = 0; pass <= repeatCount; ++pass) {
        std::istringstream lines(body);
        for (std::string line; std::getline(lines, line);) {
            if (line.substr(0, 1) != "#") {
                line.erase(line.find_last_not_of(" \t\n\r") + 1);
                line = VELHLSUtility::substituteVariables(line, defines);
                if (line.empty()) return std::nullopt;
            } else if (line.substr(1, 3) == "ZOR" && line.find(':') != none) {
                const std::string start = "#ZOR-DEFINE_INCREMENT:";
                const std::size_t comma = line.find(',', line.find(':'));
                if (line.substr(0, start.size()) != start || comma == none) return std::nullopt;
                if (defines == nullptr) return std::nullopt;
                const auto define = defines->find(line.substr(start.size(), comma - start.size()));
                if (define == defines->end()) return std::nullopt;
                const std::int64_t current = std::stoi(define->second);
                define->second = std::to_string(current + std::stoi(line.substr(comma + 1)));
                continue;
            }
            text += line + "\n";
        }
    }
    return text;
}

std::shared_ptr<VELHLSMediaPattern> readPattern(const std::string& startLine, const std::string& prefix,
                                                std::istream& input, std::string& rejected) {
    std::string name;
    std::string body = prefix;
    const auto mayStandInBody = [](const std::string& tag) {
        for (const char* const allowed :
             {"EXTINF", "EXT-X-BYTERANGE", "EXT-X-KEY", "EXT-X-MAP", "EXT-X-PROGRAM-DATE-TIME",
              "EXT-X-CUE-OUT", "EXT-X-CUE-OUT-CONT", "ZOR-DEFINE_INCREMENT"}) {
            if (tag == allowed) return true;
        }
        return false;
    };
    std::string line = startLine;
    while (input.good()) {
        const std::size_t colon = line.find(':');
        const std::string tag = line.substr(0, 1) == "#" ? line.substr(1, colon - 1) : "";
        const std::string value = colon == none ? "" : line.substr(colon + 1);
        const std::size_t comma = value.find(',');
        rejected = line;
        if (line.substr(0, 1) != "#") {
            body += line + "\n";
        } else if (colon == none) {
            if (tag != "EXT-X-DISCONTINUITY") return nullptr;
            body += line + "\n";
        } else if (tag == "ZOR-PATTERN_START") {
            if (!name.empty()) return nullptr;
            name = value;
        } else if (tag == "ZOR-PATTERN_END") {
            if (value != name) return nullptr;
        } else if (tag == "ZOR-PATTERN_REPEAT") {
            if (comma == none || value.substr(0, comma) != name) return nullptr;
            const auto count = static_cast<std::uint64_t>(std::stoll(value.substr(comma + 1)));
            return std::make_shared<VELHLSMediaPattern>(name, body, count);
        } else if (mayStandInBody(tag)) {
            body += line + "\n";
        } else {
            return nullptr;
        }
        line.clear();
        std::getline(input, line);
    }
    return std::make_shared<VELHLSMediaPattern>(name, body, 0);
}

std::optional<VELHLSByteRange> byteRange(const std::string& text, char separator, bool isInclusive) {
    const std::string digits = "0123456789";
    if (text.empty() || text.find_first_not_of(digits + separator) != none) return std::nullopt;
    VELHLSByteRange range;
    const std::size_t position = text.find(separator);
    if (position == 0) return std::nullopt;
    if (position == none) {
        range.length = std::stoll(text);
        range.offset = -1;
        return range;
    }
    const std::string after = text.substr(position + 1);
    if (after.empty() || after.find_first_not_of(digits) != none) return std::nullopt;
    const std::int64_t first = std::stoll(text.substr(0, position));
    const std::int64_t second = std::stoll(after);
    // The one length that 64 bits do not hold is one too small.
    const std::int64_t inclusive = second - first == INT64_MAX ? INT64_MAX : second - first + 1;
    range.length = isInclusive ? inclusive : first;
    range.offset = isInclusive ? first : second;
    return range;
}

std::optional<VELHLSByteRange> byteRangeOfUri(const std::string& uri) {
    if (uri.empty()) return std::nullopt;
    const std::string marker = "/range/";
    // "Not found" plus the length of the marker wraps around.
    return byteRange(uri.substr(uri.rfind(marker) + marker.size()), '-', true);
}

double parsedTimestamp(const std::string& text) {
    const auto between = [&](std::size_t before, std::size_t after) {
        return text.substr(before + 1, after - before - 1);
    };
    const std::size_t d1 = text.find('-');
    if (d1 == none) return -1.0;
    const std::size_t d2 = text.find('-', d1 + 1);
    if (d2 == none) return -1.0;
    const std::size_t t = text.find('T', d2 + 1);
    const std::size_t c1 = text.find(':', t == none ? 0 : t + 1);
    if (c1 == none) return -1.0;
    const std::size_t c2 = text.find(':', c1 + 1);
    if (c2 == none || c2 + 1 >= text.size()) return -1.0;
    std::size_t zone = text.find_first_of("-+", c2 + 1);
    std::size_t c3 = none;
    if (zone != none) {
        c3 = text.find(':', zone + 1);
        if (c3 == none) return -1.0;
    } else {
        zone = text.find('Z', c2 + 1);
        if (zone == none) return -1.0;
    }
    const int year = std::stoi(text.substr(0, d1));
    const int month = std::stoi(between(d1, d2));
    const int day = std::stoi(t == none ? text.substr(d2 + 1) : between(d2, t));
    const int hour = std::stoi(t == none ? text.substr(0, c1) : between(t, c1));
    const int minute = std::stoi(between(c1, c2));
    const double seconds = std::stod(between(c2, zone));
    if (c3 != none) {
        static_cast<void>(std::stoi(between(zone, c3)));
        const std::size_t end = text.find_first_not_of("0123456789", c3 + 1);
        static_cast<void>(std::stoi(end == none ? text.substr(c3 + 1) : between(c3, end)));
    }
    return timestampOfFields(year, month, day, hour, minute, seconds);
}

std::string renderedTimestamp(double seconds) {
    const std::time_t whole = static_cast<std::time_t>(seconds);
    std::tm time = {};
    if (!calendar::read(whole, time)) return "beyond the calendar";
    const double secondOfMinute = (seconds - static_cast<double>(whole)) + time.tm_sec;
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%04lld-%02d-%02dT%02d:%02d:%02.3lf%c%02d:%02d",
                                     time.tm_year + 1900LL, time.tm_mon + 1, time.tm_mday, time.tm_hour,
                                     time.tm_min, secondOfMinute, '+', 0, 0);
    return length < 0 ? "not printed" : text;
}

std::string fixed(double number, int decimals) {
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", decimals, number);
    return text;
}

}  // namespace plain
