#include "tool/Describe.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "tool/Printable.h"

namespace tool {
namespace {

bool isDefault(const std::vector<std::int32_t>& versions) {
    return versions.size() == 1 && versions.front() == 1;
}

std::string joinedBySlashes(const std::vector<std::int32_t>& versions) {
    std::string text;
    for (const std::int32_t version : versions)
        text += (text.empty() ? "" : "/") + std::to_string(version);
    return text;
}

}  // namespace

std::string summaryLine(std::string_view label, std::string_view value) {
    constexpr std::size_t valueColumn = 24;
    std::string line = "  " + std::string(label);
    line.resize(std::max(valueColumn, line.size() + 1), ' ');
    return line + printable(value) + "\n";
}

std::string decimal(double number) {
    // The largest double has 309 digits before its point.
    std::array<char, 400> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.3f", number);
    std::string text(buffer.data(), static_cast<std::size_t>(length));
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string counted(std::size_t count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string describe(const VELHLSProtectionData& key) {
    std::vector<std::string> parts = {std::string(VELHLSProtectionData::textOf(key.method))};
    if (!key.uri.empty()) parts.push_back("URI " + key.uri);
    if (!key.iv.empty()) parts.push_back("IV " + key.iv);
    if (!key.keyFormat.empty()) parts.push_back("KEYFORMAT " + key.keyFormat);
    if (!isDefault(key.keyFormatVersions))
        parts.push_back("versions " + joinedBySlashes(key.keyFormatVersions));
    return joined(parts);
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : ", ") + text;
    return all;
}

}  // namespace tool
