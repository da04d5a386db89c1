#include "tool/RuleNames.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

#include "velhls/VELHLSCheck.h"

#include "tool/Printable.h"

namespace tool {
namespace {

/// How many letters have to be put in, taken out or replaced to make one text of the other (Levenshtein).
std::size_t distanceBetween(std::string_view one, std::string_view other) {
    std::vector<std::size_t> distances(other.size() + 1);
    for (std::size_t column = 0; column < distances.size(); ++column)
        distances[column] = column;
    for (std::size_t row = 1; row <= one.size(); ++row) {
        std::size_t diagonal = std::exchange(distances[0], row);
        for (std::size_t column = 1; column < distances.size(); ++column) {
            const std::size_t replaced = diagonal + (one[row - 1] == other[column - 1] ? 0 : 1);
            diagonal = distances[column];
            distances[column] = std::min({replaced, diagonal + 1, distances[column - 1] + 1});
        }
    }
    return distances.back();
}

/// 0 for an id that holds the text, since that was typed as a part of it.
std::size_t farnessOf(std::string_view id, std::string_view text) {
    constexpr std::size_t shortestPart = 3;
    const bool isPart = text.size() >= shortestPart && id.find(text) != std::string_view::npos;
    return isPart ? 0 : distanceBetween(id, text);
}

}  // namespace

std::vector<std::string> ruleIds() {
    std::vector<std::string> ids;
    std::set<std::string_view> known;
    for (const VELHLSDiagnostics::Profile profile : VELHLSDiagnostics::profiles()) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile)) {
            if (known.insert(rule.id).second) ids.emplace_back(rule.id);
        }
    }
    return ids;
}

std::vector<std::string> rulesNear(const std::string& text) {
    constexpr std::size_t longestText = 100;
    constexpr std::size_t most = 5;
    if (text.size() > longestText) return {};
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& id : ruleIds()) {
        const std::size_t farness = farnessOf(id, text);
        if (farness <= text.size() / 3) near.emplace_back(farness, id);
    }
    std::sort(near.begin(), near.end());
    std::vector<std::string> ids;
    for (std::size_t index = 0; index < std::min(near.size(), most); ++index)
        ids.push_back(near[index].second);
    return ids;
}

std::string whyNoRule(const std::string& id) {
    if (VELHLSDiagnostics::ruleNamed(id)) return {};
    std::string reason = "there is no rule " + quotedExcerpt(id);
    const std::vector<std::string> near = rulesNear(id);
    for (std::size_t index = 0; index < near.size(); ++index) {
        const bool isLast = index + 1 == near.size();
        reason += (index == 0 ? "; did you mean " : isLast ? " or " : ", ") + near[index];
    }
    return near.empty() ? reason : reason + "?";
}

}  // namespace tool
