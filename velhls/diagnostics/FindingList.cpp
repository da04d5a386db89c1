#include "velhls/diagnostics/FindingList.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "velhls/common/Numbers.h"
#include "velhls/common/Recorder.h"
#include "velhls/common/TagLine.h"
#include "velhls/diagnostics/VELHLSDiagnostics.h"

namespace velhls {
namespace {

/// "EXT-X-KEY: " for a line with that tag, nothing for others.
std::string tagPrefix(std::string_view line) {
    if (!isStandardTag(line) && !isVendorTag(line)) return {};
    constexpr std::size_t longest = 40;
    const std::string_view name = withoutTrailing(TagLine(line).name, lineEnds);
    return name.size() > longest ? std::string() : std::string(name) + ": ";
}

/// "METHOD: " when the value of that attribute begins at the position, nothing otherwise.
std::string attributePrefix(std::string_view line, std::size_t position) {
    std::string_view before = line.substr(0, position);
    if (!before.empty() && before.back() == '"') before.remove_suffix(1);
    if (before.empty() || before.back() != '=') return {};
    before.remove_suffix(1);
    constexpr std::size_t longest = 40;
    const std::string_view name = before.substr(before.find_last_of(",:") + 1);
    return name.empty() || name.size() > longest ? std::string() : std::string(name) + ": ";
}

}  // namespace

std::string inSeconds(double seconds) {
    constexpr int decimals = 6;
    std::array<char, mostFixedBytes> buffer;
    const char* const end = putFixed(buffer.data(), seconds, decimals);
    std::string text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

void FindingList::add(Rule rule, const Place& place, const std::string& seen) {
    const auto index = static_cast<std::size_t>(rule);
    const bool isError = rowOf(rule).severity == VELHLSFinding::Error;
    if (isError && !readingEnded_) lineRejected_ = true;
    if (++counts_[index] > VELHLSDiagnostics::maximumFindingsPerRule) {
        ++entries_[lastEntries_[index]].finding.suppressed;
        return;
    }
    lastEntries_[index] = entries_.size();

    const VELHLSRule& row = rowOf(rule);
    Entry entry;
    entry.late = isError && readingEnded_ && lineRejected_;
    entry.finding.severity = row.severity;
    entry.finding.ruleId = row.id;
    entry.finding.line = place.line;
    entry.finding.column = place.column;
    entry.finding.length = place.length;
    entry.finding.message = messageOf(rule, place, seen);
    entry.finding.source = row.source;
    entries_.push_back(std::move(entry));
}

std::string FindingList::messageOf(Rule rule, const Place& place, const std::string& seen) const {
    const std::string_view line = lines_.line(place.line);
    std::string message = tagPrefix(line);
    if (!message.empty()) message += attributePrefix(line, place.column - 1);
    message += "expected ";
    message += rowOf(rule).expected;
    message += ", seen ";
    if (!seen.empty()) return message + seen;
    return message + (place.length == 0 ? "nothing" : quoted(line.substr(place.column - 1, place.length)));
}

std::vector<VELHLSFinding> FindingList::takeAll() {
    const auto orderOf = [](const Entry& entry) {
        return std::make_tuple(entry.late, entry.finding.line, entry.finding.column);
    };
    std::stable_sort(entries_.begin(), entries_.end(), [orderOf](const Entry& left, const Entry& right) {
        return orderOf(left) < orderOf(right);
    });
    std::vector<VELHLSFinding> findings;
    findings.reserve(entries_.size());
    for (Entry& entry : entries_)
        findings.push_back(std::move(entry.finding));
    entries_.clear();
    return findings;
}

}  // namespace velhls
