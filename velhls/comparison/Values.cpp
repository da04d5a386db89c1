#include "velhls/comparison/Values.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

#include "velhls/common/CivilTime.h"
#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Utf8.h"
#include "velhls/document/VELHLSAttribute.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

struct NamedValue {
    std::string_view name;
    std::string_view value;
};

/// In the order of their names, those with one name in their order. A comma too many holds nothing.
std::vector<NamedValue> sortedValues(std::string_view list) {
    std::vector<NamedValue> values;
    for (const VELHLSAttribute& attribute : VELHLSAttributes(list)) {
        if (attribute.name.empty() && attribute.value.empty()) continue;
        values.push_back({attribute.name.empty() ? "(no name)" : attribute.name, attribute.value});
    }
    std::sort(values.begin(), values.end(), [](const NamedValue& left, const NamedValue& right) {
        const int order = left.name.compare(right.name);
        return order != 0 ? order < 0 : std::less<>()(left.value.data(), right.value.data());
    });
    return values;
}

bool isDefault(const NamedValue& value) {
    return (value.name == attribute::keyFormat && value.value == "identity") ||
           (value.name == attribute::keyFormatVersions && value.value == "1");
}

std::string padded(std::int64_t number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

}  // namespace

bool isSameValue(std::string_view left, std::string_view right) {
    if (left == right) return true;
    const auto number = VELHLSSyntax::readSignedDecimalFloatingPoint(left);
    if (number) return number == VELHLSSyntax::readSignedDecimalFloatingPoint(right);
    const auto date = VELHLSSyntax::readDateTime(left);
    const auto other = date ? VELHLSSyntax::readDateTime(right) : std::nullopt;
    return date && other && date->microseconds == other->microseconds && date->hasZone == other->hasZone;
}

std::string canonicalList(std::string_view list) {
    std::string text;
    for (const NamedValue& value : sortedValues(list)) {
        if (!isDefault(value)) text.append(value.name).append("=").append(value.value).append("\n");
    }
    return text;
}

void compareAttributes(const VELHLSLine& before, const VELHLSLine& now, Aspect aspect,
                       const std::string& path, Differences& differences) {
    if (before.value == now.value) return;
    const std::vector<NamedValue> left = sortedValues(before.value);
    const std::vector<NamedValue> right = sortedValues(now.value);
    const Spot missingBefore = {before.number, {}};
    const Spot missingNow = {now.number, {}};
    for (std::size_t first = 0, second = 0; first < left.size() || second < right.size();) {
        const int order = first == left.size()     ? 1
                          : second == right.size() ? -1
                                                   : left[first].name.compare(right[second].name);
        const Spot old = order <= 0 ? spotOf(before, left[first].value) : missingBefore;
        const Spot fresh = order >= 0 ? spotOf(now, right[second].value) : missingNow;
        const std::string_view name = order <= 0 ? left[first].name : right[second].name;
        if (order != 0 || !isSameValue(old.text, fresh.text)) differences.add(aspect, path, name, old, fresh);
        first += order <= 0 ? 1 : 0;
        second += order >= 0 ? 1 : 0;
    }
}

std::string shortened(std::string_view text) {
    constexpr std::size_t longest = 256;
    if (text.size() <= longest) return std::string(text);
    return std::string(text.substr(0, utf8::lengthOfWholeCharacters(text, longest))) + "...";
}

std::string dateText(std::int64_t microseconds) {
    constexpr std::int64_t second = 1000000;
    const std::int64_t fraction = (microseconds % second + second) % second;
    const std::int64_t seconds = (microseconds - fraction) / second;
    const CivilTime day = velhls::dateOf(seconds);
    const std::int64_t ofDay = seconds - startOfDay(seconds);
    return padded(day.year, 4) + "-" + padded(day.month, 2) + "-" + padded(day.day, 2) + "T" +
           padded(ofDay / 3600, 2) + ":" + padded(ofDay / 60 % 60, 2) + ":" + padded(ofDay % 60, 2) + "." +
           padded(fraction / 1000, 3) + "Z";
}

}  // namespace velhls
